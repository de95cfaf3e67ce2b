// Text for comparison with what the library gives in the process code page.
#pragma once

#include "quarn/platform/win32_api.h"

#include <string>
#include <string_view>

inline std::string ProcessText(std::u16string_view text)
{
    std::basic_string<WCHAR> const wide(text.begin(), text.end());
    int const length = static_cast<int>(wide.size());
    std::string bytes(wide.size() * 3, '\0');
    bytes.resize(static_cast<std::size_t>(::WideCharToMultiByte(
        CP_ACP, 0, wide.data(), length, bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr)));
    return bytes;
}
