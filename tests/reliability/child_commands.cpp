#include "platform/child_process.h"
#include "reliability/commands.h"

#include <cstdlib>
#include <string_view>

int RunChildCommand(int count, char** arguments)
{
    std::string_view const command = count > 2 ? arguments[1] : "";
    if (command == "settings" && count == 4) {
        return KeepSettings(arguments[2], std::atol(arguments[3]));
    }
    if (command == "journal" && count == 4) {
        return KeepJournal(arguments[2], std::atol(arguments[3]) == 0);
    }
    if (command == "values" && count == 5) {
        return WriteValues(arguments[2], arguments[3], std::atoi(arguments[4]));
    }
    if (command == "look" && count == 4) {
        return ReadValues(arguments[2], arguments[3]);
    }
    return -1;
}
