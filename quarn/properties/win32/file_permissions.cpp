#include "quarn/properties/win32/file_permissions.h"

#include "quarn/platform/win32_api.h"

#include <cstddef>
#include <vector>

namespace Quarn::detail {

bool CopyPermissions(string const& from, string const& to)
{
    constexpr SECURITY_INFORMATION kList = DACL_SECURITY_INFORMATION;
    constexpr SECURITY_INFORMATION kAll = OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION | kList;
    DWORD size = 0;
    ::GetFileSecurityA(from.c_str(), kAll, nullptr, 0, &size);
    std::vector<std::max_align_t> buffer(size / sizeof(std::max_align_t) + 1);
    if (!::GetFileSecurityA(from.c_str(), kAll, buffer.data(), size, &size)) {
        return false;
    }
    // Not everybody may give a file away.
    return ::SetFileSecurityA(to.c_str(), kAll, buffer.data()) ||
           ::SetFileSecurityA(to.c_str(), kList, buffer.data());
}

} // namespace Quarn::detail
