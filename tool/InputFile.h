#pragma once

#include <cstddef>
#include <string>

namespace tool {

/// The name under which standard input is given, and the most that is read of any input.
inline constexpr char standardInput[] = "-";
inline constexpr std::size_t largestInput = std::size_t{512} << 20;

/// The name of an input in messages.
[[nodiscard]] std::string nameInMessages(const std::string& path);

/// All bytes of the file, or of standard input for "-". Throws a Failure when it cannot be read or is larger
/// than `largestInput`.
[[nodiscard]] std::string contentOf(const std::string& path);

}  // namespace tool
