// What the first search for a module does to PATH; each case in a process of its own.
#include "quarn/platform/win32_library.h"

#include "platform/child_process.h"
#include "platform/companions.h"

namespace {

#if defined(_WIN32)
constexpr char ListSeparator = ';';
constexpr char const* Root = "C:\\";
#else
constexpr char ListSeparator = ':';
constexpr char const* Root = "/";
#endif

class PathVariable : public Companions
{
protected:
    std::string const m_common = Win32Quarn::GetCommonDirectory("");

    // PATH after these steps of a process, as the runtime library has it and as the system has it.
    std::string After(std::vector<std::string> steps) const
    {
        std::string const result = m_folder / "result";
        steps.insert(steps.begin(), {"library", result});
        EXPECT_EQ(ChildProcess(steps).Wait(), 0) << "no module is found";
        std::string const both = ContentOf(result);
        std::string const one = both.substr(0, both.find('\n'));
        EXPECT_EQ(both, one + "\n" + one);
        return one;
    }
};

TEST_F(PathVariable, GetsTheCommonDirectoryAtItsEnd)
{
    EXPECT_EQ(After({"PATH=one", "load=" + m_name}), "one" + (ListSeparator + m_common));
    std::string const two = std::string("one") + ListSeparator + "two" + ListSeparator;
    EXPECT_EQ(After({"PATH=" + two, "load=" + m_name}), two + ListSeparator + m_common);
}

TEST_F(PathVariable, GetsItWhereverTheNameLeads)
{
    EXPECT_EQ(After({"PATH=one", std::string("load=") + Root + m_name}), "one" + (ListSeparator + m_common));
    EXPECT_EQ(After({"PATH=one", "load=/" + m_name}), "one" + (ListSeparator + m_common));
}

TEST_F(PathVariable, StaysAsItIsForAnEmptyName)
{
    EXPECT_EQ(After({"PATH=one", "load="}), "one");
    EXPECT_EQ(After({"PATH=one", "load=", "load=" + m_name}), "one" + (ListSeparator + m_common));
}

TEST_F(PathVariable, IsExtendedOncePerProcess)
{
    EXPECT_EQ(After({"PATH=one", "load=" + m_name, "load=" + m_name, "load=" + m_file}),
              "one" + (ListSeparator + m_common));
    EXPECT_EQ(After({"PATH=one", "load=" + m_name, "PATH=two", "load=" + m_name}), "two");
}

TEST_F(PathVariable, ThatHoldsTheCommonDirectoryStaysAsItIs)
{
    std::string const path = std::string("one") + ListSeparator + m_common + ListSeparator + "two";
    EXPECT_EQ(After({"PATH=" + path, "load=" + m_name}), path);
    EXPECT_EQ(After({"PATH=" + m_common, "load=" + m_name}), m_common);
}

TEST_F(PathVariable, ThatHoldsItAsPartOfAnotherDirectoryStaysAsItIsDeliberately)
{
    std::string const path = m_common + " of old" + Separator + "bin";
    EXPECT_EQ(After({"PATH=" + path, "load=" + m_name}), path);
}

TEST_F(PathVariable, ThatIsMissingCountsAsEmpty)
{
    EXPECT_EQ(After({"PATH=", "load=" + m_name}), ListSeparator + m_common);
}

TEST_F(PathVariable, OfAnyLengthIsKept)
{
    std::string const path(20'000, 'p');
    EXPECT_TRUE(After({"PATH=" + path, "load=" + m_name}) == path + ListSeparator + m_common);
}

TEST_F(PathVariable, ServesTheSystemsOwnSearch)
{
    std::string const path = Put("2", m_common, m_file);
    EXPECT_EQ(ChildProcess({"library", "", "PATH=one", "system=" + m_file}).Wait(), 0);
    EXPECT_EQ(ChildProcess({"library", "", "PATH=one", "load=" + m_name + "x", "system=" + m_file}).Wait(),
              2);
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
    std::filesystem::remove(m_common, ignored);
}

} // namespace
