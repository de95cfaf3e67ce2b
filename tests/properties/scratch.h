// A folder for one test's files, under the current one, removed with the object; and files as bytes.
#pragma once

#include "quarn/text/string.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

#include <gtest/gtest.h>

class Scratch
{
public:
    Scratch()
    {
        ::testing::TestInfo const& test = *::testing::UnitTest::GetInstance()->current_test_info();
        m_folder = "scratch-" + std::string(test.test_suite_name()) + "-" + test.name();
        std::filesystem::remove_all(m_folder);
        std::filesystem::create_directories(m_folder);
    }
    Scratch(Scratch const&) = delete;
    Scratch& operator=(Scratch const&) = delete;
    ~Scratch()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }

    std::string const& Folder() const { return m_folder; }
    Quarn::string operator/(std::string const& name) const { return m_folder + "/" + name; }

    // The names of all that is in the folder.
    std::set<std::string> Names() const
    {
        std::set<std::string> names;
        for (auto const& entry : std::filesystem::directory_iterator(m_folder)) {
            names.insert(entry.path().filename().string());
        }
        return names;
    }

private:
    std::string m_folder;
};

inline std::string ReadBytes(std::string const& path)
{
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << path;
    return std::string(std::istreambuf_iterator<char>(file), {});
}

inline void WriteBytes(std::string const& path, std::string const& bytes)
{
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    ASSERT_TRUE(file.good()) << path;
}
