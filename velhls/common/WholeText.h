// Internal to the library, not installed: the text of a stream in one piece.
#pragma once

#include <istream>
#include <string>

#include "velhls/common/PrivateExport.h"

namespace velhls {

/// All that is left in the stream, whose state stays as it is at the text's end. A stream buffer that throws makes the
/// stream bad, and what was read until then is the text, unless the stream was told to throw; std::bad_alloc is passed
/// on.
[[nodiscard]] VELHLS_PRIVATE_API std::string readAll(std::istream& input);

}  // namespace velhls
