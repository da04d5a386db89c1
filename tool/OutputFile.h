#pragma once

#include <string>
#include <string_view>

namespace tool {

/// Writes to standard output. Throws a Failure when not all of it arrives.
void writeToStandardOutput(std::string_view text);

/// Replaces the file by the text, wholly or not at all: whoever opens it sees the old content or the new one,
/// whenever the command is ended. Throws a Failure, with the old content in place, when that cannot be done.
///
/// A symbolic link stays, and the file that it leads to is replaced, or made when it is not there. The file
/// keeps its permissions, and its owner where the user may give files away; other hard links keep the old
/// content. A file that the user may not write to is not replaced. A device or a pipe is written to.
void replaceFile(const std::string& path, std::string_view text);

}  // namespace tool
