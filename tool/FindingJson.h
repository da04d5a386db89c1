#pragma once

#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include "velhls/VELHLS.h"
#include "velhls/VELHLSCheck.h"

namespace tool {

/// A finding in the file with this path. Its related places without a URI are in the same file.
[[nodiscard]] nlohmann::ordered_json findingAsJson(const std::string& path, const VELHLSFinding& finding);

/// Why the models reject a playlist; null when they do not.
[[nodiscard]] nlohmann::ordered_json rejectionAsJson(const std::optional<VELHLSReason>& reason);

}  // namespace tool
