// A small station: opens its log and its settings, takes readings of the machine, asks its companion module
// about its pipe, appends all that to its journal as a record, reads the journal back, notes the run in its
// settings.
//
//   station                              one run
//   station --commission NAME PERCENT    names the station and sets its limit of free disk space, for the
//                                        first run
//   station --show FILE                  prints the tree of any settings file
//   station --dump                       prints the journal, record by record
//   station --language CODE ...          any of them with the library's texts in a language such as DEU
//
// Settings, journal and log lie in the machine's data folder.
#include "quarn/platform/module.h"
#include "quarn/properties/property_collection.h"
#include "quarn/properties/win32/xml_persist.h"

#include "journal.h"
#include "run.h"
#include "settings.h"
#include "show.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

namespace {

int Commission(std::string const& name, std::string const& percent)
{
    if (!station::Commission(name, std::strtoul(percent.c_str(), nullptr, 10))) {
        std::fprintf(stderr, "station: the registry could not be written\n");
        return 1;
    }
    std::printf("The first run will be that of \"%s\".\n", name.c_str());
    return 0;
}

int ShowFile(std::string const& path)
{
    Quarn::PropertyCollection settings;
    if (!Quarn::Win32::XMLPropPersist(path).Populate(&settings)) {
        std::fprintf(stderr, "station: %s is not a settings file that can be read\n", path.c_str());
        return 1;
    }
    station::Show(settings);
    return 0;
}

int DumpJournal()
{
    Quarn::Win32::QuarnProperties settings = station::MakeSettings();
    std::string const path = station::JournalPath(settings);
    station::JournalSummary const summary = station::ListJournal(path);
    if (summary.restBytes != 0) {
        std::fprintf(stderr, "station: %s is damaged behind these records: %s\n", path.c_str(),
                     summary.restReason.c_str());
        return 1;
    }
    if (summary.records == 0) {
        std::fprintf(stderr, "station: there is no record in %s\n", path.c_str());
        return 1;
    }
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    std::vector<std::string> arguments(argv + 1, argv + argc);
    try {
        if (arguments.size() >= 2 && arguments[0] == "--language") {
            QuarnUtil::InitLanguage(arguments[1].c_str());
            arguments.erase(arguments.begin(), arguments.begin() + 2);
        }
        if (arguments.empty()) {
            return station::RunOnce();
        }
        if (arguments.size() == 3 && arguments[0] == "--commission") {
            return Commission(arguments[1], arguments[2]);
        }
        if (arguments.size() == 2 && arguments[0] == "--show") {
            return ShowFile(arguments[1]);
        }
        if (arguments.size() == 1 && arguments[0] == "--dump") {
            return DumpJournal();
        }
    } catch (std::exception const& failure) {
        std::fprintf(stderr, "station: %s\n", failure.what());
        return 1;
    }
    std::fprintf(stderr,
                 "usage: station [--language CODE] [--commission NAME PERCENT | --show FILE | --dump]\n");
    return 2;
}
