#include "quarn/platform/module.h"

#include "quarn/platform/module_state.h"
#include "quarn/platform/path_parts.h"
#include "quarn/platform/win32_api.h"
#include "quarn/text/ascii.h"

#include <clocale>
#include <cstring>
#include <string>

namespace {

constinit HINSTANCE g_library = nullptr;
constinit HANDLE g_loadingMutex = nullptr;
constinit HINSTANCE g_languageModule = nullptr;
constinit bool g_languageChosen = false;

// Null where there is none.
HINSTANCE LoadLanguageModule(char const* language)
{
    char library[MAX_PATH];
    DWORD const length = ::GetModuleFileNameA(g_library, library, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) {
        return nullptr;
    }
    return ::LoadLibraryA(Quarn::detail::SiblingModule(library, language).c_str());
}

} // namespace

namespace Quarn::detail {

void Attach(HINSTANCE library)
{
    g_library = library;
    if (g_loadingMutex == nullptr) {
        g_loadingMutex = ::CreateMutexA(nullptr, FALSE, "Win32LibraryMutex");
    }
}

void Detach()
{
    // Fixed texts, which readers of the debugger's output know; nothing is counted.
    ::OutputDebugStringA("\r\n** Dumping Win32Util Memory **\r\n------------------------------\r\n");
    ::OutputDebugStringA("(No leaks)\r\n");
}

HANDLE LoadingMutex()
{
    return g_loadingMutex;
}

HINSTANCE ResourceModule()
{
    return g_languageModule != nullptr ? g_languageModule : g_library;
}

} // namespace Quarn::detail

namespace QuarnUtil {

HINSTANCE GetLibraryInstance()
{
    return g_library;
}

void InitLanguage(char const* language)
{
    if (g_languageChosen) {
        return;
    }
    g_languageChosen = true;
    if (language == nullptr || std::strlen(language) < 2) {
        return;
    }
    g_languageModule = LoadLanguageModule(language);
    std::string locale = language;
    std::erase_if(locale, [](char c) { return !Quarn::detail::IsLetter(c); });
    std::setlocale(LC_ALL, locale.c_str());
}

} // namespace QuarnUtil
