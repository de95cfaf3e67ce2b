// The command line: what commands and options there are, their help, and who does the work.
#pragma once

namespace tool {

// Does what the command line says and returns the exit code. Throws Failure.
int RunCommandLine(int argc, char** argv);

} // namespace tool
