// The first use of the XML library in a process, without memory for it: each attempt in a process of its own.
#include "quarn/properties/property_collection.h"
#include "quarn/properties/win32/xml_persist.h"

#include "platform/child_process.h"
#include "tests/faults/fault_loop.h"
#include "tests/platform/scratch_folder.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <string_view>

#include <gtest/gtest.h>

using Quarn::PropertyCollection;
using Quarn::Win32::XMLPropPersist;

namespace {

enum ExitCode
{
    Loaded = 20,
    NotLoaded,
    NoFault,
};

// The child's work: loads the file with its allocation of that number failing, and once more with memory.
int Start(Faults::Plan const& plan, Quarn::string const& path)
{
    PropertyCollection collection;
    bool isLoaded = false;
    bool isStruck = false;
    try {
        Faults::Armed const armed(plan);
        XMLPropPersist const file(path);
        isLoaded = file.Populate(&collection);
        isStruck = armed.Struck() != nullptr;
    } catch (std::bad_alloc const&) {
        isStruck = true;
    }
    isLoaded = (isStruck ? XMLPropPersist(path).Populate(&collection) : isLoaded) &&
               collection.GetValueString("text", "") == "old";
    return !isLoaded ? NotLoaded : isStruck ? Loaded : NoFault;
}

TEST(XmlStart, WithoutMemoryFailsAndSucceedsLater)
{
    ScratchFolder const scratch;
    std::string const path =
        scratch.Make("a.xml", "<a><Key Name='n'><Value Name='text' Type='string'>old</Value></Key></a>");
    Faults::Figures figures;
    for (char const* const span : {"one", "rest"}) {
        // Two of the XML library's allocations cannot be made for it beforehand: the process then goes on,
        // but loads no settings any more.
        int withoutSettings = 0;
        // What comes behind the start fails in every load alike.
        for (int number = 1; number <= 20; number += std::min(Faults::AllocationStep(), 3)) {
            int const code = ChildProcess({"start-xml", span, std::to_string(number), path}).Wait();
            ASSERT_TRUE(code == Loaded || code == NotLoaded) << span << " " << number << ": " << code;
            withoutSettings += code == NotLoaded ? 1 : 0;
            ++figures.faults;
        }
        EXPECT_LE(withoutSettings, 2);
        figures.refusals += withoutSettings;
    }
    Faults::RecordFigures(figures);
}

} // namespace

int RunChildCommand(int count, char** arguments)
{
    if (count != 5 || std::string_view(arguments[1]) != "start-xml") {
        return -1;
    }
    Faults::Span const span =
        std::string_view(arguments[2]) == "one" ? Faults::Span::One : Faults::Span::Rest;
    return Start({Faults::Kind::Memory, span, std::atoi(arguments[3]), 12}, arguments[4]);
}
