#pragma once

#include <string>
#include <vector>

#include "tool/Check.h"

namespace tool {

/// The findings as SARIF 2.1.0 (OASIS), with all rules.
[[nodiscard]] std::string sarifReport(const std::vector<CheckedFile>& files, ExitStatus status);

}  // namespace tool
