// Win32Quarn::RegistryKey: a key of the registry, named by a root or an open parent and a path below it, with
// the handle once it is opened and the code of the last error. Four subclasses name the usual places. Values
// are read and written with RegistryValue (registry/registry_value.h), names listed with the classes of
// registry/registry_enum.h. Outside Windows platform/win32_api.h says where the registry is kept.
//
// A copy shares the handle: whichever of the two is closed or destroyed first closes it for both. An object
// belongs to one thread at a time; different objects may be used by different threads, in different processes
// too. Nothing throws but std::bad_alloc: operations return false, and the code tells why.
//
//   UserKey key("Acme", "Tool");
//   if (key.Open("")) {
//       RegistryValue(key, "Count").Write(7);
//   }
#pragma once

#include "quarn/export.h"
#include "quarn/platform/win32_types.h"
#include "quarn/text/string.h"

#include <concepts>

namespace Win32Quarn {

class QUARN_API RegistryKey
{
public:
    // Closed, without base and path.
    RegistryKey() = default;
    // Handle, base and path are the other key's, the last error is 0.
    RegistryKey(RegistryKey const& other);
    // A closed key below the handle of a parent, which must be open, and stay so while this key is used.
    // The path counts from there; the parent's own path is not put before it.
    RegistryKey(RegistryKey const& parent, Quarn::string const& path);
    // Takes all from the other key, the last error too. A handle that this key had stays open.
    RegistryKey& operator=(RegistryKey const& other);
    // Closes the handle.
    virtual ~RegistryKey();

    // Open the key at `subpath` below this key's path, or at the path itself when it is empty, with all
    // rights or to read; what was open is closed before. Both, deliberately, make a missing key with its
    // missing parents. The last error is that of the last call.
    bool Open(Quarn::string const& subpath);
    bool OpenRead(Quarn::string const& subpath);
    // True as well when the key was closed already, which leaves the last error as it is.
    bool Close();
    // Whether there is a handle.
    bool IsOpen() const { return m_key != nullptr; }

    // The handle, null while the key is closed. It stays this key's.
    HKEY GetHKey() const { return m_key; }
    // As GetHKey().
    operator HKEY() const { return m_key; }

    // Whether the key at `subpath` could be opened to read. Nothing is made, and the last error stays.
    bool ExistsRead(Quarn::string const& subpath) const;
    // The same to write (KEY_WRITE).
    bool ExistsWrite(Quarn::string const& subpath) const;

    // The path, with a backslash and `subpath` behind it where that is not empty.
    Quarn::string GetPath(Quarn::string const& subpath) const;
    // Lengthens the path in the same way. An open handle stays where it is.
    void AppendPath(Quarn::string const& sub);
    // The root or key that the path counts from; an open handle stays where it is.
    void SetBase(HKEY base) { m_base = base; }

    // The data and type of a value of the open key, as RegQueryValueExA gives them; the default value for an
    // empty name. `size` is the buffer's size, and becomes the size of the data, also when that does not fit
    // (ERROR_MORE_DATA, 234). Null pointers leave out what they stand for. The last error is the call's code.
    bool Read(Quarn::string const& name, unsigned char* buffer, unsigned long* size, unsigned long* type);
    bool Read(Quarn::string const& name, unsigned char* buffer, unsigned long size, unsigned long* type);
    template<std::integral T>
    bool Read(Quarn::string const& name, unsigned char* buffer, T size, unsigned long* type)
    {
        return Read(name, buffer, static_cast<unsigned long>(size), type);
    }

    // Moves the key to another path below the same base: a Copy with move into that key, which is made where
    // it is missing. Path and handle of this object stay, the handle that of the removed key. A path equal to
    // this key's, or below it, is refused (ERROR_INVALID_PARAMETER, 87), and nothing changes.
    bool Rename(Quarn::string const& newPath);
    // Writes the values of this key, and deliberately those of all keys below, into the destination key
    // itself; no sub-key is made there. Keys that are closed are opened with all rights. With `move` the
    // values, the keys below and in the end this key are deleted, and the result is true. Without, the
    // result is deliberately always false, also when all was copied, and of several sub-keys the first alone
    // is copied. A value with a name of 512 bytes or more or with data of more than 7,680 bytes, or one that
    // cannot be written, ends the copying of its key's values, and is lost with the later ones when the key
    // is then deleted.
    // A delete that fails ends a move with false, and leaves this key. A destination that is this key by
    // handle, base or path, or lies below it by its path, is refused for a move like a new path of Rename.
    bool Copy(RegistryKey& destination, bool move);

    // The Win32 code that the last recording operation gave, 0 for success.
    long GetLastError() const { return m_lastError; }

protected:
    // Closed.
    RegistryKey(HKEY base, Quarn::string const& path);

    // What Open, OpenRead and the Exists operations do, with other rights (KEY_...).
    bool Open(unsigned long access, Quarn::string const& subpath);
    bool Exists(unsigned long access, Quarn::string const& subpath) const;
    // Closes the key, without recording the result, and replaces the path, which is returned.
    Quarn::string const& SetPath(Quarn::string const& path);
    // For derived classes: replaces the code that GetLastError gives.
    void SetLastError(long code) { m_lastError = code; }

private:
    friend class RegistryKeyEnum;
    friend class RegistryValue;
    friend class RegistryValueEnum;

    // Whether a move of this key into `destination` would delete what it has just written.
    bool Contains(RegistryKey const& destination) const;
    bool ContainsPath(Quarn::string const& path) const;
    bool CopyValues(RegistryKey const& destination, bool move);

    HKEY m_key = nullptr;
    HKEY m_base = nullptr;
    Quarn::string m_path;
    long m_lastError = 0;
};

// A key below HKEY_LOCAL_MACHINE.
class QUARN_API LocalMachineKey : public RegistryKey
{
public:
    // Closed; the root itself without a path.
    LocalMachineKey(Quarn::string const& path = Quarn::string());
    LocalMachineKey(LocalMachineKey const& other) = default;
    LocalMachineKey& operator=(LocalMachineKey const& other) = default;
    ~LocalMachineKey() override;
};

// A key below HKEY_CURRENT_USER.
class QUARN_API CurrentUserKey : public RegistryKey
{
public:
    // Closed; the root itself without a path.
    CurrentUserKey(Quarn::string const& path = Quarn::string());
    CurrentUserKey(CurrentUserKey const& other) = default;
    CurrentUserKey& operator=(CurrentUserKey const& other) = default;
    ~CurrentUserKey() override;
};

// The user's key of a product, Software\company\product. Where a name is empty, that of the running
// executable's version block takes its place (platform/version_info.h says what it is without a block).
class QUARN_API UserKey : public CurrentUserKey
{
public:
    // Closed.
    UserKey(Quarn::string const& company = Quarn::string(), Quarn::string const& product = Quarn::string());
    UserKey(UserKey const& other) = default;
    UserKey& operator=(UserKey const& other) = default;
    ~UserKey() override;
};

// The user's key of one version of a product, Software\company\product\version; the same holds for the
// version.
class QUARN_API UserVersionKey : public CurrentUserKey
{
public:
    // Closed.
    UserVersionKey(Quarn::string const& company = Quarn::string(),
                   Quarn::string const& product = Quarn::string(),
                   Quarn::string const& version = Quarn::string());
    UserVersionKey(UserVersionKey const& other) = default;
    UserVersionKey& operator=(UserVersionKey const& other) = default;
    ~UserVersionKey() override;
};

} // namespace Win32Quarn
