#pragma once

#include <cstddef>
#include <string>

namespace tool {

/// The name under which standard input is given.
inline constexpr char standardInput[] = "-";

/// The most that is read of an input unless the command line says otherwise: a million and a half segments.
inline constexpr std::size_t usualLargestInput = std::size_t{64} << 20;

/// The name of an input in messages.
[[nodiscard]] std::string nameInMessages(const std::string& path);

/// All bytes of the file, or of standard input for "-". Throws a Failure when it cannot be read or has more
/// than so many bytes; no more of it is then held in memory.
[[nodiscard]] std::string contentOf(const std::string& path, std::size_t mostBytes);

}  // namespace tool
