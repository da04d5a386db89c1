// Internal to the library, not installed: numbers of seconds as messages show them.
#pragma once

#include <string>

namespace velhls {

/// "6.006": at most six decimals, whatever the locale.
[[nodiscard]] std::string secondsText(double seconds);

}  // namespace velhls
