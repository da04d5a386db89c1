#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// One thing in which two versions of a playlist differ: see VELHLSComparison.
///
///     segment 268433: duration 6.006 → 5.005      kind Changed, path "segment 268433", what "duration",
///                                                 oldText "6.006", newText "5.005"
///     + segment 268441: 6.006 268441.ts           kind Added, path "segment 268441", what empty
///
/// What the playlist's lines say counts, and not how they are laid out: comments, blank lines, the order of attributes and
/// where a tag of the whole playlist stands make no change.
struct VELHLSChange {
    /// What happened.
    enum Kind : std::int32_t {
        Added = 0,  ///< only the new version has it
        Removed,    ///< only the old version has it
        Changed,    ///< both have it, with other values
    };

    /// "added", "removed" or "changed". Empty for a value that is none of them.
    [[nodiscard]] static constexpr std::string_view textOf(Kind kind) noexcept {
        if (kind == Added) return "added";
        if (kind == Removed) return "removed";
        return kind == Changed ? "changed" : "";
    }

    /// What happened.
    Kind kind = Changed;

    /// What it happened to: "segment 268433" (by media sequence number, that of the new version if it has it), "date range ad-1" (by
    /// ID), "variant low.m3u8", "I-frame variant low.m3u8", "rendition AUDIO aac English" (by TYPE, GROUP-ID and NAME),
    /// "session data com.example.title", "session key skd://key", or the name of a tag of the whole playlist:
    /// "EXT-X-TARGETDURATION". Like all texts of a change it may hold any bytes.
    std::string path;

    /// Which part of that: "uri", "duration" (seconds), "title", "byte range", "date", "discontinuity", "key" (from this segment on, in
    /// force), "map" (likewise), the name of an attribute or of a tag, or "order" of the variants. Empty for the whole of it.
    std::string what;

    /// What the old version says; empty where it says nothing.
    std::string oldText;

    /// What the new version says; empty where it says nothing.
    std::string newText;

    /// The line of the old version, counted from 1; 0 where there is none.
    std::size_t oldLine = 0;

    /// The line of the new version, counted from 1; 0 where there is none.
    std::size_t newLine = 0;
};
