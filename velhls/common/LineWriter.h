// Internal to the library, not installed: the one place where playlists' own lines are written to a stream.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

namespace velhls {

/// Writes the bytes as they are, whatever field width the stream is set to.
void writeText(std::ostream& out, std::string_view text);

/// Writes a line with its end and flushes the stream, so that a reader at the other end sees whole lines.
void writeLine(std::ostream& out, std::string_view line);

/// "#" and the tag's name as a line.
void writeTag(std::ostream& out, std::string_view tag);

/// "#", the tag's name, ":" and the value as a line.
void writeTag(std::ostream& out, std::string_view tag, std::string_view value);
void writeTag(std::ostream& out, std::string_view tag, std::int64_t value);

}  // namespace velhls
