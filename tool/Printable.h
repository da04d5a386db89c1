#pragma once

#include <string>
#include <string_view>

namespace tool {

/// The text with its control characters, those that turn the direction of writing, and bytes that are not UTF-8
/// written as "\xNN": a playlist must not be able to steer the terminal of the person who looks at it, nor to
/// break a message into two lines.
[[nodiscard]] std::string printable(std::string_view text);

/// The same in double quotes, cut after some 120 bytes: for messages.
[[nodiscard]] std::string quotedExcerpt(std::string_view text);

}  // namespace tool
