#pragma once

#include <string>
#include <vector>

#include "tool/Check.h"

namespace tool {

/// The findings as JSON. The schema is docs/schemas/check-1.schema.json.
[[nodiscard]] std::string jsonReport(const std::vector<CheckedFile>& files);

}  // namespace tool
