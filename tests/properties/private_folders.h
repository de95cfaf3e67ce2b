// Stores of a test: in folders of its own where the environment can tell the library so, else under a file
// name of its own; what they leave is removed.
#pragma once

#include "quarn/properties/win32/property_stores.h"

#include "scratch.h"

#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

class PrivateFolders : public ::testing::Test
{
protected:
    PrivateFolders()
    {
#if !defined(_WIN32)
        ::setenv("QUARNUTIL_MACHINE_DIR", std::filesystem::absolute(m_scratch.Folder()).c_str(), 1);
#endif
        ::testing::TestInfo const& test = *::testing::UnitTest::GetInstance()->current_test_info();
        m_base = std::string("QuarnTest-") + test.name();
        m_file = m_base + ".xml";
        Remove();
    }
    ~PrivateFolders() override
    {
        Remove();
    }

    std::string DataFolder() const
    {
        char folder[260] = "";
        EXPECT_TRUE(Quarn::Win32::QuarnProperties::GetXMLFolder(folder));
        return folder;
    }

    // The paths of the file's second names.
    std::vector<std::string> Backups() const
    {
        std::vector<std::string> backups;
        for (auto const& entry : std::filesystem::directory_iterator(DataFolder())) {
            if (entry.path().filename().string().rfind(m_base + "_", 0) == 0) {
                backups.push_back(entry.path().string());
            }
        }
        return backups;
    }

    std::string m_base;
    std::string m_file;

private:
    void Remove() const
    {
        std::error_code ignored;
        for (std::string const& path : Backups()) {
            std::filesystem::remove(path, ignored);
        }
        std::filesystem::remove(DataFolder() + "/" + m_file, ignored);
    }

    Scratch const m_scratch;
};
