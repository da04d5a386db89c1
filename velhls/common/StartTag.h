// Internal to the library, not installed: EXT-X-START, the one tag with attributes that both kinds of
// playlist have (RFC 8216, section 4.3.5.2).
#pragma once

#include <optional>
#include <ostream>

#include "velhls/common/Recorder.h"
#include "velhls/common/TagLine.h"

namespace velhls {

struct StartTag {
    /// TIME-OFFSET in seconds; negative from the end of the playlist.
    double timeOffset = 0.0;
    /// True for PRECISE=YES only.
    bool precise = false;
};

/// Reads the attributes of the tag. Nothing when it is no attribute list, or has no TIME-OFFSET made
/// of digits, points and signs; such a TIME-OFFSET that is no number throws.
[[nodiscard]] std::optional<StartTag> parseStartTag(const TagLine& tagLine, Recorder* recorder);

/// Writes the tag's line, with the stream's own precision and floating-point flags; nothing for an offset of
/// 0.
void writeStartTag(std::ostream& out, const StartTag& start);

}  // namespace velhls
