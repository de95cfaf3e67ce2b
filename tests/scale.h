// How often a test does what it does: a little by itself, much where the environment asks for it; and the
// figures that it shows for what it did.
#pragma once

#include <cstdlib>
#include <iostream>

// Where programs are slow by their making, and where every process takes its time to start.
#if defined(_WIN32)
constexpr int Slowness = 10;
#elif defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int Slowness = 5;
#else
constexpr int Slowness = 1;
#endif

// The number in the environment variable, else the ordinary one, or the part of it that there is time for.
inline int Times(char const* variable, int ordinary)
{
    char const* const text = std::getenv(variable);
    int const number = text != nullptr ? std::atoi(text) : 0;
    return number > 0 ? number : (ordinary + Slowness - 1) / Slowness;
}

// For the table of tests/full.sh.
template<typename... Part>
void ShowFigure(Part const&... part)
{
    std::cout << "figure: ";
    (std::cout << ... << part) << std::endl;
}
