#include "velhls/losses/Loss.h"

#include <algorithm>
#include <stdexcept>

#include "velhls/common/NumberReading.h"
#include "velhls/common/Reading.h"

namespace velhls {

const Attribute* LossLine::find(std::string_view name) const {
    if (attributes == nullptr) return nullptr;
    const auto found = std::find_if(attributes->all.begin(), attributes->all.end(),
                                    [name](const Attribute& attribute) { return attribute.name == name; });
    return found == attributes->all.end() ? nullptr : &*found;
}

std::optional<std::string> countedOn(std::string_view variable, std::string_view increment) {
    try {
        const std::int64_t amount = toInt32(increment.substr(increment.find(',') + 1));
        return std::to_string(toInt32(variable) + amount);
    } catch (const std::logic_error&) {
        // Such a pattern is rejected.
        return std::nullopt;
    }
}

void TellLoss::operator()(const LossLine& line, std::string_view piece, std::string_view seen) const {
    if (findings_.isFull(rule_)) return;
    findings_.add(rule_, placeIn(line.number, line.lineOfText, line.text, piece), seen);
}

void TellLoss::operator()(const Place& place, std::string_view seen) const {
    if (!findings_.isFull(rule_)) findings_.add(rule_, place, seen);
}

bool LossSegment::hasTag(std::string_view name) const {
    return std::any_of(lines.begin(), lines.end(),
                       [name](const LossLine& line) { return line.isTagNamed(name); });
}

std::string_view LossSegment::inUriLine(std::string_view pieceOfUri) const {
    const std::string_view line = uriLine().text;
    const std::string_view uri = segment.uri;
    if (line.substr(0, uri.size()) != uri) return line;
    return line.substr(static_cast<std::size_t>(pieceOfUri.data() - uri.data()), pieceOfUri.size());
}

}  // namespace velhls
