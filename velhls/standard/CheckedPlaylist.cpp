#include "velhls/standard/CheckedPlaylist.h"

#include "velhls/common/Names.h"
#include "velhls/common/TextScan.h"
#include "velhls/document/VELHLSSyntax.h"

namespace velhls {

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

void CheckedPlaylist::keep(const std::vector<VELHLSAttribute>& attributes) {
    // More than any tag has: a line of nothing but commas would take far more than its text.
    constexpr std::size_t most = 64;
    if (!isMaster() || attributes.size() > most) return;
    for (const VELHLSAttribute& attribute : attributes)
        keptAttributes_.push_back({attribute.name, attribute.value});
}

std::optional<std::string_view> CheckedPlaylist::valueOf(const VELHLSLine& line,
                                                         std::string_view name) const {
    if (line.number > firstKept_.size()) return velhls::valueOf(line, name);
    const std::size_t first = firstKept_[line.number - 1];
    const std::size_t last =
        line.number < firstKept_.size() ? firstKept_[line.number] : keptAttributes_.size();
    if (first == last) return velhls::valueOf(line, name);
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
