#include "quarn/properties/win32/file_reading.h"

#include "quarn/platform/win32_api.h"
#include "quarn/properties/win32/file_handle.h"
#include "quarn/properties/win32/settings_limits.h"

#include <algorithm>

namespace Quarn::detail {

bool ReadWholeFile(string const& path, std::string& content)
{
    content.clear();
    FileHandle const file(::CreateFileA(path.c_str(), GENERIC_READ, ShareAll, nullptr, OPEN_EXISTING,
                                        FILE_ATTRIBUTE_NORMAL, nullptr));
    LARGE_INTEGER size;
    if (!file.IsOpen() || !::GetFileSizeEx(file.Get(), &size) ||
        size.QuadPart > static_cast<LONGLONG>(MaxDocumentSize)) {
        return false;
    }
    // The size is a hint: the file may grow, and a device has none.
    constexpr std::size_t ReadStep = std::size_t{64} * 1024;
    std::size_t used = 0;
    content.resize(static_cast<std::size_t>(size.QuadPart) + 1);
    for (;;) {
        DWORD read = 0;
        if (!::ReadFile(file.Get(), content.data() + used, static_cast<DWORD>(content.size() - used), &read,
                        nullptr)) {
            return false;
        }
        used += read;
        if (read == 0) {
            content.resize(used);
            return true;
        }
        if (used == content.size()) {
            if (used > MaxDocumentSize) {
                return false;
            }
            content.resize(std::min(used + std::max(used, ReadStep), MaxDocumentSize + 1));
        }
    }
}

} // namespace Quarn::detail
