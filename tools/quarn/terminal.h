// What a terminal is on each system; posix/ and windows/ have the bodies.
#pragma once

#include <cstdio>

namespace tool {

bool IsTerminal(std::FILE* stream);

// Makes the terminal behind the standard output understand colours and the process's texts, where it has to
// be told. To be called once, at the start.
void PrepareTerminal();

} // namespace tool
