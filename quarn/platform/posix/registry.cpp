// The registry on POSIX: the functions of the seam over the stores of the user and of the machine.
#include "quarn/platform/posix/handles.h"
#include "quarn/platform/posix/registry_store.h"

#include <algorithm>

namespace Quarn::detail {

namespace {

// Creating and removing sub-keys is every handle's right, as on Windows.
constexpr REGSAM EverythingAllowed = KEY_ALL_ACCESS;
constexpr REGSAM WritingRights = KEY_SET_VALUE | KEY_CREATE_SUB_KEY;

class OpenKey final : public HandleObject
{
public:
    OpenKey(RegistryStore& store, RegistryKeyPlace place, REGSAM access)
        : m_store(&store),
          m_place(place),
          m_access(access)
    {}

    RegistryStore& Store() const { return *m_store; }
    RegistryKeyPlace Place() const { return m_place; }
    REGSAM Access() const { return m_access; }

private:
    RegistryStore* m_store;
    RegistryKeyPlace m_place;
    REGSAM m_access;
};

// What `operation` answers, or the code that it throws.
template<typename Operation>
LSTATUS Answer(Operation&& operation) noexcept
{
    try {
        return static_cast<LSTATUS>(operation());
    } catch (RegistryFailure const& failure) {
        return failure.code;
    } catch (std::bad_alloc const&) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
}

bool IsRoot(HKEY key)
{
    return key == HKEY_CURRENT_USER || key == HKEY_USERS || key == HKEY_LOCAL_MACHINE ||
           key == HKEY_CLASSES_ROOT;
}

std::shared_ptr<OpenKey const> OpenKeyOf(HKEY key, REGSAM access = 0)
{
    if (IsRoot(key)) {
        bool const isFirst = key == HKEY_CURRENT_USER || key == HKEY_LOCAL_MACHINE;
        bool const isUser = key == HKEY_CURRENT_USER || key == HKEY_USERS;
        return std::make_shared<OpenKey const>(isUser ? RegistryStore::User() : RegistryStore::Machine(),
                                               isFirst ? FirstRegistryRoot : SecondRegistryRoot,
                                               EverythingAllowed);
    }
    std::shared_ptr<OpenKey const> found = FindHandle<OpenKey>(key);
    if (!found) {
        Refuse(ERROR_INVALID_HANDLE);
    }
    if ((found->Access() & access) != access) {
        Refuse(ERROR_ACCESS_DENIED);
    }
    return found;
}

HKEY NewHandle(RegistryStore& store, RegistryKeyPlace place, REGSAM access)
{
    return static_cast<HKEY>(AddHandle(std::make_shared<OpenKey>(store, place, access)));
}

bool IsText(DWORD type)
{
    return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
}

// Gives out a value's type and data as far as they are asked for. ERROR_MORE_DATA when the data does not fit:
// then its size alone is given out.
DWORD PutData(RegistryRow const& row, DWORD* type, BYTE* data, DWORD* size)
{
    if (type != nullptr) {
        *type = row.type;
    }
    if (size == nullptr) {
        return ERROR_SUCCESS;
    }
    DWORD const capacity = *size;
    *size = static_cast<DWORD>(row.data.size());
    if (data == nullptr) {
        return ERROR_SUCCESS;
    }
    if (capacity < row.data.size()) {
        return ERROR_MORE_DATA;
    }
    std::copy(row.data.begin(), row.data.end(), data);
    return ERROR_SUCCESS;
}

DWORD PutName(RegistryRow const& row, char* name, DWORD* size)
{
    if (*size <= row.name.size()) {
        return ERROR_MORE_DATA;
    }
    *std::copy(row.name.begin(), row.name.end(), name) = '\0';
    *size = static_cast<DWORD>(row.name.size());
    return ERROR_SUCCESS;
}

std::string_view NameOf(char const* name)
{
    return name != nullptr ? name : "";
}

} // namespace

} // namespace Quarn::detail

using namespace Quarn::detail;

// NOLINTBEGIN(readability-non-const-parameter): the types are those of Windows.

LSTATUS RegOpenKeyExA(HKEY key, char const* subKey, DWORD /*options*/, REGSAM access, HKEY* result)
{
    return Answer([&] {
        if (result == nullptr) {
            return ERROR_INVALID_PARAMETER;
        }
        std::shared_ptr<OpenKey const> const from = OpenKeyOf(key);
        *result = nullptr;
        RegistryStore& store = from->Store();
        RegistryKeyPlace const place = store.OpenKey(from->Place(), subKey, (access & WritingRights) != 0);
        // A root by itself keeps its handle.
        *result = IsRoot(key) && NameOf(subKey).empty() ? key : NewHandle(store, place, access);
        return ERROR_SUCCESS;
    });
}

