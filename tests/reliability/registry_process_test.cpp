// Eight processes that write to one registry key at once, and others that read it meanwhile.
#include "quarn/registry/registry_key.h"
#include "quarn/registry/registry_value.h"

#include "platform/child_process.h"
#include "reliability/commands.h"
#include "tests/platform/scratch_folder.h"
#include "tests/registry/throw_away_key.h"
#include "tests/scale.h"

#include <memory>

#include <gtest/gtest.h>

namespace {

using Win32Quarn::CurrentUserKey;
using Win32Quarn::RegistryValue;

constexpr int WriterCount = 8;
// All writers write this value, each its own letter so many times.
constexpr char const* Shared = "shared";
constexpr std::size_t SharedSize = 3000;

// ---- in the child

// Whether the value is somebody's whole text.
bool IsWhole(CurrentUserKey& key)
{
    Quarn::string text;
    unsigned long type = 0;
    return RegistryValue(key, Shared).Read(text, &type) && text.size() == SharedSize &&
           text == std::string(SharedSize, text[0]);
}

} // namespace

int WriteValues(std::string const& path, std::string const& writer, int count)
{
    CurrentUserKey key(path);
    if (!key.Open("")) {
        return 1;
    }
    for (int i = 0; i < count; ++i) {
        std::string const name = Numbered(writer, i);
        if (!RegistryValue(key, name).Write(Quarn::string(name)) ||
            !RegistryValue(key, Shared).Write(Quarn::string(SharedSize, writer[0]))) {
            return 2;
        }
    }
    return 0;
}

int ReadValues(std::string const& path, std::string const& end)
{
    CurrentUserKey key(path);
    if (!key.OpenRead("")) {
        return 1;
    }
    while (::GetFileAttributesA(end.c_str()) == INVALID_FILE_ATTRIBUTES) {
        if (!IsWhole(key)) {
            return 2;
        }
    }
    return 0;
}

namespace {

TEST(Processes, EightWritersOfOneRegistryLoseNothingAndReadersSeeWholeValues)
{
    ScratchFolder const folder;
    ThrowAwayKey const key;
    int const count = Times("QUARN_SAVES", 50);
    ASSERT_EQ(WriteValues(key.Path(), "a", 1), 0);
    std::vector<std::unique_ptr<ChildProcess>> writers;
    std::vector<std::unique_ptr<ChildProcess>> readers;
    using Command = std::vector<std::string>;
    for (int i = 0; i < 2; ++i) {
        readers.push_back(std::make_unique<ChildProcess>(Command{"look", key.Path(), folder / "end"}));
    }
    for (int i = 0; i < WriterCount; ++i) {
        writers.push_back(std::make_unique<ChildProcess>(Command{
            "values", key.Path(), std::string(1, static_cast<char>('a' + i)), std::to_string(count)}));
    }
    for (auto const& writer : writers) {
        EXPECT_EQ(writer->Wait(), 0);
    }
    folder.Make("end");
    for (auto const& reader : readers) {
        EXPECT_EQ(reader->Wait(), 0);
    }
    int lost = 0;
    for (int i = 0; i < WriterCount; ++i) {
        for (int j = 0; j < count; ++j) {
            std::string const name = Numbered(std::string(1, static_cast<char>('a' + i)), j);
            lost += DataOf(key, name.c_str()) == name + '\0' ? 0 : 1;
        }
    }
    EXPECT_EQ(lost, 0);
    EXPECT_EQ(ValueNames(key).size(), static_cast<std::size_t>(WriterCount * count + 1));
    ShowFigure(WriterCount, " writers of ", count, " registry values each, ", lost, " lost");
}

} // namespace
