#include "quarn/properties/win32/file_permissions.h"

#include "quarn/platform/win32_api.h"

#include <cstddef>
#include <new>
#include <vector>

namespace Quarn::detail {

bool CopyPermissions(string const& from, string const& to) noexcept
try {
    constexpr SECURITY_INFORMATION AccessList = DACL_SECURITY_INFORMATION;
    constexpr SECURITY_INFORMATION GroupAndList = GROUP_SECURITY_INFORMATION | AccessList;
    constexpr SECURITY_INFORMATION Everything = OWNER_SECURITY_INFORMATION | GroupAndList;
    DWORD size = 0;
    ::GetFileSecurityA(from.c_str(), Everything, nullptr, 0, &size);
    std::vector<std::max_align_t> buffer(size / sizeof(std::max_align_t) + 1);
    if (!::GetFileSecurityA(from.c_str(), Everything, buffer.data(), size, &size)) {
        return false;
    }
    // Not everybody may give a file away, but its owner may give it to a group of his.
    return ::SetFileSecurityA(to.c_str(), Everything, buffer.data()) != FALSE ||
           ::SetFileSecurityA(to.c_str(), GroupAndList, buffer.data()) != FALSE ||
           ::SetFileSecurityA(to.c_str(), AccessList, buffer.data()) != FALSE;
} catch (std::bad_alloc const&) {
    return false;
}

} // namespace Quarn::detail
