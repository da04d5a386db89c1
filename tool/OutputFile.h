#pragma once

#include <string>
#include <string_view>

namespace tool {

/// Writes to standard output. Throws a Failure when not all of it arrives.
void writeToStandardOutput(std::string_view text);

/// Replaces the file by the text, wholly or not at all: whoever opens it sees the old content or the new one.
/// A symbolic link stays, and what it points to is replaced; the file keeps its permissions; a device or a
/// pipe is written to. Throws a Failure, with the old content in place, when that cannot be done.
void replaceFile(const std::string& path, std::string_view text);

}  // namespace tool
