// The texts of a module's string table. Any thread may call the functions.
#pragma once

#include "quarn/export.h"
#include "quarn/platform/win32_types.h"
#include "quarn/text/string.h"

namespace Win32Quarn {

// Loads the text `id` of a module, null: of the process's executable. At most 2047 bytes of it, in the
// process code page. True when that gave a text that is not empty; otherwise `text` stays as it is.
QUARN_API bool LoadQuarnString(Quarn::string& text, unsigned int id, HINSTANCE module);

// The same text as the result; empty when there is none.
QUARN_API Quarn::string LoadQuarnString(unsigned int id, HINSTANCE module);

} // namespace Win32Quarn
