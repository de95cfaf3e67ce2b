// The compiler checks the arguments of Format against its format.
#include "quarn/text/string.h"

int main()
{
    Quarn::string text;
#if defined(WRONG_TYPE)
    return text.Format("%d", "not a number");
#elif defined(MISSING_ARGUMENT)
    return text.Format("%d %s", 1);
#elif defined(STRING_OBJECT)
    return text.Format("%s", Quarn::string("an object"));
#elif defined(TOO_MANY_ARGUMENTS)
    return text.Format("%d", 1, 2);
#else
    return text.Format("%d %s %lld %zu", 1, "text", 1LL, sizeof text);
#endif
}
