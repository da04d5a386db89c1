// Internal to the library, not installed: what the end of a URI's path lets one infer.
#pragma once

#include <cstdint>
#include <string_view>

namespace velhls {

/// The format of a segment, as far as its URI tells.
enum class SegmentFormat : std::uint8_t { unknown, transportStream, fragmentedMp4, packedAudio, webVtt };

/// What follows the last point of the last part of the path; empty when there is none.
[[nodiscard]] std::string_view suffixOf(std::string_view uri);

[[nodiscard]] SegmentFormat formatOf(std::string_view uri);

}  // namespace velhls
