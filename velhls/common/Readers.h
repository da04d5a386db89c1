// Internal to the libraries, not installed: the one way from velhls::check to the readers.
#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "velhls/common/PrivateExport.h"
#include "velhls/common/Reading.h"
#include "velhls/common/VELHLSReason.h"

class VELHLSMediaStream;
class VELHLSParsedManifest;

namespace velhls {

/// Reads a playlist as its parse does, for somebody who follows: the reading, which was made for this text, learns where
/// the records stand and why something is rejected, broken rules between the records of a master playlist included.
///
/// Null when the playlist is rejected. A reading that goes on after rejections gives what was not rejected. Throws
/// std::bad_alloc alone: a number that cannot be converted is a rejection.
[[nodiscard]] VELHLS_PRIVATE_API std::shared_ptr<VELHLSParsedManifest> readMaster(std::string_view text,
                                                                                  Reading& reading);
[[nodiscard]] VELHLS_PRIVATE_API std::shared_ptr<VELHLSMediaStream> readMedia(std::string_view text,
                                                                              Reading& reading);

/// Why the parse of a media playlist rejects the text, as VELHLSMediaStream::parseMediaStream tells it; nothing when it
/// accepts it. No more than two segments are held at once, but for those of a pattern. Throws std::bad_alloc alone.
[[nodiscard]] VELHLS_PRIVATE_API std::optional<VELHLSReason> whyMediaIsRejected(std::string_view text);

}  // namespace velhls
