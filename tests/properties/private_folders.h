// The files of a test's store in the data folder that platform/private_machine.cpp has made for the test
// program.
#pragma once

#include "quarn/properties/win32/property_stores.h"

#include "tests/platform/scratch_folder.h"

#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

class PrivateFolders : public ::testing::Test
{
protected:
    PrivateFolders()
    {
        ::testing::TestInfo const& test = *::testing::UnitTest::GetInstance()->current_test_info();
        m_base = std::string("Quarn") + test.test_suite_name() + test.name();
        m_file = m_base + ".xml";
    }
    ~PrivateFolders() override
    {
        std::error_code ignored;
        for (std::string const& name : Names()) {
            std::filesystem::path const path = std::filesystem::path(DataFolder()) / name;
            std::filesystem::permissions(path, std::filesystem::perms::owner_all, ignored);
            std::filesystem::remove(path, ignored);
        }
    }

    void SetUp() override
    {
        ASSERT_EQ(std::filesystem::path(DataFolder()),
                  std::filesystem::path(std::getenv("QUARN_TEST_MACHINE")) / "data")
            << "the test would touch the user's settings";
    }

    std::string DataFolder() const
    {
        char folder[MAX_PATH] = "";
        EXPECT_TRUE(Quarn::Win32::QuarnProperties::GetXMLFolder(folder));
        return folder;
    }

    // The names of the test's files in the data folder, temporary ones included.
    std::set<std::string> Names() const
    {
        std::set<std::string> names;
        for (auto const& entry : std::filesystem::directory_iterator(DataFolder())) {
            std::string const name = entry.path().filename().string();
            if (name.rfind(m_base, 0) == 0 || name.rfind(".~", 0) == 0) {
                names.insert(name);
            }
        }
        return names;
    }

    // The paths of the file's second names.
    std::vector<std::string> Backups() const
    {
        std::vector<std::string> backups;
        for (std::string const& name : Names()) {
            if (name.rfind(m_base + "_", 0) == 0) {
                backups.push_back((std::filesystem::path(DataFolder()) / name).string());
            }
        }
        return backups;
    }

    std::string m_base;
    std::string m_file;
};
