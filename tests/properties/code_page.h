// Text of the tests in the process code page.
#pragma once

#include "quarn/platform/win32_api.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

// The text in the process code page; every character must have a place there.
inline std::string InCodePage(std::u16string_view text)
{
    std::string bytes(text.size() * 4, '\0');
    int const size = ::WideCharToMultiByte(CP_ACP, 0, reinterpret_cast<WCHAR const*>(text.data()),
                                           static_cast<int>(text.size()), bytes.data(),
                                           static_cast<int>(bytes.size()), nullptr, nullptr);
    EXPECT_GT(size, 0);
    bytes.resize(static_cast<std::size_t>(size));
    return bytes;
}
