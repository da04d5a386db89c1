#include "velhls/document/VELHLSDocument.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <functional>
#include <numeric>
#include <stdexcept>
#include <utility>

#include "velhls/common/EightBytes.h"
#include "velhls/common/TextScan.h"
#include "velhls/document/AttributeListEdit.h"
#include "velhls/document/KindCount.h"
#include "velhls/document/LineCode.h"
#include "velhls/document/LineCodes.h"

namespace {

using velhls::LineCode;

/// The end of a line in the text from its start up to and including its line feed, if it has one.
std::string_view endingOf(std::string_view line) {
    if (line.empty() || line.back() != '\n') return velhls::withoutFirst(line, line.size());
    const bool hasReturn = line.size() > 1 && line[line.size() - 2] == '\r';
    return velhls::withoutFirst(line, line.size() - (hasReturn ? 2 : 1));
}

constexpr velhls::CharacterSet lineEnds("\n\r");

/// Sets what follows the name.
void findValue(VELHLSLine& line) {
    const char* const nameEnd = line.name.data() + line.name.size();
    const std::string_view after =
        velhls::withoutFirst(line.text, static_cast<std::size_t>(nameEnd - line.text.data()));
    line.hasColon = !after.empty() && after.front() == ':';
    line.value = line.hasColon ? velhls::withoutFirst(after, 1) : velhls::firstOf(after, 0);
}

/// Sets the name and the value of a line that is not just a tag that is known.
void readParts(VELHLSLine& line) {
    const velhls::LineParts parts = velhls::partsOf(line.text, line.number == 1);
    line.name = parts.name;
    if (!line.name.empty()) return findValue(line);
    if (line.kind == VELHLSLine::Uri) line.value = velhls::withoutTrailing(parts.content, velhls::blanks);
    if (line.kind == VELHLSLine::Comment) line.value = velhls::withoutFirst(parts.content, 1);
}

void require(bool holds, const char* reason) {
    if (!holds) throw std::invalid_argument(reason);
}

/// The lines of a text with line feeds between them, each with `before` before it and `after` after it.
std::string eachLine(std::string_view text, std::string_view before, std::string_view after) {
    std::string lines;
    for (bool isLast = false; !isLast;) {
        const std::size_t feed = text.find('\n');
        isLast = feed == std::string_view::npos;
        std::string_view line = text.substr(0, feed);
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        lines.append(before).append(line).append(after);
        if (!isLast) text.remove_prefix(feed + 1);
    }
    return lines;
}

/// About how many line feeds the text has: a vertical tab after one may count too.
std::size_t lineFeedsIn(std::string_view text) {
    constexpr std::size_t width = sizeof(std::uint64_t);
    std::size_t feeds = 0;
    std::size_t place = 0;
    for (; place + width <= text.size(); place += width)
        feeds += velhls::markedCount(velhls::markEqual(velhls::eightBytesAt(text.data() + place), '\n'));
    const std::string_view rest = text.substr(place);
    return feeds + static_cast<std::size_t>(std::count(rest.begin(), rest.end(), '\n'));
}

}  // namespace

VELHLSDocument::VELHLSDocument(std::string text) : text_(std::move(text)) {
    if (text_.size() > maximumBytes) throw std::length_error("VELHLSDocument: the text is longer than 4 GiB");
    findLines();
}

/// Reserves room for as many lines as there are if all of the text is like its beginning.
void VELHLSDocument::expectLines() {
    constexpr std::size_t looked = std::size_t{64} << 10;
    const std::string_view start = std::string_view(text_).substr(0, looked);
    const std::size_t feeds = lineFeedsIn(start);
    const std::size_t times = text_.size() / looked + 1;
    starts_.reserve(feeds * times + feeds * times / 64 + 1);
    codes_.reserve(starts_.capacity());
}

void VELHLSDocument::findLines() {
    expectLines();
    velhls::KindCount kinds;
    velhls::forEachLineCode(text_, [&](std::size_t number, std::size_t start, LineCode code) {
        starts_.push_back(static_cast<std::uint32_t>(start));
        codes_.push_back(code.number());
        kinds.add(number, code);
    });
    kind_ = kinds.kind();
    if (starts_.capacity() > starts_.size() + starts_.size() / 8) {
        starts_.shrink_to_fit();
        codes_.shrink_to_fit();
    }
}

