// A path alone is not taken for the dump mode. (What else is refused, construction_test.cpp asserts.)
#include "quarn/stream/file_stream.h"

int main()
{
#ifdef MUST_NOT_COMPILE
    Quarn::ofstream const file("f");
#else
    Quarn::ofstream const file("f", std::ios_base::in);
#endif
    return file.IsValidOutput() ? 1 : 0;
}
