#include "quarn/platform/data_folder.h"

#include "quarn/platform/win32_api.h"

namespace Quarn::detail {

bool FindDataFolder(char* folder)
{
    constexpr int Folders[] = {CSIDL_COMMON_DOCUMENTS, CSIDL_COMMON_APPDATA, CSIDL_APPDATA,
                               CSIDL_LOCAL_APPDATA, CSIDL_PERSONAL};
    for (int const number : Folders) {
        if (SUCCEEDED(::SHGetFolderPathA(nullptr, number, nullptr, 0, folder))) {
            return true;
        }
    }
    return false;
}

} // namespace Quarn::detail