/// Where the line ends, its line end included.
std::size_t VELHLSDocument::endOf(std::size_t number) const {
    return number < starts_.size() ? starts_[number] : text_.size();
}

VELHLSLine VELHLSDocument::line(std::size_t number) const {
    if (number < 1 || number > starts_.size()) throw std::out_of_range("VELHLSDocument: no such line");
    const std::size_t start = starts_[number - 1];
    const std::string_view whole(text_.data() + start, endOf(number) - start);
    const LineCode code(codes_[number - 1]);
    VELHLSLine line;
    line.number = number;
    line.offset = start;
    line.kind = code.kind();
    line.definition = code.definition();
    line.ending = endingOf(whole);
    line.text = velhls::firstOf(whole, whole.size() - line.ending.size());
    if (line.definition != nullptr && line.text.front() == '#') {
        line.name = velhls::firstOf(velhls::withoutFirst(line.text, 1), line.definition->name.size());
        findValue(line);
    } else {
        readParts(line);
    }
    return line;
}

/// The same as line(number).value, which costs less to know of a tag that begins its line.
std::string_view VELHLSDocument::valueOf(std::size_t number) const {
    const VELHLSTagDefinition* const tag = LineCode(codes_[number - 1]).definition();
    const std::size_t start = starts_[number - 1];
    if (tag == nullptr || text_[start] != '#') return line(number).value;
    const std::string_view whole(text_.data() + start, endOf(number) - start);
    const std::size_t nameEnd = 1 + tag->name.size();
    if (whole.size() == nameEnd || whole[nameEnd] != ':') return line(number).value;
    return whole.substr(nameEnd + 1, whole.size() - nameEnd - 1 - endingOf(whole).size());
}

std::vector<VELHLSLine> VELHLSDocument::linesNamed(std::string_view name) const {
    std::vector<VELHLSLine> named;
    for (const VELHLSLine line : lines()) {
        if (line.name == name && !name.empty()) named.push_back(line);
    }
    return named;
}

std::size_t VELHLSDocument::lineAt(std::size_t offset) const {
    const auto after = std::upper_bound(starts_.begin(), starts_.end(), offset);
    return static_cast<std::size_t>(after - starts_.begin());
}

std::vector<VELHLSUri> VELHLSDocument::uris() const {
    std::vector<VELHLSUri> uris;
    for (const VELHLSLine line : lines()) {
        if (line.kind == VELHLSLine::Uri) uris.push_back({line.number, line.value, {}});
        if (line.name.empty()) continue;
        if (line.definition != nullptr && line.definition->attributes.empty()) continue;
        for (const VELHLSAttribute& attribute : line.attributes()) {
            const VELHLSAttributeDefinition* const row =
                line.definition == nullptr ? nullptr : line.definition->findAttribute(attribute.name);
            const bool isUri = line.definition == nullptr ? attribute.name == velhls::attribute::uri
                                                          : row != nullptr && row->isUri();
            if (isUri && attribute.quoted) uris.push_back({line.number, attribute.value, attribute.name});
        }
    }
    return uris;
}

VELHLSLine VELHLSDocument::namedLine(std::size_t number) const {
    const VELHLSLine named = line(number);
    require(!named.name.empty(), "the line has no tag");
    const bool isAlone = named.hasColon || named.value.data() == named.text.data() + named.text.size();
    require(isAlone, "something other than a colon follows the tag's name");
    return named;
}

std::size_t VELHLSDocument::offsetOf(std::string_view part) const {
    const std::less<> isBefore;
    const bool isInside = !isBefore(part.data(), text_.data()) &&
                          !isBefore(text_.data() + text_.size(), part.data() + part.size());
    require(isInside, "what is to be replaced is no part of this document");
    return static_cast<std::size_t>(part.data() - text_.data());
}

