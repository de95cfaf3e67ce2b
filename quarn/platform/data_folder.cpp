#include "quarn/platform/data_folder.h"

#include "quarn/platform/win32_api.h"

#include <new>

namespace Quarn::detail {

bool FindDataFolder(char* folder)
{
    constexpr int Folders[] = {CSIDL_COMMON_DOCUMENTS, CSIDL_COMMON_APPDATA, CSIDL_APPDATA,
                               CSIDL_LOCAL_APPDATA, CSIDL_PERSONAL};
    for (int const number : Folders) {
        HRESULT const result = ::SHGetFolderPathA(nullptr, number, nullptr, 0, folder);
        if (SUCCEEDED(result)) {
            return true;
        }
        if (result == E_OUTOFMEMORY) {
            throw std::bad_alloc();
        }
    }
    return false;
}

} // namespace Quarn::detail
