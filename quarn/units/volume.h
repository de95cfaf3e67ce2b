// Quarn::Volume: the place of a quantity that has neither value nor unit yet. Copying and assigning it does
// nothing, in any thread.
#pragma once

namespace Quarn {

class Volume
{};

} // namespace Quarn