VELHLSEdit VELHLSDocument::changeAttributes(std::size_t line,
                                            const std::vector<VELHLSAttributeChange>& changes) const {
    const VELHLSLine changed = namedLine(line);
    velhls::AttributeListEdit edit(changed, changes);
    return {offsetOf(edit.replaced()), edit.replaced().size(), edit.replacement()};
}

VELHLSEdit VELHLSDocument::replaceValue(std::size_t line, std::string_view value) const {
    const VELHLSLine replaced = namedLine(line);
    require(velhls::holdsNone(value, lineEnds), "a value holds no line end");
    return {offsetOf(replaced.value), replaced.value.size(),
            std::string(replaced.hasColon ? "" : ":").append(value)};
}

VELHLSEdit VELHLSDocument::replaceUri(const VELHLSUri& uri, std::string_view replacement) const {
    require(!replacement.empty(), "a URI is not empty");
    require(velhls::holdsNone(replacement, lineEnds), "a URI holds no line end");
    if (!uri.attribute.empty()) {
        require(replacement.find('"') == std::string_view::npos, "a URI in quotes holds no quote");
    } else {
        require(replacement.front() != '#', "a URI line does not begin with \"#\"");
        require(!velhls::blanks.holds(replacement.front()) && !velhls::blanks.holds(replacement.back()),
                "a URI line has no white space at its ends");
    }
    return {offsetOf(uri.text), uri.text.size(), std::string(replacement)};
}

/// The end of this line, or else of the one before it, which has one if there is any.
std::string_view VELHLSDocument::endingNear(std::size_t number) const {
    for (std::size_t near = std::min(number, lineCount()); near > 0 && near + 2 > number; --near) {
        const std::string_view ending = line(near).ending;
        if (!ending.empty()) return ending;
    }
    return "\n";
}

VELHLSEdit VELHLSDocument::insertBefore(std::size_t line, std::string_view text) const {
    if (line < 1 || line > lineCount() + 1) throw std::out_of_range("VELHLSDocument: no such line");
    if (line > lineCount()) return insertAfter(lineCount(), text);
    return {starts_[line - 1], 0, eachLine(text, "", endingNear(line))};
}

VELHLSEdit VELHLSDocument::insertAfter(std::size_t line, std::string_view text) const {
    if (line > lineCount()) throw std::out_of_range("VELHLSDocument: no such line");
    const std::string_view ending = endingNear(std::max(line, std::size_t{1}));
    const std::size_t offset = line == 0 ? 0 : endOf(line);
    const bool lacksEnd = offset > 0 && text_[offset - 1] != '\n';
    return {offset, 0, lacksEnd ? eachLine(text, ending, "") : eachLine(text, "", ending)};
}

VELHLSEdit VELHLSDocument::removeLines(std::size_t first, std::size_t last) const {
    if (first < 1 || first > last || last > lineCount())
        throw std::out_of_range("VELHLSDocument: no such lines");
    const std::size_t offset = starts_[first - 1];
    return {offset, endOf(last) - offset, ""};
}

VELHLSEditedText VELHLSDocument::apply(const std::vector<VELHLSEdit>& edits) const {
    std::vector<std::size_t> order(edits.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    const auto place = [&edits](std::size_t index) {
        return std::pair(edits[index].offset, edits[index].length > 0);
    };
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t left, std::size_t right) { return place(left) < place(right); });

    VELHLSEditedText edited;
    std::size_t done = 0;
    std::size_t before = 0;
    std::size_t bytes = text_.size();
    for (const VELHLSEdit& edit : edits) {
        if (edit.offset > text_.size() || edit.length > text_.size() - edit.offset) {
            throw std::out_of_range("VELHLSDocument: an edit goes beyond the text");
        }
        bytes += edit.replacement.size();
    }
    edited.text.reserve(bytes);
    for (const std::size_t index : order) {
        const VELHLSEdit& edit = edits[index];
        if (edit.offset < done) return {{}, std::minmax(before, index)};
        edited.text.append(text_, done, edit.offset - done).append(edit.replacement);
        done = edit.offset + edit.length;
        if (edit.length > 0) before = index;
    }
    edited.text.append(text_, done, std::string::npos);
    return edited;
}
