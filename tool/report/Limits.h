#pragma once

#include <cstddef>

/// How much of the playlists a page draws and lists. So a page is small, whatever they hold; what it leaves out it counts.
namespace tool::report {

/// The bars of one timeline, and of all that share an axis, where each has at least so many: of more segments each bar stands for
/// several.
inline constexpr std::size_t mostColumns = 160;
inline constexpr std::size_t mostColumnsOfAxis = 1600;
inline constexpr std::size_t leastColumns = 40;
/// The marks of one kind, the ad breaks and the date ranges of one timeline: of more, a mark stands for several.
inline constexpr std::size_t mostMarks = 32;
/// The timelines of one axis.
inline constexpr std::size_t mostTimelines = 40;
/// The rungs of one ladder.
inline constexpr std::size_t mostRungs = 60;
/// The versions of a series that are drawn and listed: the last ones.
inline constexpr std::size_t mostVersions = 60;
/// The changes of one version that are listed.
inline constexpr std::size_t mostChanges = 8;
/// The rows of one table.
inline constexpr std::size_t mostRows = 200;
/// The findings of one rule in one playlist that have a note beside their line.
inline constexpr std::size_t mostNotesOfRule = 5;
/// The places of one rule that the list of findings links to.
inline constexpr std::size_t mostPlaces = 5;
/// The bytes of one text: a line, a URI, a name.
inline constexpr std::size_t mostTextBytes = 240;
/// The lines of one difference.
inline constexpr std::size_t mostDiffLines = 8;
/// The lines that are shown of a playlist: all of a short one, else those at its start, around a finding, and at the end.
inline constexpr std::size_t linesOfShort = 24;
inline constexpr std::size_t linesAtStart = 6;
inline constexpr std::size_t linesAround = 1;
inline constexpr std::size_t linesAtEnd = 3;

}  // namespace tool::report
