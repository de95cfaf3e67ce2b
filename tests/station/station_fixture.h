// The sample station as a user runs it: a program, its output, its files.
#pragma once

#include "quarn/platform/win32_api.h"
#include "quarn/properties/property_collection.h"
#include "quarn/properties/win32/property_stores.h"
#include "quarn/properties/win32/xml_persist.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

inline std::string Contents(std::filesystem::path const& path)
{
    std::ifstream file(path, std::ios_base::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// The station's data folder and registry are the test's own; on Windows those of the machine, which is a Wine
// prefix, so that one test runs at a time.
class Station : public testing::Test
{
protected:
    void SetUp() override
    {
        m_folder = std::filesystem::absolute("station_test") /
                   testing::UnitTest::GetInstance()->current_test_info()->name();
        std::filesystem::remove_all(m_folder);
        std::filesystem::create_directories(m_folder);
#if defined(_WIN32)
        char folder[MAX_PATH];
        ASSERT_TRUE(Quarn::Win32::QuarnProperties::GetXMLFolder(folder));
        m_data = folder;
#else
        m_data = m_folder / "data";
        std::filesystem::create_directory(m_data);
        ::setenv("QUARNUTIL_MACHINE_DIR", m_data.c_str(), 1);
#endif
        RemoveFiles();
    }
    void TearDown() override
    {
        RemoveFiles();
        std::filesystem::remove_all(m_folder);
    }

    std::string Settings() const
    {
        return (m_data / "Station.xml").string();
    }
    std::filesystem::path Journal() const
    {
        return m_data / "Station.journal";
    }
    // The second names of the settings file.
    std::vector<std::filesystem::path> Backups() const
    {
        std::vector<std::filesystem::path> backups;
        for (std::filesystem::path const& path : Files()) {
            if (path.filename().string().rfind("Station_", 0) == 0) {
                backups.push_back(path);
            }
        }
        return backups;
    }
    Quarn::PropertyCollection Load() const
    {
        Quarn::PropertyCollection settings;
        EXPECT_TRUE(Quarn::Win32::XMLPropPersist(Settings()).Populate(&settings));
        return settings;
    }

    // Runs the program; its output, both kinds, is in m_output, with line feeds alone.
    int Run(std::string const& arguments)
    {
        std::filesystem::path const out = m_folder / "output.txt";
        std::string const program = std::filesystem::path(QUARN_STATION).make_preferred().string();
        int const status = std::system((program + " " + arguments + " > " + out.string() + " 2>&1").c_str());
        m_output = Contents(out);
        std::erase(m_output, '\r');
        return status;
    }
    bool Says(std::string const& text) const
    {
        return m_output.find(text) != std::string::npos;
    }

    std::filesystem::path m_folder;
    std::filesystem::path m_data;
    std::string m_output;

private:
    std::vector<std::filesystem::path> Files() const
    {
        std::vector<std::filesystem::path> files;
        for (std::filesystem::directory_entry const& entry : std::filesystem::directory_iterator(m_data)) {
            if (entry.path().filename().string().rfind("Station", 0) == 0) {
                files.push_back(entry.path());
            }
        }
        return files;
    }
    void RemoveFiles() const
    {
        for (std::filesystem::path const& path : Files()) {
            std::filesystem::remove(path);
        }
#if defined(_WIN32)
        ::SHDeleteKeyA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Tessary\\Station");
#endif
    }
};
