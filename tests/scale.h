// How often a test does what it does: a little by itself, much where the environment asks for it; and the
// figures that it shows for what it did.
#pragma once

#include <cstdlib>
#include <iostream>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool IsSanitized = true;
#else
constexpr bool IsSanitized = false;
#endif

// The number in the environment variable, else the ordinary one, of which programs that are slow by their
// making take a fifth.
inline int Times(char const* variable, int ordinary)
{
    char const* const text = std::getenv(variable);
    int const number = text != nullptr ? std::atoi(text) : 0;
#if defined(_WIN32)
    constexpr bool IsSlow = true; // every process takes its time to start
#else
    constexpr bool IsSlow = IsSanitized;
#endif
    if (number > 0) {
        return number;
    }
    return IsSlow ? (ordinary + 4) / 5 : ordinary;
}

// For the table of tests/full.sh.
template<typename... Part>
void ShowFigure(Part const&... part)
{
    std::cout << "figure: ";
    (std::cout << ... << part) << std::endl;
}
