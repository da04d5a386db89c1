#pragma once

#include <string>

#include "velhls/VELHLSCheck.h"

namespace tool {

/// Where the clause of the rule can be read, on the network; empty where there is none.
[[nodiscard]] std::string helpUriOf(const VELHLSRule& rule);

}  // namespace tool
