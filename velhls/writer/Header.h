// Internal to the library, not installed: what the writers of both kinds of playlist have in common.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

namespace velhls {

/// The lowest protocol version that has all that is written (RFC 8216, section 7).
class NeededVersion {
  public:
    void atLeast(std::int32_t version) { version_ = std::max(version_, version); }
    [[nodiscard]] std::int32_t version() const { return version_; }

  private:
    std::int32_t version_ = 1;
};

/// "#", the tag's name and the line's end.
void appendTag(std::string& out, std::string_view tag);
void appendTag(std::string& out, std::string_view tag, std::int64_t number);

/// Appends EXTM3U and EXT-X-VERSION: the model's version, or the needed one where that is higher.
void appendHeader(std::string& out, std::int32_t version, const NeededVersion& needed);

/// Appends EXT-X-START. The offset must be finite.
void appendStart(std::string& out, double timeOffset, bool precise);

}  // namespace velhls
