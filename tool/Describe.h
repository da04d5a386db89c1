#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "velhls/VELHLS.h"

namespace tool {

/// One line of a summary: the label, then the value in a column of its own.
[[nodiscard]] std::string summaryLine(std::string_view label, std::string_view value);

/// At most three decimals, none that are 0: "6.006", "-12.5", "4".
[[nodiscard]] std::string decimal(double number);

/// "1 segment", "2 segments".
[[nodiscard]] std::string counted(std::size_t count, std::string_view noun);

/// "AES-128, URI k, IV 0x…, KEYFORMAT f, versions 1/2".
[[nodiscard]] std::string describe(const VELHLSProtectionData& key);

/// The texts with ", " between them.
[[nodiscard]] std::string joined(const std::vector<std::string>& texts);

}  // namespace tool
