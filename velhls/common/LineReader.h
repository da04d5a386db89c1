// Internal to the library, not installed: the one place where lines are read from a stream.
#pragma once

#include <istream>
#include <string>

namespace velhls {

/// Reads up to "\n", which is dropped; the last line of the input may lack it. `line` is empty when nothing
/// is left or the stream was not good.
void readRawLine(std::istream& input, std::string& line);

/// The same, and removes every carriage return from the line, wherever it stands.
void readLine(std::istream& input, std::string& line);

}  // namespace velhls
