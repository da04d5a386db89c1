#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "velhls/document/VELHLSFix.h"

/// A second place that a finding speaks of, in its own text or in another one: what the first place disagrees with.
struct VELHLSRelatedPlace {
    /// The text that it is in, by the name that the caller gave it; empty for the text of the finding itself.
    std::string uri;

    /// The line in that text, counted from 1.
    std::size_t line = 1;

    /// The byte in that line where the place begins, counted from 1.
    std::size_t column = 1;

    /// The number of bytes; 0 where something is missing. Never beyond the end of the line.
    std::size_t length = 0;

    /// What stands there, in a few words. Like a finding's message it may hold any bytes.
    std::string message;
};

/// One thing that is wrong with a playlist, or that the library does with it and that may surprise.
///
///     #EXTM3U
///     #EXT-X-STREAM-INF:BANDWIDTH=0      line 2, column 29, length 1: the "0"
///     low.m3u8                           ruleId     variant-bandwidth-zero
///                                        profile    library
///                                        severity   Error: the library rejects the playlist for it
///                                        message    EXT-X-STREAM-INF: BANDWIDTH: expected a BANDWIDTH above 0, seen "0"
///                                        source     library behaviour
struct VELHLSFinding {
    /// How much a finding weighs. A larger number weighs more.
    enum Severity : std::int32_t {
        Note =
            0,  ///< of a standard what it only recommends; of the library what is written otherwise, and no worse
        Warning =
            1,  ///< what should be otherwise, or seems to be wrong; what the library drops, changes or adds
        Error = 2,  ///< what must be otherwise; of the library a reason why it rejects the playlist
    };

    /// "note", "warning" or "error". Empty for a value that is none of them.
    [[nodiscard]] static constexpr std::string_view textOf(Severity severity) noexcept {
        if (severity == Error) return "error";
        if (severity == Warning) return "warning";
        return severity == Note ? "note" : "";
    }

    /// How much the finding weighs.
    Severity severity = Note;

    /// The stable name of the rule: see VELHLSDiagnostics::ruleNamed.
    std::string ruleId;

    /// Of a presentation, the playlist that the finding stands in, by the URI that the caller gave it; empty where one text was
    /// checked.
    std::string uri;

    /// The line in the text that was given, counted from 1. Lines end at line feeds.
    std::size_t line = 1;

    /// The byte in that line where the finding begins, counted from 1.
    std::size_t column = 1;

    /// The number of bytes; 0 where something is missing. Never beyond the end of the line.
    std::size_t length = 0;

    /// What was expected, what was seen. Text of the playlist in it is shortened; it may hold any bytes, control
    /// characters among them.
    std::string message;

    /// Where the rule comes from: a section of a standard; of the library "vendor extension" or "library behaviour".
    std::string source;

    /// By whose rules the playlist was checked: "rfc8216", "rfc8216bis" or "apple"; "library" for what the models do.
    std::string profile;

    /// The number of the clause that the rule stands for, in RFC 8216, its successor or the authoring rules: "4.3.2.1".
    /// Empty where there is none.
    std::string clause;

    /// The key word of that clause: "MUST", "SHOULD NOT"…; "SYN" for a format that is given without one, "REC" for what is
    /// recommended in passing. Empty where there is no clause.
    std::string level;

    /// What the finding speaks of beside its own place: the line of another playlist, or of an earlier version. Most findings
    /// have none.
    std::vector<VELHLSRelatedPlace> related;

    /// What mends it, the best first; none where nothing is known to, and where none were asked for
    /// (VELHLSDiagnostics::Options::fixes).
    std::vector<VELHLSFix> fixes;

    /// How many more findings this rule had after this one that are not listed. Other than 0 in the last listed
    /// finding of a rule that had more than VELHLSDiagnostics::maximumFindingsPerRule.
    std::size_t suppressed = 0;
};
