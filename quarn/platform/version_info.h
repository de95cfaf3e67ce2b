// Win32Quarn::CVersionInfo: the texts of a module's version block (VS_VERSIONINFO), company, product,
// versions and the rest, in the first language that the block lists. A value that never changes: copies share
// the block, and any threads may read objects and their copies at once.
//
// On Windows modules are files of that system; elsewhere they are too, and also the modules that carry
// resources by quarn_add_resources (cmake/quarn_resources.cmake). The file is read, never loaded or run.
#pragma once

#include "quarn/export.h"
#include "quarn/text/string.h"

#include <memory>

namespace Win32Quarn {

// A damaged, foreign or missing file is a file without a version block. Nothing throws but std::bad_alloc,
// for want of the few bytes of a result.
class QUARN_API CVersionInfo
{
public:
    // The block of the process's executable; without one where its path has 260 characters or more.
    CVersionInfo();
    // The block of this file; null is no file.
    CVersionInfo(char const* fileName);

    // The text of the entry named beside each getter, up to its first zero byte, in the process code page.
    // Without a version block: "???". With a block that lacks the entry, deliberately, the path of the query:
    // "\StringFileInfo\" + translation + "\" + name. The translation is the language and the code page of the
    // block's first language, four lower-case hexadecimal digits each, "040904b0" say; empty where the block
    // lists none, so that no entry is found.
    Quarn::string GetComments() const;        // Comments
    Quarn::string GetCompanyName() const;     // CompanyName
    Quarn::string GetCopyright() const;       // LegalCopyright
    Quarn::string GetFileDescription() const; // FileDescription
    Quarn::string GetFileVersion() const;     // FileVersion
    Quarn::string GetInternalName() const;    // InternalName
    Quarn::string GetLegalTrademarks() const; // LegalTrademarks
    Quarn::string GetPrivateBuild() const;    // PrivateBuild
    Quarn::string GetProductName() const;     // ProductName
    Quarn::string GetProductVersion() const;  // ProductVersion
    Quarn::string GetSpecialBuild() const;    // SpecialBuild

protected:
    // The entry of this name, as above; names compare without case.
    Quarn::string GetValue(Quarn::string const& key) const;

private:
    void Init(char const* fileName);

    std::shared_ptr<unsigned char[]> m_data; // null: no version block
    Quarn::string m_translation;
};

} // namespace Win32Quarn
