// quarn: looks into settings, records, registries, version blocks and logs of the library, and changes
// settings. docs/tool.md shows how; `quarn --help` lists the commands.
#include "command_line.h"
#include "outcome.h"
#include "terminal.h"
#include "text.h"

#include <exception>
#include <new>

int main(int argc, char** argv)
{
    int result = tool::CannotRead;
    try {
        tool::PrepareTerminal();
        result = tool::RunCommandLine(argc, argv);
        tool::FinishOutput();
        return result;
    } catch (tool::Failure const& failure) {
        result = failure.Code();
        tool::Warn(failure.what());
    } catch (std::bad_alloc const&) {
        tool::Warn("not enough memory");
    } catch (std::exception const& failure) {
        tool::Warn(tool::Printable(failure.what()));
    }
    return result;
}
