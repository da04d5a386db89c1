#pragma once

#include <nlohmann/json.hpp>

#include "velhls/VELHLSCheck.h"

namespace tool {

/// A finding as all commands write it.
[[nodiscard]] nlohmann::ordered_json findingAsJson(const VELHLSFinding& finding);

}  // namespace tool
