#pragma once

#include <cstddef>
#include <cstdint>
#include <istream>
#include <optional>
#include <string>
#include <vector>

#include "velhls/common/VELHLSExport.h"
#include "velhls/document/VELHLSFinding.h"
#include "velhls/document/VELHLSRule.h"

/// Says what is wrong with the text of a playlist, where, and what the library makes of it.
///
///     for (const VELHLSFinding& finding : VELHLSDiagnostics::check(text)) {
///         std::cout << finding.line << ":" << finding.column << ": " << finding.message << "\n";
///     }
class VELHLS_CHECK_API VELHLSDiagnostics {
  public:
    VELHLSDiagnostics() = delete;

    /// What a text is read as.
    enum PlaylistKind : std::int32_t {
        Detect = 0,  ///< what its tags tell
        Master = 1,  ///< a master playlist
        Media = 2,   ///< a media playlist
    };

    /// The most findings of one rule that are listed. The last of them tells how many more there were. So the
    /// list is bounded, whatever the playlist holds.
    static constexpr std::size_t maximumFindingsPerRule = 100;

    /// Reads the text as the parse of its kind does, and goes on after what that rejects.
    ///
    /// For the kinds Master and Media there is an error among the findings if and only if the parse of the text
    /// (VELHLSParsedManifest::parseManifest, VELHLSMediaStream::parseMediaStream) returns null or throws an
    /// exception of number conversion. The first error stands where that parse gave up: in the line that it read
    /// last, or, where a record has several lines (a variant's tag and URI, a segment, a media pattern), in the
    /// one of them that is at fault. When the input ends too early, the error stands at the first tag of what is
    /// incomplete. Where rules between records are broken, it stands in the line of the record that broke them;
    /// in the first line for a master playlist without variants.
    ///
    /// For the kind Detect a text that is neither kind of playlist has the one finding "not-a-playlist"; any
    /// other is read as the kind that detectKind tells.
    ///
    /// The findings come in the order of their places, except that errors between records come last when a line
    /// was rejected before. Errors after the first one are what the parse would have met, had it gone on: what
    /// only follows from an earlier one is left out where that can be told.
    ///
    /// It takes time and memory linear in the text, but for what media patterns expand to (docs/bounds.md).
    [[nodiscard]] static std::vector<VELHLSFinding> check(const std::string& text,
                                                          PlaylistKind kind = Detect);

    /// The same for what is left of the stream, which is read to its end. An empty text when it is not good. A stream
    /// that breaks off is read as one that ends there and becomes bad, and throws if it was told to.
    [[nodiscard]] static std::vector<VELHLSFinding> check(std::istream& input, PlaylistKind kind = Detect);

    /// What a text was taken for, and why.
    struct Detection {
        /// Master or Media.
        PlaylistKind kind = Detect;
        /// The name of the tag that decided.
        std::string tag;
        /// The line of that tag, counted from 1.
        std::size_t line = 1;
    };

    /// Decides by the tags that only one kind of playlist has (RFC 8216, sections 4.3.2 to 4.3.4). Where both
    /// are there a variant makes it a master playlist, since no media playlist has one; otherwise the first such
    /// tag decides. Nothing when there is no such tag, and for IPTV lists: EXTINF lines with attributes or a
    /// duration below 0, and no tag that begins with EXT-X.
    [[nodiscard]] static std::optional<Detection> detectKind(const std::string& text);

    /// All rules, in the order of the documentation.
    [[nodiscard]] static std::vector<VELHLSRule> rules();

    /// The rule with this id, if there is one.
    [[nodiscard]] static std::optional<VELHLSRule> ruleNamed(const std::string& id);
};
