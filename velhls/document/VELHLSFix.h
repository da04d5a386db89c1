#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "velhls/document/VELHLSEdit.h"

/// A way to mend what a finding found: edits of the text that was checked, and what they do to the playlist.
///
///     #EXTINF:6,
///     0.ts            class     Safe
///                     sentence  writes "./0.ts", the same resource
///                     edits     "./" before the URI
struct VELHLSFix {
    /// What a fix does to what the playlist says. A larger number dares more.
    enum Class : std::int32_t {
        Safe = 0,  ///< nothing: it means the same
        Lossy,     ///< it takes away something that the playlist says, as the sentence tells
        Guess,     ///< it says something that the playlist does not say, and that may be wrong
    };

    /// "safe", "lossy" or "guess". Empty for a value that is none of them.
    [[nodiscard]] static constexpr std::string_view textOf(Class fixClass) noexcept {
        if (fixClass == Guess) return "guess";
        if (fixClass == Lossy) return "lossy";
        return fixClass == Safe ? "safe" : "";
    }

    /// What it does to what the playlist says.
    Class fixClass = Safe;

    /// What it does, in a few words that begin with a verb: "writes \"./0.ts\", the same resource". Text of the playlist in
    /// it is shortened; it may hold any bytes, control characters among them.
    std::string sentence;

    /// The edits, in the order of their places, of which there is at least one: see VELHLSDocument::apply. They belong
    /// together: a part of them mends nothing.
    std::vector<VELHLSEdit> edits;
};
