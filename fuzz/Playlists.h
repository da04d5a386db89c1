// What the targets of whole playlists share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <istream>
#include <sstream>
#include <string>

#include "velhls/VELHLS.h"

#include "fuzz/FuzzTarget.h"
#include "tests/support/MediaDescription.h"
#include "tests/support/StreamBuffers.h"

namespace fuzz {

/// However a stream hands out its text, the same is read: all in one piece, so that lines are looked at where they lie,
/// character by character, and in small pieces that lie in the same memory.
template <typename Parse>
void expectTheSameFromEveryBuffer(const std::string& text, Parse parse) {
    std::istringstream whole(text);
    const std::string expected = playlist::outcomeWithStream(whole, parse);
    stream_buffer::Hidden hidden(text);
    std::istream characters(&hidden);
    expectEqual(playlist::outcomeWithStream(characters, parse), expected,
                "character by character as in one piece");
    stream_buffer::PieceByPiece pieces(text, 1 + text.size() % 61);
    std::istream inPieces(&pieces);
    expectEqual(playlist::outcomeWithStream(inPieces, parse), expected, "piece by piece as in one piece");
}

/// True of patterns with so many passes that a text of a few hundred bytes takes seconds: the bounds of expansion have
/// their tests. Greater counts are rejected at once.
inline bool isSlowCount(std::uint64_t repeatCount) {
    return repeatCount > 2000 && repeatCount < VELHLSMediaPattern::maximumExpansionBytes;
}

inline bool holdsSlowPattern(const std::string& text) {
    const std::string tag = "#ZOR-PATTERN_REPEAT:";
    for (std::size_t at = text.find(tag); at != std::string::npos; at = text.find(tag, at + 1)) {
        const std::size_t comma = text.find(',', at);
        if (comma == std::string::npos) return false;
        if (isSlowCount(std::strtoull(text.c_str() + comma + 1, nullptr, 10))) return true;
    }
    return false;
}

/// The cost of a long playlist that repeats this one, less the tags that end reading.
template <typename Read>
void expectBoundedWhenProlonged(std::string text, const Cost& cost, Read read) {
    for (const std::string tag : {"#EXTM3U\n", "#EXT-X-ENDLIST\n"}) {
        for (std::size_t at = text.find(tag); at != std::string::npos; at = text.find(tag, at))
            text.erase(at, tag.size());
    }
    const std::string longText = prolonged(text, "\n");
    if (longText.empty()) return;
    const auto result = playlist::outcomeOf([&]() -> std::string {
        bounded(longText.size(), cost, [&] { return read(longText); });
        return {};
    });
    static_cast<void>(result);
}

}  // namespace fuzz
