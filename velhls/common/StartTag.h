// Internal to the library, not installed: EXT-X-START, the one tag with attributes that both kinds of
// playlist have (RFC 8216, section 4.3.5.2).
#pragma once

#include <ostream>
#include <string>

#include "velhls/common/PrivateExport.h"
#include "velhls/common/Reason.h"
#include "velhls/common/TagLine.h"

namespace velhls {

/// Reads TIME-OFFSET, and sets `precise` for PRECISE=YES; a tag without it leaves that as it was. False, with the reason,
/// when the tag has no attribute list, or no TIME-OFFSET made of digits, points and signs; such a TIME-OFFSET that is no
/// number throws.
[[nodiscard]] VELHLS_PRIVATE_API bool readStartTag(const TagLine& tagLine, double& timeOffset, bool& precise,
                                                   Reason& why);

/// The number as the stream would print it, but for the stream's locale and field width.
[[nodiscard]] VELHLS_PRIVATE_API std::string startOffsetText(const std::ostream& out, double timeOffset);

/// Writes the tag's line, with the stream's own precision and floating-point flags; nothing for an offset of
/// 0.
void writeStartTag(std::ostream& out, double timeOffset, bool precise);

}  // namespace velhls
