#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "velhls/VELHLSCheck.h"

#include "tests/support/RepeatedText.h"

/// Playlists that are made to be costly, in any size. Twice the size is twice as much of everything in them.
namespace hostile {

struct Input {
    std::string name;
    VELHLSDiagnostics::PlaylistKind kind;
    /// The size of the smaller of the two texts whose cost is compared: a number of characters or of records.
    std::size_t size;
    std::function<std::string(std::size_t)> text;
};

inline constexpr std::size_t manyCharacters = 65536;
inline constexpr std::size_t manyRecords = 1024;

inline const std::string variant = "#EXT-X-STREAM-INF:BANDWIDTH=1\nvariant.m3u8\n";
inline const std::string segment = "#EXTINF:6,\nsegment1.ts\n";

using playlist::times;

/// The text so many times, with another number of six digits for each "~".
std::string counted(std::size_t count, std::string_view text);

/// As many names that the standard library's hash puts into the fewest buckets that are allowed to them, in a map that
/// has grown to hold them: what costs most of what is accepted.
std::vector<std::string> crowdedNames(std::size_t count, std::size_t inOneBucket);

/// An EXT-X-DEFINE for each name.
std::string definesOf(const std::vector<std::string>& names);

/// The lines as a media pattern.
std::string patternOf(const std::string& body, const std::string& repeatCount);

std::vector<Input> inputs();

}  // namespace hostile
