// (private) The folder for what applications keep: settings, the log.
#pragma once

namespace Quarn::detail {

// The first that the system has of these shell folders: common documents, common application data,
// application data, local application data, personal. `folder` has MAX_PATH bytes. False where there is none.
// Throws std::bad_alloc, rather than pass over a folder.
bool FindDataFolder(char* folder);

} // namespace Quarn::detail
