// Internal to the library, not installed: numbers as messages show them.
#pragma once

#include <string>

namespace velhls {

/// A number of seconds for messages: "6.5".
[[nodiscard]] std::string inSeconds(double seconds);

}  // namespace velhls
