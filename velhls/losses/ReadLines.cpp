#include "velhls/losses/ReadLines.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <utility>

#include "velhls/common/Names.h"
#include "velhls/common/TextScan.h"

namespace velhls {
namespace {

constexpr std::array tagsWithAttributesInMaster = {tag::streamInf,   tag::iFrameStreamInf, tag::media,
                                                   tag::sessionData, tag::sessionKey,      tag::start,
                                                   tag::zorStreamInf};
constexpr std::array tagsWithAttributesInMedia = {tag::key, tag::map, tag::start, tag::define};

template <typename Names>
bool holds(const Names& names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// Of each attribute whether there is one of its name before it.
std::vector<bool> areRepeated(const std::vector<Attribute>& attributes) {
    std::vector<std::size_t> order(attributes.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [&attributes](std::size_t left, std::size_t right) {
        const int compared = attributes[left].name.compare(attributes[right].name);
        return compared != 0 ? compared < 0 : left < right;
    });
    std::vector<bool> repeated(attributes.size());
    for (std::size_t index = 1; index < order.size(); ++index)
        repeated[order[index]] = attributes[order[index]].name == attributes[order[index - 1]].name;
    return repeated;
}

}  // namespace

ReadLines::ReadLines(const TextLines& lines, const Reading& reading, Kind kind,
                     std::optional<bool> pairsStreamInformation)
    : lines_(lines),
      kind_(kind),
      count_(std::min(reading.linesRead(), lines.count())),
      roles_(count_ + 1, LineRole::alone),
      areKept_(count_ + 1, true) {
    playlist_.isMaster = kind == Kind::master;
    playlist_.pairsStreamInformation = pairsStreamInformation;
    for (const RecordLines& record : reading.records())
        setRoles(record);
}

void ReadLines::setRoles(const RecordLines& record) {
    // Of a pattern's segments those of the first pass are enough: the others stand in the same lines.
    const bool isKnown = roles_[record.lastLine] == LineRole::record;
    if (isKnown && record.kind == RecordLines::Kind::record) return;
    const LineRole role = record.kind == RecordLines::Kind::pattern    ? LineRole::pattern
                          : record.kind == RecordLines::Kind::rejected ? LineRole::rejected
                                                                       : LineRole::record;
    for (std::size_t number = record.firstLine; number <= record.lastLine; ++number)
        roles_[number] = role;
    areKept_[record.firstLine] = record.record != nullptr;
    if (kind_ == Kind::media || record.lastLine == record.firstLine || record.isPlain) return;
    roles_[record.lastLine] = LineRole::variantUri;
    areKept_[record.lastLine] = record.record != nullptr;
}

LossLine ReadLines::lineAt(std::size_t number, std::string& memory) const {
    LossLine line;
    line.number = number;
    line.lineOfText = lines_.line(number);
    line.text = withoutTrailing(line.lineOfText, lineEnds);
    if (line.text.find('\r') != std::string_view::npos) {
        memory = line.text;
        memory.erase(std::remove(memory.begin(), memory.end(), '\r'), memory.end());
        line.text = memory;
    }
    line.role = roles_[number];
    line.isTag = line.role != LineRole::variantUri && (isStandardTag(line.text) || isVendorTag(line.text));
    if (line.isTag) line.tag = TagLine(line.text);
    line.isKept = areKept_[number];
    line.playlist = &playlist_;
    return line;
}

bool ReadLines::next(LossLine& line) {
    if (number_ > 0) note(line_);
    if (number_ == count_) return false;
    ++number_;
    line_ = lineAt(number_, memory_);
    readAttributes(line_);
    line = line_;
    return true;
}

void ReadLines::readAttributes(LossLine& line) {
    const bool hasList = line.isTag && line.tag.hasColon &&
                         (kind_ == Kind::master ? holds(tagsWithAttributesInMaster, line.tag.name)
                                                : holds(tagsWithAttributesInMedia, line.tag.name));
    if (!hasList) return;
    // The models read session data from the tag's colon on.
    const std::size_t start = tagLength(line.tag.name) - (line.tag.name == tag::sessionData ? 1 : 0);
    std::optional<std::vector<Attribute>> written = attributesAsWritten(line.text.substr(start));
    if (!written) return;
    attributes_.all = std::move(*written);
    attributes_.areRepeated = areRepeated(attributes_.all);
    line.attributes = &attributes_;
}

/// What the lines after it are to know of a line.
void ReadLines::note(const LossLine& line) {
    // That one was rejected is said already, and not that it is missing.
    if (line.isTagNamed(tag::start)) playlist_.hasStart = true;
    if (line.isTagNamed(tag::targetDuration)) playlist_.hasTargetDuration = true;
    if (!line.isTag || line.role == LineRole::rejected) return;
    if (line.tag.name == tag::extM3U && !line.tag.hasColon) playlist_.hasHeader = true;
    const std::size_t index = indexOfTagWrittenOnce(line.tag.name);
    if (index < tagsWrittenOnce.size()) playlist_.seenTags.set(index);
    if (line.isTagNamed(tag::zorDefineIncrement)) noteIncrement(line.tag.value);
    if (line.attributes == nullptr) return;
    const Attribute* const precise = line.isTagNamed(tag::start) ? line.find(attribute::precise) : nullptr;
    if (precise != nullptr && precise->value == fixed::yes) playlist_.startIsPrecise = true;
    const Attribute* const name = line.isTagNamed(tag::define) ? line.find(attribute::name) : nullptr;
    const Attribute* const value = name == nullptr ? nullptr : line.find(attribute::value);
    if (value != nullptr) playlist_.variables.insert_or_assign(std::string(name->value), value->value);
}

void ReadLines::noteIncrement(std::string_view value) {
    const auto variable = playlist_.variables.find(value.substr(0, value.find(',')));
    if (variable == playlist_.variables.end()) return;
    const std::optional<std::string> counted = countedOn(variable->second, value);
    if (counted) variable->second = *counted;
}

}  // namespace velhls
