#include "quarn/stream/compress.h"

namespace Quarn {

StreamCompress::~StreamCompress() = default;

} // namespace Quarn
