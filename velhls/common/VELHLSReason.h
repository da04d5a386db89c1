#pragma once

#include <cstddef>
#include <string>

/// Why a parse rejected a text, and where.
///
///     VELHLSReason reason;
///     if (VELHLSParsedManifest::parseManifest(text, &reason) == nullptr) {
///         std::cerr << name << ":" << reason.line << ":" << reason.column << ": " << reason.message << "\n";
///     }
///
///     #EXTM3U
///     #EXT-X-STREAM-INF:BANDWIDTH=0      line 2, column 29, length 1: the "0"
///     low.m3u8                           ruleId     variant-bandwidth-zero
///                                        message    EXT-X-STREAM-INF: BANDWIDTH: expected a BANDWIDTH above 0, seen "0"
///
/// It is the first thing that the parse found, and the last that it looked at. Where it stands: in the line that is at
/// fault; for a playlist that ends inside a segment in the segment's first line, or in its last line when that is a URI
/// without a line feed; for a rule that binds the records of a master playlist to each other in the line of the record
/// that breaks it.
///
/// The parse of one record alone, of a variant or a segment for instance, has no place for a reason. To learn it parse a
/// playlist that holds the record's lines, as a text.
struct VELHLSReason {
    /// The stable name of the rule that was broken; docs/rules has a page of that name.
    std::string ruleId;

    /// The line in the text, counted from 1. Lines end at line feeds.
    std::size_t line = 1;

    /// The byte in that line where the reason stands, counted from 1.
    std::size_t column = 1;

    /// The number of bytes; 0 where something is missing. Never beyond the end of the line.
    std::size_t length = 0;

    /// What was expected, and what was seen. Text of the playlist in it is shortened; it may hold any bytes, control
    /// characters among them.
    std::string message;
};
