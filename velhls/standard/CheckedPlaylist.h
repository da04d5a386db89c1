// Internal to the library, not installed: what the rules of the standard look at.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velhls/common/Names.h"
#include "velhls/document/FormatTables.h"
#include "velhls/document/VELHLSDocument.h"
#include "velhls/document/VELHLSStructure.h"
#include "velhls/standard/StandardFindings.h"
#include "velhls/standard/StandardRule.h"
#include "velhls/standard/UriSuffix.h"

namespace velhls {

/// An EXT-X-MEDIA with a GROUP-ID and a NAME: without them it belongs nowhere.
struct CheckedRendition {
    std::uint32_t line = 0;
    std::string_view type;
    std::string_view group;
    std::string_view name;
    bool hasChannels = false;
    /// What members of two groups must have alike: of what stands for nothing else its default, where the tag has none.
    static constexpr std::array compared = {
        attribute::language, attribute::assocLanguage, attribute::defaultFlag,    attribute::autoSelect,
        attribute::forced,   attribute::instreamId,    attribute::characteristics};
    std::array<std::string_view, compared.size()> values = {"", "", fixed::no, fixed::no, fixed::no, "", ""};

    /// Of the attribute, which must be one of those that are compared.
    [[nodiscard]] std::string_view value(std::string_view attribute) const;
};

/// A playlist, and what its tags say of the whole of it.
class CheckedPlaylist {
  public:
    /// The structure must outlive it. It knows of no line until that was added.
    CheckedPlaylist(const VELHLSStructure& structure, VELHLSDocument::Kind kind, StandardProfile profile);

    /// Remembers which tag the line has. All lines must be added in their order before rules of segments or of the playlist are
    /// asked, and each before rules of lines are.
    void add(const VELHLSLine& line);
    /// Remembers the attributes of this line, which was added last.
    void keep(const VELHLSLine& line, const std::vector<VELHLSAttribute>& attributes);

    /// Remembers the EXTINF if it is the first one of its form.
    void noteDuration(const VELHLSLine& line);

    [[nodiscard]] const VELHLSDocument& document() const { return document_; }
    [[nodiscard]] const VELHLSStructure& structure() const { return structure_; }
    [[nodiscard]] StandardProfile profile() const { return profile_; }
    [[nodiscard]] bool isMaster() const { return kind_ == VELHLSDocument::Master; }
    [[nodiscard]] bool isMedia() const { return kind_ == VELHLSDocument::Media; }

    /// Whether the profile knows what the table's row describes.
    template <typename Row>
    [[nodiscard]] bool knows(const Row& row) const {
        if (row.profile == VELHLSProfile::vendor) return false;
        return row.profile == VELHLSProfile::rfc8216 || profile_ != StandardProfile::rfc8216;
    }

    /// The value of the line's first attribute with this name; nothing without one. In a master playlist, where many rules
    /// ask, the attributes of the lines that were added are kept.
    [[nodiscard]] std::optional<std::string_view> valueOf(std::size_t line, std::string_view name) const;
    [[nodiscard]] std::optional<std::string_view> valueOf(const VELHLSLine& line,
                                                          std::string_view name) const {
        return valueOf(line.number, name);
    }

    /// Of a master playlist.
    [[nodiscard]] const std::vector<CheckedRendition>& renditions() const { return renditions_; }

    /// The numbers of the lines with a tag, given by its tagIndex. Not those of EXTINF: every segment has one.
    [[nodiscard]] const std::vector<std::uint32_t>& lines(std::size_t tag) const { return lines_[tag]; }
    [[nodiscard]] bool has(std::size_t tag) const { return !lines_[tag].empty(); }
    /// The first line with the tag, which must be there.
    [[nodiscard]] VELHLSLine firstLine(std::size_t tag) const { return document_.line(lines_[tag].front()); }
    /// The number that the first such tag has as its value, if there is one and it can be read.
    [[nodiscard]] std::optional<std::uint64_t> number(std::size_t tag) const;

    /// EXT-X-VERSION; 1 where there is none, nothing where it cannot be read.
    [[nodiscard]] std::optional<std::uint64_t> version() const;
    /// EXT-X-TARGETDURATION in seconds.
    [[nodiscard]] std::optional<std::uint64_t> targetDuration() const { return targetDuration_; }
    /// The line of the first EXTINF with a point; 0 for none.
    [[nodiscard]] std::size_t firstDecimals() const { return firstDecimals_; }
    /// That of the first one without, of more than 0 seconds.
    [[nodiscard]] std::size_t firstWholeDuration() const { return firstWholeDuration_; }

    /// All segments' durations in seconds.
    [[nodiscard]] double duration() const { return duration_; }
    /// The segments with a URI.
    [[nodiscard]] std::size_t segmentCount() const { return segmentCount_; }
    /// A media playlist that more segments may be added to.
    [[nodiscard]] bool isLive() const;
    /// A live playlist that segments were removed from.
    [[nodiscard]] bool isSlidingWindow() const;
    /// Where a finding of the whole playlist stands: its first line; an empty one for a text without lines.
    [[nodiscard]] VELHLSLine top() const;

  private:
    const VELHLSDocument& document_;
    const VELHLSStructure& structure_;
    VELHLSDocument::Kind kind_;
    StandardProfile profile_;
    std::array<std::vector<std::uint32_t>, tagTable.size()> lines_;
    struct KeptAttribute {
        std::string_view name;
        std::string_view value;
    };

