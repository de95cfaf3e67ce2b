// The few compiler facts that every public header needs: what crosses the library boundary, and how the
// compiler checks printf-style formats. This header and quarn/platform/ alone may ask for the system.
#pragma once

#if defined(QUARN_STATIC)
#define QUARN_API
#elif defined(_WIN32)
#if defined(QUARN_BUILDING)
#define QUARN_API __declspec(dllexport)
#else
#define QUARN_API __declspec(dllimport)
#endif
#else
#define QUARN_API __attribute__((visibility("default")))
#endif

// QUARN_PRINTF(format, first): the compiler checks the arguments from number `first` on against the format in
// argument number `format` (counted from 1; a member function's object is number 1).
#if defined(__clang__)
#define QUARN_PRINTF(format_, first_) __attribute__((format(printf, format_, first_)))
#elif defined(__GNUC__)
#define QUARN_PRINTF(format_, first_) __attribute__((format(gnu_printf, format_, first_)))
#else
#define QUARN_PRINTF(format_, first_)
#endif
