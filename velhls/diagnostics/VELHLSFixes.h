#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "velhls/common/VELHLSExport.h"
#include "velhls/diagnostics/VELHLSDiagnostics.h"
#include "velhls/document/VELHLSEdit.h"
#include "velhls/document/VELHLSFix.h"

/// Mends playlists: what VELHLSDiagnostics finds and has a fix for, and no other byte.
///
///     const VELHLSFixes::Result mended = VELHLSFixes::forModels(text);
///     const auto stream = VELHLSMediaStream::parseMediaStream(mended.text);
///
/// The models reject many playlists of the world, most of them for something that can be written otherwise and means the
/// same: a last line feed that is missing, a URI of five characters, a tag between a segment's tags that they do not know.
/// `forModels` writes it so, and what they accept it returns as it is.
class VELHLS_CHECK_API VELHLSFixes {
  public:
    VELHLSFixes() = delete;

    /// What is asked.
    struct Options {
        /// What to read the text as.
        VELHLSDiagnostics::PlaylistKind kind = VELHLSDiagnostics::Detect;
        /// Whose findings to mend.
        std::vector<VELHLSDiagnostics::Profile> profiles = {VELHLSDiagnostics::Profile::rfc8216};
        /// Whether to take fixes that lose something, too.
        bool lossy = false;
        /// Whether to take fixes that say something new, too. Of several fixes of a finding the first is taken whose class is
        /// asked for.
        bool guess = false;
    };

    /// One fix that was taken.
    struct Done {
        /// The rule whose finding it mended, and its profile.
        std::string ruleId;
        std::string profile;  ///< "rfc8216", "rfc8216bis", "apple" or "library"
        /// What it did to what the playlist says, and in a few words what it did: see VELHLSFix.
        VELHLSFix::Class fixClass = VELHLSFix::Safe;
        std::string sentence;  ///< see VELHLSFix::sentence
        /// The line of its first edit, in the text that was given. Counted from 1.
        std::size_t line = 1;
    };

    /// What is answered.
    struct Result {
        /// The whole text, mended as far as that went.
        std::string text;
        /// The edits that make it of the text that was given: in the order of their places, none touching another.
        std::vector<VELHLSEdit> edits;
        /// What was done, in the order in which it was done. It is empty if and only if `edits` is.
        std::vector<Done> done;
        /// How many rounds took something. With maximumRounds there may be more to take: mend the text again.
        std::size_t rounds = 0;
        /// What is found in the mended text, with the fixes that were not taken.
        VELHLSDiagnostics::Report left;
    };

    /// The most rounds of mending. What one fix brings to light is mended in the next round; a playlist of the world takes
    /// two or three.
    static constexpr std::size_t maximumRounds = 64;

    /// Mends what the profiles find: reads, takes every fix whose class is asked for and whose edits touch no other's, and
    /// reads again, until nothing is left to take or so many rounds were made.
    ///
    /// Four things hold whatever the text. A text that the models accept stays accepted, with the same URIs in the same
    /// order. Neither RFC 8216 nor its successor has more findings above a note than before, nor has the profile apple if it
    /// is asked for. What kind of playlist it is taken for stays. And it grows to no more than twice its size and 64 KiB. A
    /// fix that would break one of these is not taken.
    ///
    /// The bound of findings in a report is none of fixes: all are mended. Mending what was mended changes nothing, but where
    /// a bound was reached. A text that is no playlist is returned as it is.
    ///
    /// Takes time linear in the text for each round, but for what media patterns expand to. Throws std::length_error for a
    /// text of 4 GiB or more, and nothing else but std::bad_alloc.
    [[nodiscard]] static Result apply(std::string_view text, const Options& options);

    /// Makes what the models reject acceptable, as far as that goes without changing what the playlist means: the safe fixes of
    /// the profile library. What the models accept stays as it is, and costs no more than their parse.
    [[nodiscard]] static Result forModels(std::string_view text);
};
