// The library as a module of the process, and the choice of its language, before there are other threads.
#pragma once

#include "quarn/export.h"
#include "quarn/platform/win32_types.h"

namespace QuarnUtil {

// The library's own instance, set when it is loaded and never changed. Any thread may call it.
QUARN_API HINSTANCE GetLibraryInstance();

// Chooses, once per process, the language of the library's own texts; to be called at the start, before other
// threads use them. Further calls do nothing, whatever came of the first.
//
// The language module lies beside the library and is named after it with `language` behind the name:
// QuarnUtilDEU.dll beside QuarnUtil.dll, libQuarnUtilDEU.so beside libQuarnUtil.so.1. It stays loaded. Where
// it cannot be loaded, the library's English texts stay in force. In either case the C runtime's locale is
// set, for all categories, to the letters of `language`, if the runtime knows a locale of that name; "" for a
// language without letters, which means the environment's locale.
//
// Null and texts of fewer than two characters choose the library's own texts and leave the locale.
QUARN_API void InitLanguage(char const* language);

} // namespace QuarnUtil