    std::vector<KeptAttribute> keptAttributes_;
    /// Of each line added where its kept attributes begin. Empty unless it is a master playlist.
    std::vector<std::uint32_t> firstKept_;
    std::vector<CheckedRendition> renditions_;
    std::optional<std::uint64_t> targetDuration_;
    std::size_t firstDecimals_ = 0;
    std::size_t firstWholeDuration_ = 0;
    double duration_ = 0.0;
    std::size_t segmentCount_ = 0;
};

/// A line.
struct CheckedLine {
    const CheckedPlaylist& playlist;
    VELHLSLine line;
    /// The value of a tag without white space around it.
    std::string_view value;
    /// Of a tag that may stand once: the number of the line that had it before, in the playlist or, for a tag of segments, in
    /// this segment. 0 for none.
    std::size_t earlierLine = 0;
    /// The attributes of a tag that has a list.
    const std::vector<VELHLSAttribute>& attributes;
    /// Of each attribute its row in the table; null for one that the profile does not know.
    const std::vector<const VELHLSAttributeDefinition*>& rows;
    /// The variant that the line belongs to; null for none.
    const VELHLSStructure::Variant* variant;

    [[nodiscard]] bool is(std::size_t tag) const { return line.definition == &tagTable[tag]; }
    /// The first attribute with this name; null for none.
    [[nodiscard]] const VELHLSAttribute* find(std::string_view name) const;
};

/// A segment with a URI.
struct CheckedSegment {
    const CheckedPlaylist& playlist;
    VELHLSStructure::Segment segment;
    /// The line of its URI.
    VELHLSLine uri;
    SegmentFormat format;
    /// The URI of the segment before, and its format; empty for the first one.
    std::string_view previousUri;
    SegmentFormat previousFormat;
    /// The segment before; null for the first one.
    const VELHLSStructure::Segment* previous;
    /// Whether an EXT-X-DISCONTINUITY is among its tags.
    bool followsDiscontinuity;

    /// Its EXTINF, which must be there.
    [[nodiscard]] VELHLSLine durationLine() const { return playlist.document().line(segment.durationLine); }
};

using LineEntry = StandardEntry<CheckedLine>;
using SegmentEntry = StandardEntry<CheckedSegment>;
using PlaylistEntry = StandardEntry<CheckedPlaylist>;

// The tables. Each stands beside its functions, in the file of its name.
[[nodiscard]] StandardTable<CheckedLine> textRules();
[[nodiscard]] StandardTable<CheckedLine> uriRules();
[[nodiscard]] StandardTable<CheckedLine> unknownTagRules();
[[nodiscard]] StandardTable<CheckedLine> placeRules();
[[nodiscard]] StandardTable<CheckedLine> valueRules();
[[nodiscard]] StandardTable<CheckedLine> durationRules();
[[nodiscard]] StandardTable<CheckedLine> attributeRules();
[[nodiscard]] StandardTable<CheckedLine> keyRules();
[[nodiscard]] StandardTable<CheckedLine> dateRangeRules();
[[nodiscard]] StandardTable<CheckedLine> variantRules();
[[nodiscard]] StandardTable<CheckedLine> renditionRules();
[[nodiscard]] StandardTable<CheckedLine> sessionRules();
[[nodiscard]] StandardTable<CheckedLine> laterLineRules();
[[nodiscard]] StandardTable<CheckedLine> authoringLineRules();
[[nodiscard]] StandardTable<CheckedSegment> segmentRules();
[[nodiscard]] StandardTable<CheckedSegment> authoringSegmentRules();
[[nodiscard]] StandardTable<CheckedPlaylist> encodingRules();
[[nodiscard]] StandardTable<CheckedPlaylist> lastSegmentRules();
[[nodiscard]] StandardTable<CheckedPlaylist> headerRules();
[[nodiscard]] StandardTable<CheckedPlaylist> versionRules();
[[nodiscard]] StandardTable<CheckedPlaylist> keyRelationRules();
[[nodiscard]] StandardTable<CheckedLine> dateRules();
[[nodiscard]] StandardTable<CheckedPlaylist> dateRangeRelationRules();
[[nodiscard]] StandardTable<CheckedPlaylist> mediaPlaylistRules();
[[nodiscard]] StandardTable<CheckedPlaylist> variantRelationRules();
[[nodiscard]] StandardTable<CheckedPlaylist> groupRules();
[[nodiscard]] StandardTable<CheckedPlaylist> sessionRelationRules();
[[nodiscard]] StandardTable<CheckedPlaylist> laterPlaylistRules();
[[nodiscard]] StandardTable<CheckedPlaylist> authoringMasterRules();
[[nodiscard]] StandardTable<CheckedPlaylist> authoringMediaRules();

/// The lowest EXT-X-VERSION that has all that the playlist uses.
[[nodiscard]] std::uint64_t neededVersion(const CheckedPlaylist& playlist);

/// The value of the line's first attribute with this name; nothing without one.
[[nodiscard]] std::optional<std::string_view> valueOf(const VELHLSLine& line, std::string_view name);

/// "RFC 8216, section 4.3.2.1" for a tag of RFC 8216, and the same of its successor.
[[nodiscard]] std::string sourceOf(const VELHLSTagDefinition& tag);

/// "EVENT or VOD" for "EVENT,VOD".
[[nodiscard]] std::string asChoice(std::string_view words);

/// What an EXTINF has before its comma, without white space around it.
[[nodiscard]] std::string_view durationIn(const VELHLSLine& line);

/// The text without white space around it.
[[nodiscard]] std::string_view trimmed(std::string_view text);

/// Of an attribute or a tag: the line's place for something that is missing, right after the text.
[[nodiscard]] std::string_view nothingAfter(std::string_view text);

/// Goes through what stands between separators.
template <typename Visit>
void forEachPart(std::string_view list, char separator, Visit visit) {
    for (;;) {
        const std::size_t end = list.find(separator);
        visit(list.substr(0, end));
        if (end == std::string_view::npos) return;
        list.remove_prefix(end + 1);
    }
}

}  // namespace velhls
