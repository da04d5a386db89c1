// Internal to the library, not installed: the parse functions of the records that segments hold, with a recorder
// that may be null. The public ones of the same records call these without.
#pragma once

#include <string_view>

#include "velhls/common/Recorder.h"
#include "velhls/media/VELHLSMISMap.h"
#include "velhls/media/VELHLSProtectionData.h"

namespace velhls {

/// See VELHLSProtectionData::parse. True on success.
[[nodiscard]] bool parseKey(std::string_view line, VELHLSProtectionData& key, Recorder* recorder);

/// See VELHLSMISMap::parse. True on success.
[[nodiscard]] bool parseMap(std::string_view line, VELHLSMISMap& map, Recorder* recorder);

}  // namespace velhls
