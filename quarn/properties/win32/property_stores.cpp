#include "quarn/properties/win32/property_stores.h"

#include "quarn/platform/data_folder.h"
#include "quarn/platform/win32_api.h"
#include "quarn/properties/win32/registry_seed.h"
#include "quarn/properties/win32/settings_backup.h"
#include "quarn/properties/win32/settings_document.h"
#include "quarn/properties/win32/settings_file.h"
#include "quarn/properties/win32/settings_path.h"

#include <cstring>
#include <filesystem>
#include <new>

namespace Quarn::Win32 {

Quarn::string const QuarnProperties::m_documentType = "Quarn_Properties";

QuarnProperties::QuarnProperties(Quarn::string const& fileName, Quarn::string const& name)
    : PropertyCollection(name, m_documentType),
      m_fileName(fileName),
      m_xmlFilePath(MakeFilePath(fileName))
{}

QuarnProperties::QuarnProperties(Quarn::string const& fileName, Quarn::string const& name, HKEY registryRoot,
                                 Quarn::string const& registryPath)
    : PropertyCollection(name, m_documentType),
      m_fileName(fileName),
      m_registryRoot(registryRoot),
      m_registryPath(registryPath),
      m_xmlFilePath(MakeFilePath(fileName))
{}

QuarnProperties::~QuarnProperties()
{
    if (m_autoPersist) {
        Persist(false);
    }
}

bool QuarnProperties::Populate()
{
    Clear();
    if (!detail::IsMissing(m_xmlFilePath)) {
        m_populatedOK = detail::LoadSettings(m_xmlFilePath, *this, m_spoiled);
        m_isExamined = true;
        ClearDirty();
    } else {
        m_spoiled = false;
        m_isExamined = false;
        m_populatedOK = m_registryFallback && RegistryPopulate();
    }
    return m_populatedOK;
}

bool QuarnProperties::RegistryPopulate()
{
    if (m_registryRoot == nullptr || m_registryPath.empty()) {
        return false;
    }
    detail::SeedResult const result = detail::SeedFromRegistry(m_registryRoot, m_registryPath, *this, *this);
    if (result == detail::SeedResult::NoKey) {
        return false;
    }
    OnPopulateFromRegistry();
    return result == detail::SeedResult::Read;
}

bool QuarnProperties::OnPopulateFromRegistry()
{
    return true;
}

bool QuarnProperties::Persist(bool force)
{
    if (!Dirty() && !force) {
        return true;
    }
    if (!m_isExamined) {
        m_spoiled = detail::AreSettingsSpoiled(m_xmlFilePath);
        m_isExamined = true;
    }
    if (!detail::SaveSettings(m_xmlFilePath, *this, m_spoiled)) {
        return false;
    }
    ClearDirty();
    return true;
}

void QuarnProperties::Clear()
{
    PropertyCollection::Clear();
    try {
        m_xmlFilePath = MakeFilePath(m_fileName);
    } catch (
        std::bad_alloc const&) { // NOLINT(bugprone-empty-catch): the path stays, as it nearly always does
    }
}

bool QuarnProperties::GetXMLFolder(char* folder)
{
    char found[MAX_PATH];
    try {
        if (folder == nullptr || !detail::FindDataFolder(found)) {
            return false;
        }
    } catch (std::bad_alloc const&) {
        return false;
    }
    std::size_t length = std::strlen(found);
    while (length > 1 && found[length - 1] == std::filesystem::path::preferred_separator) {
        --length;
    }
    found[length] = '\0';
    std::memcpy(folder, found, length + 1);
    return true;
}

bool QuarnProperties::BackupXML(char* backupPath)
{
    Quarn::string backup;
    if (backupPath == nullptr || !BackupSettingsFile(m_xmlFilePath, backup)) {
        return false;
    }
    std::memcpy(backupPath, backup.c_str(), backup.size() + 1);
    return true;
}

bool QuarnProperties::RestoreXML(Quarn::string const& backupPath)
{
    if (!RestoreSettingsFile(m_xmlFilePath, backupPath)) {
        return false;
    }
    // A restored store has always met its registry key first.
    Clear();
    if (m_registryFallback) {
        RegistryPopulate();
    }
    return Populate() && ::DeleteFileA(backupPath.c_str()) != FALSE;
}

bool QuarnProperties::RemoveXML()
{
    if (::DeleteFileA(m_xmlFilePath.c_str()) == FALSE) {
        return false;
    }
    Populate();
    return true;
}

bool QuarnProperties::RemoveAllXML(Quarn::string const& fileName)
{
    if (!fileName.empty()) {
        detail::RemoveSettingsFiles(MakeFilePath(fileName));
    }
    return false;
}

Quarn::string QuarnProperties::MakeFilePath(Quarn::string const& fileName)
{
    char folder[MAX_PATH];
    if (!detail::FindDataFolder(folder) || ::PathAddBackslashA(folder) == nullptr) {
        return fileName;
    }
    return folder + fileName;
}

} // namespace Quarn::Win32
