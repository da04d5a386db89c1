#pragma once

#include <cstddef>
#include <cstdint>
#include <istream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velhls/common/VELHLSExport.h"
#include "velhls/common/VELHLSReason.h"
#include "velhls/document/VELHLSFinding.h"
#include "velhls/document/VELHLSRule.h"

/// Says what is wrong with the text of a playlist, where, by whose rules, and whether the models read it.
///
///     const VELHLSDiagnostics::Report report = VELHLSDiagnostics::check(text);
///     for (const VELHLSFinding& finding : report.findings) {
///         std::cout << finding.line << ":" << finding.column << ": " << finding.message << "\n";
///     }
///     if (report.rejected) std::cout << "rejected: " << report.rejected->message << "\n";
///
/// Two voices speak, and are never mixed: the standard, which knows nothing of this library, and the library, which tells
/// what its models reject, drop or change.
class VELHLS_CHECK_API VELHLSDiagnostics {
  public:
    VELHLSDiagnostics() = delete;

    /// What a text is read as.
    enum PlaylistKind : std::int32_t {
        Detect = 0,  ///< what its tags tell
        Master = 1,  ///< a master playlist
        Media = 2,   ///< a media playlist
    };

    /// By whose rules a text is checked.
    enum class Profile : std::uint8_t {
        rfc8216,     ///< RFC 8216
        rfc8216bis,  ///< RFC 8216 as its successor changes it, low latency included
        apple,    ///< Apple's authoring rules for its devices, as far as a text shows them, and nothing else
        library,  ///< what the models reject, drop, change or read otherwise than it seems to be meant
    };

    /// "rfc8216", "rfc8216bis", "apple" or "library".
    [[nodiscard]] static std::string_view nameOf(Profile profile) noexcept;

    /// The profile with this name; nothing when there is none.
    [[nodiscard]] static std::optional<Profile> profileNamed(std::string_view name) noexcept;

    /// All profiles, in the order of their numbers.
    [[nodiscard]] static std::vector<Profile> profiles();

    /// What is asked.
    struct Options {
        /// What to read the text as.
        PlaylistKind kind = Detect;
        /// By whose rules to check it; one that stands twice counts once. None: only whether the models reject it.
        std::vector<Profile> profiles = {Profile::rfc8216};
        /// Whether findings have their fixes. Without it they cost nothing.
        bool fixes = false;
    };

    /// What is answered.
    struct Report {
        /// What the text was read as; Detect when it is neither kind of playlist.
        PlaylistKind kind = Detect;
        /// What the profiles find.
        std::vector<VELHLSFinding> findings;
        /// Why the models reject the text, whatever the profiles; nothing when they accept it.
        std::optional<VELHLSReason> rejected;
    };

    /// The most findings of one rule that are listed, of each profile. The last of them tells how many more there were.
    /// So the list is bounded, whatever the playlist holds.
    static constexpr std::size_t maximumFindingsPerRule = 100;

    /// Checks the text by RFC 8216.
    [[nodiscard]] static Report check(std::string_view text);

    /// Checks the text as asked.
    ///
    /// `rejected` is what the parse of a text of the kind says (VELHLSParsedManifest::parseManifest,
    /// VELHLSMediaStream::parseMediaStream): nothing if and only if that gives a playlist. Of a text that is neither kind
    /// of playlist it is the rule "not-a-playlist".
    ///
    /// A profile of the standard looks at the text from its first line to its last, whatever the models reject; its
    /// errors are clauses that must be kept, its warnings those that should be. Where rfc8216 and rfc8216bis find the
    /// same, it is told once, by the later one. A text that is no playlist at all has the one finding "not-a-playlist".
    ///
    /// The profile library has an error if and only if the models reject the text; the first error stands where the
    /// parse gave up. Errors after it are what the parse would have met, had it gone on: what only follows from an
    /// earlier one is left out where that can be told. Errors between records come last when a line was rejected before.
    ///
    /// All other findings come in the order of their places, and those of one place in the order of the profiles. It takes
    /// time and memory linear in the text, but for sorting and for what media patterns expand to (docs/bounds.md). Throws
    /// std::length_error for a text of 4 GiB or more, and nothing else but std::bad_alloc.
    [[nodiscard]] static Report check(std::string_view text, const Options& options);

    /// The same for what is left of the stream, which is read to its end. An empty text when it is not good. A stream
    /// that breaks off is read as one that ends there and becomes bad, and throws if it was told to.
    [[nodiscard]] static Report check(std::istream& input);
    /// The same with options.
    [[nodiscard]] static Report check(std::istream& input, const Options& options);

    /// What a text was taken for, and why.
    struct Detection {
        /// Master or Media.
        PlaylistKind kind = Detect;
        /// The name of the tag that decided.
        std::string tag;
        /// The line of that tag, counted from 1.
        std::size_t line = 1;
    };

    /// Decides by the tags that only one kind of playlist has (RFC 8216, sections 4.3.2 to 4.3.4). The more frequent of
    /// the tags of variants (EXT-X-STREAM-INF, EXT-X-I-FRAME-STREAM-INF) and of segments (EXTINF) decides; of as many,
    /// the one that comes first; without any, the first tag that only one kind has. Nothing when there is no such tag,
    /// and for IPTV lists: EXTINF lines with attributes or a duration below 0, and no tag that begins with EXT-X.
    [[nodiscard]] static std::optional<Detection> detectKind(std::string_view text);

    /// All rules of the profile, in the order of the documentation; of a profile of the standard those of presentations too
    /// (VELHLSPresentation).
    [[nodiscard]] static std::vector<VELHLSRule> rules(Profile profile);

    /// The rule with this id, if there is one: of a rule that several profiles have, that of the first of them.
    [[nodiscard]] static std::optional<VELHLSRule> ruleNamed(std::string_view id);
};
