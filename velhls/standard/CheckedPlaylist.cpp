#include "velhls/standard/CheckedPlaylist.h"

#include <algorithm>

#include "velhls/common/Names.h"
#include "velhls/common/TextScan.h"
#include "velhls/document/VELHLSSyntax.h"

namespace velhls {
namespace {

constexpr std::size_t placeOfCompared(std::string_view attribute) {
    std::size_t place = 0;
    while (place < CheckedRendition::compared.size() && CheckedRendition::compared[place] != attribute)
        ++place;
    return place;
}

/// Nothing of one that has no group or no name. Of several attributes with one name the first counts.
std::optional<CheckedRendition> renditionOf(const VELHLSLine& line,
                                            const std::vector<VELHLSAttribute>& attributes) {
    CheckedRendition rendition;
    rendition.line = static_cast<std::uint32_t>(line.number);
    bool hasGroup = false;
    bool hasName = false;
    for (auto attribute = attributes.rbegin(); attribute != attributes.rend(); ++attribute) {
        const std::size_t place = placeOfCompared(attribute->name);
        if (place < rendition.values.size()) rendition.values[place] = attribute->value;
        if (attribute->name == attribute::type) rendition.type = attribute->value;
        if (attribute->name == "CHANNELS") rendition.hasChannels = true;
        if (attribute->name == attribute::groupId) {
            rendition.group = attribute->value;
            hasGroup = true;
        }
        if (attribute->name == attribute::name) {
            rendition.name = attribute->value;
            hasName = true;
        }
    }
    return hasGroup && hasName ? std::optional(rendition) : std::nullopt;
}

}  // namespace

std::string_view CheckedRendition::value(std::string_view attribute) const {
    return values.at(placeOfCompared(attribute));
}

CheckedPlaylist::CheckedPlaylist(const VELHLSStructure& structure, VELHLSDocument::Kind kind,
                                 StandardProfile profile)
    : document_(structure.document()), structure_(structure), kind_(kind), profile_(profile) {
    if (structure_.segmentCount() == 0) return;
    const VELHLSStructure::Segment last = structure_.segment(structure_.segmentCount() - 1);
    duration_ = last.startTime + last.duration;
    segmentCount_ = structure_.segmentCount() - (last.uriLine == 0 ? 1 : 0);
}

void CheckedPlaylist::add(const VELHLSLine& line) {
    if (isMaster()) firstKept_.push_back(static_cast<std::uint32_t>(keptAttributes_.size()));
    if (line.definition == nullptr) return;
    const auto tag = static_cast<std::size_t>(line.definition - tagTable.data());
    if (tag == tagIndexOf<tag::extInf>) return;
    lines_[tag].push_back(static_cast<std::uint32_t>(line.number));
    if (tag == tagIndexOf<tag::targetDuration>) targetDuration_ = number(tag);
}

void CheckedPlaylist::keep(const VELHLSLine& line, const std::vector<VELHLSAttribute>& attributes) {
    if (!isMaster()) return;
    if (line.definition == &tagTable[tagIndexOf<tag::media>]) {
        const std::optional<CheckedRendition> rendition = renditionOf(line, attributes);
        if (rendition) renditions_.push_back(*rendition);
    }
    // More than any tag has: a line of nothing but commas would take far more than its text.
    constexpr std::size_t most = 64;
    if (attributes.size() > most) return;
    for (const VELHLSAttribute& attribute : attributes)
        keptAttributes_.push_back({attribute.name, attribute.value});
}

void CheckedPlaylist::noteDuration(const VELHLSLine& line) {
    const std::string_view duration = durationIn(line);
    const auto seconds = VELHLSSyntax::readDecimalFloatingPoint(duration);
    if (!seconds) return;
    const bool hasPoint = duration.find('.') != std::string_view::npos;
    if (!hasPoint && *seconds <= 0.0) return;
    std::size_t& first = hasPoint ? firstDecimals_ : firstWholeDuration_;
    if (first == 0) first = line.number;
}

std::optional<std::string_view> CheckedPlaylist::valueOf(std::size_t line, std::string_view name) const {
    if (line > firstKept_.size()) return velhls::valueOf(document_.line(line), name);
    const std::size_t first = firstKept_[line - 1];
    const std::size_t last = line < firstKept_.size() ? firstKept_[line] : keptAttributes_.size();
    if (first == last) return velhls::valueOf(document_.line(line), name);
    for (std::size_t place = first; place < last; ++place) {
        if (keptAttributes_[place].name == name) return keptAttributes_[place].value;
    }
    return std::nullopt;
}

std::optional<std::uint64_t> CheckedPlaylist::version() const {
    return has(tagIndexOf<tag::version>) ? number(tagIndexOf<tag::version>) : 1;
}

std::optional<std::uint64_t> CheckedPlaylist::number(std::size_t tag) const {
    if (!has(tag)) return std::nullopt;
    return VELHLSSyntax::readDecimalInteger(trimmed(firstLine(tag).value));
}

VELHLSLine CheckedPlaylist::top() const {
    if (document_.lineCount() > 0) return document_.line(1);
    VELHLSLine line;
    line.number = 1;
    return line;
}

bool CheckedPlaylist::isLive() const {
    return isMedia() && !has(tagIndexOf<tag::endList>) && !has(tagIndexOf<tag::playlistType>);
}

bool CheckedPlaylist::isSlidingWindow() const {
    return isLive() && number(tagIndexOf<tag::mediaSequence>).value_or(0) > 0;
}

const VELHLSAttribute* CheckedLine::find(std::string_view name) const {
    for (const VELHLSAttribute& attribute : attributes) {
        if (attribute.name == name) return &attribute;
    }
    return nullptr;
}

std::optional<std::string_view> valueOf(const VELHLSLine& line, std::string_view name) {
    const auto attribute = line.attributes().find(name);
    if (!attribute) return std::nullopt;
    return attribute->value;
}

std::string sourceOf(const VELHLSTagDefinition& tag) {
    const std::string_view document =
        tag.profile == VELHLSProfile::rfc8216 ? "RFC 8216" : "draft-pantos-hls-rfc8216bis";
    return std::string(document) + ", section " + std::string(tag.section);
}

std::string_view durationIn(const VELHLSLine& line) {
    return trimmed(line.value.substr(0, line.value.find(',')));
}

std::string asChoice(std::string_view words) {
    std::string choice;
    while (!words.empty()) {
        const std::string_view word = words.substr(0, words.find(','));
        words.remove_prefix(std::min(word.size() + 1, words.size()));
        if (!choice.empty()) choice += words.empty() ? " or " : ", ";
        choice += word;
    }
    return choice;
}

std::string_view trimmed(std::string_view text) {
    text = withoutTrailing(text, blanks);
    while (!text.empty() && blanks.holds(text.front()))
        text.remove_prefix(1);
    return text;
}

std::string_view nothingAfter(std::string_view text) {
    return text.substr(text.size());
}

}  // namespace velhls
