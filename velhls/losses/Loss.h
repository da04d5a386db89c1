// Internal to the library, not installed: what the models drop, change or read otherwise than it seems to be meant.
#pragma once

#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velhls/common/AttributeList.h"
#include "velhls/common/Names.h"
#include "velhls/common/Reading.h"
#include "velhls/common/TagLine.h"
#include "velhls/document/TextLines.h"
#include "velhls/document/VELHLSRule.h"
#include "velhls/losses/LossFindings.h"
#include "velhls/manifest/VELHLSParsedManifest.h"
#include "velhls/media/VELHLSMediaStream.h"

namespace velhls {

/// What a line was for the reader.
enum class LineRole : std::uint8_t {
    alone,       ///< no record was made of it
    record,      ///< a record's: of a segment its tags and its URI, of a variant its tag
    variantUri,  ///< the line after EXT-X-STREAM-INF
    pattern,     ///< a media pattern's: its own tags, and those of its segments
    rejected,    ///< of something that was rejected
};

/// The attributes of a tag in the order of the text.
struct WrittenAttributes {
    std::vector<Attribute> all;
    /// Of each whether the tag has one of its name before, which holds.
    std::vector<bool> areRepeated;
};

/// Tags that a model has one field for.
inline constexpr std::array tagsWrittenOnce = {
    tag::version,        tag::independentSegments, tag::start,
    tag::targetDuration, tag::mediaSequence,       tag::discontinuitySequence,
    tag::endList,        tag::playlistType,        tag::iFramesOnly};

/// The place of the tag with this name among them, or their number.
[[nodiscard]] constexpr std::size_t indexOfTagWrittenOnce(std::string_view name) {
    std::size_t index = 0;
    while (index < tagsWrittenOnce.size() && tagsWrittenOnce[index] != name)
        ++index;
    return index;
}

/// What ZOR-DEFINE_INCREMENT with this value ("n,1") makes of a variable's text; nothing when it cannot.
[[nodiscard]] std::optional<std::string> countedOn(std::string_view variable, std::string_view increment);

/// What is known of the playlist when one of its lines is looked at.
struct LossPlaylist {
    bool isMaster = false;
    /// Whether its ZOR-STREAM-INF lines are as many as its EXT-X-STREAM-INF tags. Unknown when one was rejected.
    std::optional<bool> pairsStreamInformation;

    // What the lines before said.
    bool hasHeader = false;
    bool hasStart = false;
    bool hasTargetDuration = false;
    bool startIsPrecise = false;
    /// Of tagsWrittenOnce those that came before.
    std::bitset<tagsWrittenOnce.size()> seenTags;
    /// Their texts by their names, ordered so that no choice of names makes looking one up slow.
    std::map<std::string, std::string, std::less<>> variables;
};

/// A line as a reader read it, with what was made of it.
struct LossLine {
    std::size_t number = 1;
    std::string_view lineOfText;
    /// Without carriage returns.
    std::string_view text;
    LineRole role = LineRole::alone;
    bool isTag = false;
    TagLine tag;
    /// Of a tag that the models read attributes of; null where they are malformed.
    const WrittenAttributes* attributes = nullptr;
    /// Whether the playlist kept the record.
    bool isKept = true;
    const LossPlaylist* playlist = nullptr;

    [[nodiscard]] bool isTagNamed(std::string_view name) const { return isTag && tag.name == name; }
    /// The attribute that holds; null when there is none.
    [[nodiscard]] const Attribute* find(std::string_view name) const;

    /// Calls the function with each attribute that holds.
    template <typename Function>
    void forEachAttribute(Function function) const {
        if (attributes == nullptr) return;
        for (std::size_t index = 0; index < attributes->all.size(); ++index) {
            if (!attributes->areRepeated[index]) function(attributes->all[index]);
        }
    }
};

/// Tells of one rule.
class TellLoss {
  public:
    TellLoss(LossFindings& findings, const VELHLSRule& rule) : findings_(findings), rule_(rule) {}

    /// At a piece of the line. Without `seen` that text is what was seen.
    void operator()(const LossLine& line, std::string_view piece, std::string_view seen = {}) const;
    /// At a place of the text.
    void operator()(const Place& place, std::string_view seen = {}) const;

  private:
    LossFindings& findings_;
    const VELHLSRule& rule_;
};

/// A segment that was kept, and its lines. Of a media pattern's segments only those of the first pass are looked at.
struct LossSegment {
    const VELHLSMediaSegment& segment;
    /// Null for the first one.
    const VELHLSMediaSegment* previous;
    const std::vector<LossLine>& lines;
    /// A variable may have been put into its URI.
    bool isOfPattern;

    [[nodiscard]] const LossLine& uriLine() const { return lines.back(); }
    [[nodiscard]] bool hasTag(std::string_view name) const;
    /// A piece of the segment's URI in its line: the whole line where a variable was put in.
    [[nodiscard]] std::string_view inUriLine(std::string_view pieceOfUri) const;
};

/// The lines of a media pattern that was kept.
struct LossPattern {
    const std::vector<LossLine>& lines;
    std::size_t startLine;
    bool madeSegments;

    [[nodiscard]] const LossLine& start() const { return lines[startLine]; }
};

/// A playlist that was read to its end, and where its records stand. Of the two models one is null.
struct LossRecords {
    const LossPlaylist& playlist;
    const TextLines& lines;
    const Reading& reading;
    const VELHLSParsedManifest* manifest;
    const VELHLSMediaStream* stream;
};

/// A rule, and beside it the one function that finds it.
template <typename Subject>
struct Loss {
    VELHLSRule rule;
    void (*find)(const Subject& subject, const TellLoss& tell);
};

/// What stands after the line that ended the playlist.
struct LossRest {
    const TextLines& lines;
    std::size_t firstLine;
};

using LineLoss = Loss<LossLine>;
using SegmentLoss = Loss<LossSegment>;
using PatternLoss = Loss<LossPattern>;
using RestLoss = Loss<LossRest>;
using PlaylistLoss = Loss<LossRecords>;

template <typename Entry>
struct LossTable {
    const Entry* first;
    std::size_t count;

    [[nodiscard]] const Entry* begin() const { return first; }
    [[nodiscard]] const Entry* end() const { return first + count; }
};

// The tables. Each stands beside its functions, in the file of its name.
[[nodiscard]] LossTable<LineLoss> textLosses();
[[nodiscard]] LossTable<LineLoss> tagLosses();
[[nodiscard]] LossTable<LineLoss> lineLosses();
[[nodiscard]] LossTable<LineLoss> masterLosses();
[[nodiscard]] LossTable<LineLoss> mediaLosses();
[[nodiscard]] LossTable<SegmentLoss> segmentLosses();
[[nodiscard]] LossTable<PatternLoss> patternLosses();
[[nodiscard]] LossTable<RestLoss> restLosses();
[[nodiscard]] LossTable<PlaylistLoss> playlistLosses();

inline constexpr std::string_view libraryBehaviour = "library behaviour";
inline constexpr std::string_view vendorExtension = "vendor extension";

}  // namespace velhls
