// The playlists that are measured, made here from a fixed seed: every run on every machine reads the same bytes.
#pragma once

#include <cstddef>
#include <string>

namespace inputs {

/// Segments with durations of three decimals that vary, and URIs such as "segment_000001.ts".
std::string vod(std::size_t segments);

/// The same with URIs of 80 bytes.
std::string vodWithLongUris(std::size_t segments);

/// Each segment with a program date-time and a byte range; a new key every 10 of them, a map, a discontinuity
/// every 100.
std::string rich(std::size_t segments);

/// Six segments with date-times, about 1 KB: what a player asks for every few seconds.
std::string live();

/// Twelve variants, six audio and four subtitle renditions, four I-frame variants.
std::string smallMaster();

/// Variants only.
std::string largeMaster(std::size_t variants);

/// One media pattern that makes so many segments, and the same playlist written out.
std::string pattern(std::size_t segments);
std::string patternWrittenOut(std::size_t segments);

}  // namespace inputs
