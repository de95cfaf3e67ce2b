// The first use of the XML library in a process, without memory for it: each attempt in a process of its own.
#include "quarn/properties/property_collection.h"
#include "quarn/properties/win32/xml_persist.h"

#include "tests/faults/fault_plan.h"
#include "tests/platform/scratch_folder.h"

#include <cstdio>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Quarn::PropertyCollection;
using Quarn::Win32::XMLPropPersist;

enum ExitCode
{
    Loaded = 20,
    NotLoaded,
    NoFault,
};

// The exit code of a child whose allocation of that number fails; -1 where it was killed.
int StartInChild(Faults::Plan const& plan, Quarn::string const& path)
{
    std::fflush(nullptr);
    ::pid_t const child = ::fork();
    if (child == 0) {
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
        // Then there is memory again.
        isLoaded = (isStruck ? XMLPropPersist(path).Populate(&collection) : isLoaded) &&
                   collection.GetValueString("text", "") == "old";
        ::_exit(!isLoaded ? NotLoaded : isStruck ? Loaded : NoFault);
    }
    int status = 0;
    return ::waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(XmlStart, WithoutMemoryFailsAndSucceedsLater)
{
    ScratchFolder const scratch;
    Quarn::string const path =
        scratch.Make("a.xml", "<a><Key Name='n'><Value Name='text' Type='string'>old</Value></Key></a>");
    for (Faults::Span const span : {Faults::Span::One, Faults::Span::Rest}) {
        // Two of the XML library's allocations cannot be made for it beforehand: the process then goes on,
        // but loads no settings any more.
        int withoutSettings = 0;
        // What comes behind the start fails in every load alike.
        for (int number = 1; number <= 20; ++number) {
            int const code = StartInChild({Faults::Kind::Memory, span, number, 12}, path);
            ASSERT_TRUE(code == Loaded || code == NotLoaded) << number << ": " << code;
            withoutSettings += code == NotLoaded ? 1 : 0;
        }
        EXPECT_LE(withoutSettings, 2);
    }
}

} // namespace
