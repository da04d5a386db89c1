#pragma once

#include <string>

#include "tool/CommandOutline.h"

namespace tool {

/// The manual page of the command, section 1, as text for man(1).
[[nodiscard]] std::string manualPage(const CommandOutline& command, const std::string& version);

}  // namespace tool
