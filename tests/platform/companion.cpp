// A companion module. COMPANION_NUMBER tells the modules apart; with COMPANION_FAILS it cannot be loaded: its
// entry point refuses on Windows, elsewhere it needs a function that nobody has.
#if defined(_WIN32)
#define COMPANION_API extern "C" // companion.def has the names and ordinals
#else
#define COMPANION_API extern "C" __attribute__((visibility("default")))
#endif

#if defined(COMPANION_FAILS)
#if defined(_WIN32)
COMPANION_API int __stdcall DllMain(void* /*module*/, unsigned long reason, void* /*reserved*/)
{
    return reason == 1 ? 0 : 1;
}
#else
COMPANION_API int CompanionThatNobodyHas();
#endif
#endif

COMPANION_API int CompanionNumber()
{
#if defined(COMPANION_FAILS) && !defined(_WIN32)
    return CompanionThatNobodyHas();
#else
    return COMPANION_NUMBER;
#endif
}

COMPANION_API int CompanionSquare(int number)
{
    return number * number;
}

COMPANION_API int CompanionWithoutName(int number)
{
    return number + 1000;
}
