#include "velhls/losses/LossFinder.h"

#include <cstddef>
#include <deque>
#include <string>

#include "velhls/common/PatternTags.h"

namespace velhls {
namespace {

template <typename Entry, typename Subject>
void findAll(const LossTable<Entry>& losses, const Subject& subject, LossFindings& findings) {
    for (const Entry& loss : losses)
        loss.find(subject, TellLoss(findings, loss.rule));
}

template <typename Entry>
void appendRules(std::vector<VELHLSRule>& rules, const LossTable<Entry>& losses) {
    for (const Entry& loss : losses)
        rules.push_back(loss.rule);
}

/// A segment's URI is looked at with its record.
bool isLookedAt(const LossLine& line) {
    return isTagOrComment(line.text);
}

/// The lines of one record after the other.
class LinesOfRecord {
  public:
    explicit LinesOfRecord(const ReadLines& lines) : lines_(lines) {}

    [[nodiscard]] const std::vector<LossLine>& of(const RecordLines& record) {
        memories_.clear();
        made_.clear();
        for (std::size_t number = record.firstLine; number <= record.lastLine; ++number)
            made_.push_back(lines_.lineAt(number, memories_.emplace_back()));
        return made_;
    }

  private:
    const ReadLines& lines_;
    /// In places that stay, since lines look into them.
    std::deque<std::string> memories_;
    std::vector<LossLine> made_;
};

std::size_t startOfPattern(const std::vector<LossLine>& lines) {
    std::size_t index = 0;
    while (index + 1 < lines.size() && !startsPattern(lines[index].text))
        ++index;
    return index;
}

}  // namespace

std::vector<VELHLSRule> rulesOfLosses() {
    std::vector<VELHLSRule> rules;
    appendRules(rules, textLosses());
    appendRules(rules, tagLosses());
    appendRules(rules, lineLosses());
    appendRules(rules, masterLosses());
    appendRules(rules, mediaLosses());
    appendRules(rules, segmentLosses());
    appendRules(rules, patternLosses());
    appendRules(rules, restLosses());
    appendRules(rules, playlistLosses());
    return rules;
}

void findLossesOfMasterLine(const LossLine& line, LossFindings& findings) {
    findAll(textLosses(), line, findings);
    if (isLookedAt(line)) {
        findAll(tagLosses(), line, findings);
        findAll(lineLosses(), line, findings);
    }
    if (isLookedAt(line) || line.role == LineRole::variantUri) findAll(masterLosses(), line, findings);
}

void findLossesOfMediaLine(const LossLine& line, LossFindings& findings) {
    findAll(textLosses(), line, findings);
    if (!isLookedAt(line)) return;
    findAll(tagLosses(), line, findings);
    findAll(lineLosses(), line, findings);
    findAll(mediaLosses(), line, findings);
}

void findLossesOfPlaylist(const LossRecords& records, LossFindings& findings) {
    findAll(playlistLosses(), records, findings);
}

void findLossesOfSegments(const VELHLSMediaStream& stream, const Reading& reading, const TextLines& textLines,
                          const ReadLines& lines, LossFindings& findings) {
    LinesOfRecord linesOfRecord(lines);
    const VELHLSMediaSegment* previous = nullptr;
    auto segment = stream.segments.begin();
    std::size_t lastLine = 0;
    for (const RecordLines& record : reading.records()) {
        if (record.kind == RecordLines::Kind::rejected) continue;
        if (record.kind == RecordLines::Kind::pattern) {
            const bool madeSegments = lastLine >= record.firstLine;
            const std::vector<LossLine>& made = linesOfRecord.of(record);
            findAll(patternLosses(), LossPattern{made, startOfPattern(made), madeSegments}, findings);
            continue;
        }
        // A pattern repeats its lines: what is to be said of them is said once.
        if (record.firstLine > lastLine) {
            const bool isOfPattern = lines.roleOf(record.lastLine) == LineRole::pattern;
            findAll(segmentLosses(), LossSegment{**segment, previous, linesOfRecord.of(record), isOfPattern},
                    findings);
            lastLine = record.lastLine;
        }
        previous = segment->get();
        ++segment;
    }
    const bool ended = stream.endList && stream.hasExtM3U;
    if (ended) findAll(restLosses(), LossRest{textLines, reading.linesRead() + 1}, findings);
}

}  // namespace velhls