LSTATUS RegCreateKeyExA(HKEY key, char const* subKey, DWORD reserved, char* /*className*/, DWORD options,
                        REGSAM access, _SECURITY_ATTRIBUTES const* /*security*/, HKEY* result,
                        DWORD* disposition)
{
    return Answer([&] {
        if (result == nullptr || reserved != 0 || options != REG_OPTION_NON_VOLATILE) {
            return ERROR_INVALID_PARAMETER;
        }
        std::shared_ptr<OpenKey const> const from = OpenKeyOf(key);
        *result = nullptr;
        RegistryStore& store = from->Store();
        bool created = false;
        RegistryKeyPlace place = store.CreateKey(from->Place(), subKey, created);
        if (!created && (access & WritingRights) != 0) {
            place = store.OpenKey(place, nullptr, true);
        }
        *result = NewHandle(store, place, access);
        if (disposition != nullptr) {
            *disposition = created ? REG_CREATED_NEW_KEY : REG_OPENED_EXISTING_KEY;
        }
        return ERROR_SUCCESS;
    });
}

LSTATUS RegCloseKey(HKEY key)
{
    if (IsRoot(key)) {
        return ERROR_SUCCESS;
    }
    bool const closed = FindHandle<OpenKey>(key) && RemoveHandle(key);
    return static_cast<LSTATUS>(closed ? ERROR_SUCCESS : ERROR_INVALID_HANDLE);
}

LSTATUS RegDeleteKeyA(HKEY key, char const* subKey)
{
    return Answer([&] {
        std::shared_ptr<OpenKey const> const from = OpenKeyOf(key);
        if (subKey == nullptr) {
            return ERROR_INVALID_PARAMETER;
        }
        from->Store().DeleteKey(from->Place(), subKey);
        return ERROR_SUCCESS;
    });
}

LSTATUS RegEnumKeyExA(HKEY key, DWORD index, char* name, DWORD* nameSize, DWORD* reserved, char* className,
                      DWORD* classSize, FILETIME* lastWritten)
{
    return Answer([&] {
        if (name == nullptr || nameSize == nullptr || reserved != nullptr) {
            return ERROR_INVALID_PARAMETER;
        }
        std::shared_ptr<OpenKey const> const parent = OpenKeyOf(key, KEY_ENUMERATE_SUB_KEYS);
        RegistryRow const row = parent->Store().SubKeyAt(parent->Place(), index);
        if (!row) {
            return ERROR_NO_MORE_ITEMS;
        }
        if (className != nullptr && classSize != nullptr) {
            if (*classSize == 0) {
                return ERROR_MORE_DATA;
            }
            *className = '\0';
        }
        DWORD const result = PutName(row, name, nameSize);
        if (result == ERROR_SUCCESS && classSize != nullptr) {
            *classSize = 0;
        }
        if (result == ERROR_SUCCESS && lastWritten != nullptr) {
            *lastWritten = {};
        }
        return result;
    });
}

LSTATUS RegQueryValueExA(HKEY key, char const* name, DWORD* reserved, DWORD* type, BYTE* data, DWORD* size)
{
    return Answer([&] {
        if (reserved != nullptr || (data != nullptr && size == nullptr)) {
            return ERROR_INVALID_PARAMETER;
        }
        std::shared_ptr<OpenKey const> const parent = OpenKeyOf(key, KEY_QUERY_VALUE);
        RegistryRow const row = parent->Store().FindValue(parent->Place(), NameOf(name));
        return row ? PutData(row, type, data, size) : ERROR_FILE_NOT_FOUND;
    });
}

LSTATUS RegSetValueExA(HKEY key, char const* name, DWORD /*reserved*/, DWORD type, BYTE const* data,
                       DWORD size)
{
    return Answer([&] {
        std::shared_ptr<OpenKey const> const parent = OpenKeyOf(key, KEY_SET_VALUE);
        if (data == nullptr && size != 0) {
            return ERROR_NOACCESS;
        }
        std::string_view bytes(reinterpret_cast<char const*>(data), size);
        std::string terminated;
        if (IsText(type) && !bytes.empty() && bytes.back() != '\0') {
            terminated.assign(bytes).push_back('\0');
            bytes = terminated;
        }
        parent->Store().SetValue(parent->Place(), NameOf(name), type, bytes);
        return ERROR_SUCCESS;
    });
}

LSTATUS RegDeleteValueA(HKEY key, char const* name)
{
    return Answer([&] {
        std::shared_ptr<OpenKey const> const parent = OpenKeyOf(key, KEY_SET_VALUE);
        parent->Store().DeleteValue(parent->Place(), NameOf(name));
        return ERROR_SUCCESS;
    });
}

LSTATUS RegEnumValueA(HKEY key, DWORD index, char* name, DWORD* nameSize, DWORD* reserved, DWORD* type,
                      BYTE* data, DWORD* dataSize)
{
    return Answer([&] {
        if (name == nullptr || nameSize == nullptr || reserved != nullptr ||
            (data != nullptr && dataSize == nullptr)) {
            return ERROR_INVALID_PARAMETER;
        }
        std::shared_ptr<OpenKey const> const parent = OpenKeyOf(key, KEY_QUERY_VALUE);
        RegistryRow const row = parent->Store().ValueAt(parent->Place(), index);
        if (!row) {
            return ERROR_NO_MORE_ITEMS;
        }
        DWORD const result = PutData(row, type, data, dataSize);
        return result == ERROR_SUCCESS ? PutName(row, name, nameSize) : result;
    });
}

// NOLINTEND(readability-non-const-parameter)
