#include <cstddef>
#include <iterator>
#include <string>
#include <unordered_map>

#include "velhls/common/Names.h"
#include "velhls/common/TextScan.h"
#include "velhls/losses/Loss.h"

namespace velhls {
namespace {

constexpr bool kept = false;

void findAddedStart(const LossRecords& records, const TellLoss& tell) {
    if (records.manifest != nullptr && !records.playlist.hasStart) tell(Place(), "none");
}

void findAddedTargetDuration(const LossRecords& records, const TellLoss& tell) {
    if (records.stream != nullptr && !records.playlist.hasTargetDuration) tell(Place(), "none");
}

/// Durations are written with decimals, which version 3 allows (RFC 8216, section 7). A playlist that had some before is no
/// worse for it.
void findVersionTooLow(const LossRecords& records, const TellLoss& tell) {
    constexpr std::int32_t firstWithDecimals = 3;
    if (records.stream == nullptr || records.stream->version >= firstWithDecimals) return;
    std::size_t firstDuration = 0;
    for (std::size_t number = 1; number <= records.lines.count(); ++number) {
        const std::string_view line = records.lines.line(number);
        if (!isTagLine(line, tag::extInf)) continue;
        const std::string_view duration = line.substr(0, line.find(','));
        if (duration.find('.') != std::string_view::npos) return;
        if (firstDuration == 0) firstDuration = number;
    }
    if (firstDuration != 0 && !records.stream->segments.empty())
        tell(Place{firstDuration, 2, tag::extInf.size()},
             "version " + std::to_string(records.stream->version));
}

/// Where the records stand that the models kept, in the order in which they are written.
class WrittenOrder {
  public:
    explicit WrittenOrder(const LossRecords& records) : lines_(records.lines) {
        for (const RecordLines& record : records.reading.records())
            firstLines_[record.record] = record.firstLine;
    }

    /// Whether the record stands before one that is written before it; then it is told.
    [[nodiscard]] bool isMoved(const void* record, const TellLoss& tell, std::string_view seen) {
        const std::size_t line = firstLines_.at(record);
        if (line >= lastLine_) {
            lastLine_ = line;
            return false;
        }
        tell(placeOfAttribute(line, lines_.line(line), {}), seen);
        return true;
    }

  private:
    const TextLines& lines_;
    std::unordered_map<const void*, std::size_t> firstLines_;
    std::size_t lastLine_ = 0;
};

void findMovedVariant(const LossRecords& records, const TellLoss& tell) {
    if (records.manifest == nullptr) return;
    WrittenOrder order(records);
    for (const auto& [bandwidth, variant] : records.manifest->variants) {
        if (order.isMoved(variant.get(), tell, "a variant that is written after a later one")) return;
    }
}

void findMovedRendition(const LossRecords& records, const TellLoss& tell) {
    if (records.manifest == nullptr) return;
    WrittenOrder order(records);
    for (const auto& [type, groups] : records.manifest->renditions) {
        for (const auto& [groupId, group] : groups) {
            for (const bool forced : {false, true}) {
                for (const auto& [name, rendition] : group) {
                    const bool isNext = rendition->forced == forced;
                    if (isNext &&
                        order.isMoved(rendition.get(), tell, "a rendition that is written after a later one"))
                        return;
                }
            }
        }
    }
}

// clang-format off
constexpr PlaylistLoss losses[] = {
    {{"start-added", VELHLSFinding::Warning, "A master playlist without EXT-X-START is written with TIME-OFFSET=-1.",
      "EXT-X-START", libraryBehaviour, kept},
     findAddedStart},
    {{"variants-reordered", VELHLSFinding::Warning, "Variants are written by bandwidth, not in the order of the playlist.",
      "variants by ascending BANDWIDTH", libraryBehaviour, kept},
     findMovedVariant},
    {{"renditions-reordered", VELHLSFinding::Note, "Renditions are written by type, group and name, the forced ones of a group last.",
      "renditions by TYPE, GROUP-ID and NAME, those with FORCED=YES last", libraryBehaviour, kept},
     findMovedRendition},
    {{"target-duration-added", VELHLSFinding::Warning, "A media playlist without EXT-X-TARGETDURATION is written with one of 0.",
      "EXT-X-TARGETDURATION", libraryBehaviour, kept},
     findAddedTargetDuration},
    {{"version-made-too-low", VELHLSFinding::Warning, "Whole durations are written with decimals, which a version below 3 does not have.",
      "EXT-X-VERSION:3 or higher, since the duration is written with decimals", libraryBehaviour, kept},
     findVersionTooLow},
};
// clang-format on

}  // namespace

LossTable<PlaylistLoss> playlistLosses() {
    return {losses, std::size(losses)};
}

}  // namespace velhls
