#include <quarn/text/exception.h>
#include <quarn/text/string.h>
int main(){ Quarn::string text; text.Format("%s=%d", "answer", 42); try { throw Quarn::QuarnException("x"); } catch (std::runtime_error const& e) { return e.what()[0]!='x'; } }
