// Internal to the library, not installed: the tags whose records segments share, EXT-X-KEY and EXT-X-MAP, and
// EXT-X-SESSION-KEY.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "velhls/common/Reason.h"
#include "velhls/common/TagLine.h"
#include "velhls/media/VELHLSMISMap.h"
#include "velhls/media/VELHLSProtectionData.h"

namespace velhls {

/// See VELHLSProtectionData::parse. False, with the reason and the key as it was, when the tag is rejected.
[[nodiscard]] bool readKey(const TagLine& tagLine, VELHLSProtectionData& key, Reason& why);

/// KEYFORMATVERSIONS: the numbers in decimal with slashes between them; an empty text for none.
[[nodiscard]] std::string keyFormatVersionsText(const std::vector<std::int32_t>& versions);

/// See VELHLSMISMap::parse. False, with the reason, when the tag is rejected.
[[nodiscard]] bool readMap(const TagLine& tagLine, VELHLSMISMap& map, Reason& why);

}  // namespace velhls
