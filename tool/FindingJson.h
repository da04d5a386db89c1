#pragma once

#include <optional>

#include <nlohmann/json.hpp>

#include "velhls/VELHLS.h"
#include "velhls/VELHLSCheck.h"

namespace tool {

/// A finding as all commands write it.
[[nodiscard]] nlohmann::ordered_json findingAsJson(const VELHLSFinding& finding);

/// Why the models reject a playlist; null when they do not.
[[nodiscard]] nlohmann::ordered_json rejectionAsJson(const std::optional<VELHLSReason>& reason);

}  // namespace tool
