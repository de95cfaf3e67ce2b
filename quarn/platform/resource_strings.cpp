#include "quarn/platform/resource_strings.h"

#include "quarn/platform/win32_api.h"

namespace Win32Quarn {

bool LoadQuarnString(Quarn::string& text, unsigned int id, HINSTANCE module)
{
    if (module == nullptr) {
        module = ::GetModuleHandleA(nullptr);
        if (module == nullptr) {
            return false;
        }
    }
    char buffer[2048];
    int const length = ::LoadStringA(module, id, buffer, sizeof buffer);
    if (length <= 0) {
        return false;
    }
    text = buffer;
    return true;
}

Quarn::string LoadQuarnString(unsigned int id, HINSTANCE module)
{
    Quarn::string text;
    LoadQuarnString(text, id, module);
    return text;
}

} // namespace Win32Quarn
