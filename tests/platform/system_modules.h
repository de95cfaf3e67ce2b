// The Windows modules of the installed Wine.
#pragma once

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

// The paths of its libraries and programs; empty where it is not installed.
inline std::vector<std::string> SystemModules()
{
    namespace fs = std::filesystem;
    std::vector<fs::path> folders;
#if defined(_WIN32)
    folders.emplace_back("C:\\windows\\system32");
#else
    folders.emplace_back("/usr/lib/wine/x86_64-windows");
    for (auto const& entry : fs::directory_iterator("/usr/lib")) {
        folders.push_back(entry.path() / "wine" / "x86_64-windows");
    }
#endif
    std::vector<std::string> files;
    for (fs::path const& folder : folders) {
        if (!fs::is_directory(folder)) {
            continue;
        }
        for (auto const& entry : fs::directory_iterator(folder)) {
            std::string const extension = entry.path().extension().string();
            if (extension == ".dll" || extension == ".exe") {
                files.push_back(entry.path().string());
            }
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}
