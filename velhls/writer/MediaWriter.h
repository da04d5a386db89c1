// Internal to the library, not installed: the text of media playlists as RFC 8216 wants it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "velhls/common/TextBuffer.h"
#include "velhls/media/VELHLSMediaStream.h"
#include "velhls/writer/DateText.h"
#include "velhls/writer/Header.h"
#include "velhls/writer/VELHLSWriterOptions.h"

namespace velhls {

/// Writes one media playlist. The segments are looked at and put together in one walk; the header, which tells what
/// they need, is made when that walk has ended, and nothing is given to the stream before. See VELHLSPlaylistWriter.
class MediaWriter {
  public:
    explicit MediaWriter(const VELHLSWriterOptions& options) : options_(options) {}

    /// Why the playlist is refused; nothing when it was written.
    [[nodiscard]] std::optional<std::string> write(const VELHLSMediaStream& stream, std::ostream& out);

  private:
    // Each is false when the playlist is refused, for the reason that is then set.
    [[nodiscard]] bool isSound(const VELHLSMediaStream& stream);
    [[nodiscard]] bool isSound(const VELHLSMediaSegment& segment);
    [[nodiscard]] bool appendSegments(const VELHLSMediaStream& stream);
    [[nodiscard]] bool append(const VELHLSMediaSegment& segment);
    [[nodiscard]] bool appendKeyAndMap(const VELHLSMediaSegment& segment);
    [[nodiscard]] bool appendKey(const VELHLSProtectionData& key);
    [[nodiscard]] bool appendMap(const VELHLSMISMap& map);
    [[nodiscard]] bool appendDate(const VELHLSMediaSegment& segment);
    [[nodiscard]] bool appendRange(const VELHLSMediaSegment& segment);
    [[nodiscard]] bool refuse(std::string_view what, std::string_view why);
    [[nodiscard]] bool refuseUnless(std::string_view why, std::string_view what);

    void startNewText();
    void appendEndOfKey();
    void appendCues(const VELHLSMediaSegment& segment);
    void append(std::string_view text);
    [[nodiscard]] std::string header(const VELHLSMediaStream& stream);
    [[nodiscard]] std::int64_t writtenTargetDuration(const VELHLSMediaStream& stream) const;

    const VELHLSWriterOptions& options_;
    std::vector<TextBuffer> full_;
    TextBuffer body_;
    /// A key's or a map's line; kept for its memory.
    std::string line_;
    /// Of the segment that is being written, counted from 1; 0 for the header.
    std::size_t number_ = 0;
    std::string refusal_;

    NeededVersion needed_;
    double longestDuration_ = 0.0;
    bool hasDecimals_ = false;
    bool hasDiscontinuity_ = false;
    bool hasMap_ = false;

    /// What holds for the next segment unless its tags say otherwise. Null when there is none.
    const VELHLSProtectionData* key_ = nullptr;
    const VELHLSMISMap* map_ = nullptr;
    /// METHOD=NONE is the last that was said of keys.
    bool saysNone_ = false;
    /// The URI of the segment before when it is a byte range by its tag; null when it is none.
    const std::string* rangeUri_ = nullptr;
    /// The date that the library's own parse gives the next segment when none is written.
    double nextDate_ = 0.0;
    bool dateIsKnown_ = false;
    DateWriter dates_;
};

}  // namespace velhls
