// Who may do what with a file, carried from one to another.
#pragma once

#include "quarn/text/string.h"

namespace Quarn::detail {

// Gives the file `to` the permissions of `from`, its owner and its group too where this process may. False
// where `from` has some that cannot be read or set.
bool CopyPermissions(string const& from, string const& to) noexcept;

} // namespace Quarn::detail
