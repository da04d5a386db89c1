#include "velhls/fixes/FaultyText.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "velhls/common/Names.h"
#include "velhls/common/ReasonText.h"
#include "velhls/common/Tags.h"
#include "velhls/common/TextScan.h"
#include "velhls/document/VELHLSSyntax.h"

namespace velhls {
namespace {

const std::vector<std::size_t> noLines;

VELHLSEdit removalOf(const VELHLSDocument& document, std::string_view from, std::string_view to) {
    const auto start = static_cast<std::size_t>(from.data() - document.text().data());
    const auto end = static_cast<std::size_t>(to.data() - document.text().data());
    return {start, end - start, ""};
}

std::string_view endOf(std::string_view text) {
    return text.substr(text.size());
}

}  // namespace

const VELHLSStructure& FaultyText::structure() {
    if (!structure_) structure_.emplace(document_);
    return *structure_;
}

bool FaultyText::isModelUri(std::size_t number) const {
    const VELHLSLine line = document_.line(number);
    return line.kind != VELHLSLine::Blank && !startsWith(line.text, "#");
}

bool FaultyText::opensSegment(std::size_t number) const {
    const VELHLSLine line = document_.line(number);
    if (!startsWith(line.text, "#")) return false;
    if (startsWith(line.name, tag::zorPatternStart)) return true;
    if (!line.hasColon) return bare(line.text) == "#EXT-X-DISCONTINUITY" && bare(line.text) == line.text;
    return line.name == tag::extInf || hasUse<velhls::opensSegment>(line.name);
}

const FaultyText::ModelSegment& FaultyText::segmentAt(std::size_t line) {
    if (line >= segment_.start && line < segment_.end) return segment_;
    ModelSegment found;
    found.start = line;
    while (found.start > 1 && !isModelUri(found.start - 1))
        --found.start;
    found.end = found.start;
    while (found.end <= document_.lineCount()) {
        const std::size_t number = found.end++;
        if (isModelUri(number)) {
            found.uriLine = number;
            break;
        }
        if (found.openingLine == 0 && opensSegment(number)) found.openingLine = number;
    }
    segment_ = found;
    return segment_;
}

void FaultyText::measureSegments() {
    if (areSegmentsMeasured_) return;
    areSegmentsMeasured_ = true;
    double longest = 0.0;
    double sum = 0.0;
    std::size_t count = 0;
    for (const VELHLSStructure::Segment& segment : structure().segments()) {
        if (segment.uriLine == 0 || segment.duration <= 0.0) continue;
        longest = std::max(longest, segment.duration);
        sum += segment.duration;
        ++count;
    }
    constexpr double most = 1e9;
    if (longest < most) longestSegment_ = static_cast<std::uint64_t>(std::lround(longest));
    if (count > 0) meanDuration_ = sum / static_cast<double>(count);
}

std::uint64_t FaultyText::longestSegment() {
    measureSegments();
    return longestSegment_;
}

std::uint64_t FaultyText::usualDuration() {
    if (usualDuration_) return *usualDuration_;
    constexpr std::uint64_t usual = 10;
    constexpr double most = 1e9;
    const auto target = numberOf(tag::targetDuration);
    measureSegments();
    usualDuration_ = usual;
    if (target && *target > 0) {
        usualDuration_ = target;
    } else if (meanDuration_ > 0.0 && meanDuration_ < most) {
        usualDuration_ = std::max<std::uint64_t>(1, static_cast<std::uint64_t>(std::lround(meanDuration_)));
    }
    return *usualDuration_;
}

FaultyText::Places FaultyText::placesOf(std::string_view tagName) {
    if (!arePlacesKnown_) {
        arePlacesKnown_ = true;
        for (const VELHLSLine line : document_.lines()) {
            if (line.kind != VELHLSLine::Tag || line.definition == nullptr) continue;
            Places& places = places_[line.definition->name];
            if (places.count++ == 0) places.firstLine = line.number;
            places.lastLine = line.number;
            places.areAlike = places.areAlike && document_.line(places.firstLine).text == line.text;
        }
    }
    const auto found = places_.find(tagName);
    return found == places_.end() ? Places() : found->second;
}

std::optional<std::uint64_t> FaultyText::numberOf(std::string_view tagName) {
    const Places places = placesOf(tagName);
    if (places.count == 0) return std::nullopt;
    return VELHLSSyntax::readDecimalInteger(bare(document_.line(places.firstLine).value));
}

void FaultyText::findGroups() {
    if (areGroupsKnown_) return;
    areGroupsKnown_ = true;
    for (const VELHLSLine& line : document_.linesNamed(tag::media)) {
        const auto type = line.attributes().find(attribute::type);
        const auto groupId = line.attributes().find(attribute::groupId);
        if (!type || !groupId) continue;
        ++renditionCounts_[{type->value, groupId->value}];
        const auto name = line.attributes().find(attribute::name);
        if (name) groups_[type->value][groupId->value].emplace(name->value, line.number);
    }
}

const std::map<std::string_view, std::map<std::string_view, FaultyText::Group>>& FaultyText::groups() {
    findGroups();
    return groups_;
}

std::size_t FaultyText::renditionCount(std::string_view type, std::string_view groupId) {
    findGroups();
    const auto found = renditionCounts_.find({type, groupId});
    return found == renditionCounts_.end() ? 0 : found->second;
}

void FaultyText::findReferences() {
    if (areReferencesKnown_) return;
    areReferencesKnown_ = true;
    for (const std::string_view name : {tag::streamInf, tag::iFrameStreamInf}) {
        for (const VELHLSLine& line : document_.linesNamed(name)) {
            for (const std::string_view type :
                 {attribute::audio, attribute::video, attribute::subtitles, attribute::closedCaptions}) {
                const auto reference = line.attributes().find(type);
                if (reference) references_[{type, reference->value}].push_back(line.number);
            }
        }
    }
}

const std::vector<std::size_t>& FaultyText::variantsNaming(std::string_view attribute,
                                                           std::string_view groupId) {
    findReferences();
    const auto found = references_.find({attribute, groupId});
    return found == references_.end() ? noLines : found->second;
}

void FaultyText::findSessionTags() {
    if (areSessionTagsKnown_) return;
    areSessionTagsKnown_ = true;
    for (const std::string_view name : {tag::sessionKey, tag::sessionData}) {
        for (const VELHLSLine& line : document_.linesNamed(name)) {
            sessionTags_.emplace(line.text, line.number);
            const auto first = line.attributes().begin();
            const auto dataId = line.attributes().find(attribute::dataId);
            if (dataId && first->name == attribute::language)
                dataWithLanguageFirst_.emplace(dataId->value, line.number);
        }
    }
}

std::size_t FaultyText::firstLike(const VELHLSLine& line) {
    findSessionTags();
    const auto found = sessionTags_.find(line.text);
    return found == sessionTags_.end() ? 0 : found->second;
}

std::size_t FaultyText::dataWithLanguageFirst(const VELHLSLine& line) {
    findSessionTags();
    const auto dataId = line.attributes().find(attribute::dataId);
    const auto found = dataId ? dataWithLanguageFirst_.find(dataId->value) : dataWithLanguageFirst_.end();
    return found == dataWithLanguageFirst_.end() ? 0 : found->second;
}

std::optional<VELHLSAttribute> Fault::attribute() const {
    const std::string_view marked = line.text.substr(std::min(finding.column - 1, line.text.size()));
    for (const VELHLSAttribute& each : line.attributes()) {
        if (each.text.data() <= marked.data() && marked.data() <= each.text.data() + each.text.size())
            return each;
    }
    return std::nullopt;
}

void Fault::add(VELHLSFix::Class fixClass, std::string sentence, std::vector<VELHLSEdit> edits) const {
    const auto changesNothing = [this](const VELHLSEdit& edit) {
        return document().text().compare(edit.offset, edit.length, edit.replacement) == 0;
    };
    edits.erase(std::remove_if(edits.begin(), edits.end(), changesNothing), edits.end());
    if (edits.empty()) return;
    std::stable_sort(edits.begin(), edits.end(), [](const VELHLSEdit& left, const VELHLSEdit& right) {
        return left.offset < right.offset;
    });
    fixes.push_back({fixClass, std::move(sentence), std::move(edits)});
}

void Fault::safe(std::string sentence, std::vector<VELHLSEdit> edits) const {
    add(VELHLSFix::Safe, std::move(sentence), std::move(edits));
}

void Fault::lossy(std::string sentence, std::vector<VELHLSEdit> edits) const {
    add(VELHLSFix::Lossy, std::move(sentence), std::move(edits));
}

void Fault::guess(std::string sentence, std::vector<VELHLSEdit> edits) const {
    add(VELHLSFix::Guess, std::move(sentence), std::move(edits));
}

VELHLSEdit Fault::replace(std::string_view piece, std::string replacement) const {
    const auto offset = static_cast<std::size_t>(piece.data() - document().text().data());
    return {offset, piece.size(), std::move(replacement)};
}

std::vector<VELHLSEdit> Fault::setAttribute(std::string_view name, std::optional<std::string> value) const {
    return changeAttributes(document(), line.number, {{std::string(name), std::move(value)}});
}

void Fault::removeAttribute(std::string_view name) const {
    const auto removed = line.attributes().find(name);
    if (!removed) return;
    lossy("removes " + std::string(name) + ": " + quoted(removed->value) + " is lost",
          setAttribute(name, std::nullopt));
}

void Fault::removeLine(const std::string& whatIsLost) const {
    lossy("removes " + quoted(line.text) + ": " + whatIsLost, {document().removeLine(line.number)});
}

std::vector<VELHLSEdit> changeAttributes(const VELHLSDocument& document, std::size_t line,
                                         const std::vector<VELHLSAttributeChange>& changes) {
    try {
        return {document.changeAttributes(line, changes)};
    } catch (const std::invalid_argument&) {
        return {};
    }
}

std::vector<VELHLSEdit> replaceValue(const VELHLSDocument& document, std::size_t line,
                                     std::string_view value) {
    try {
        return {document.replaceValue(line, value)};
    } catch (const std::invalid_argument&) {
        return {};
    }
}

std::string_view bare(std::string_view text) {
    while (!text.empty() && blanks.holds(text.front()))
        text.remove_prefix(1);
    return withoutTrailing(text, blanks);
}

std::string inUpperCase(std::string_view text) {
    std::string upper(text);
    for (char& character : upper) {
        if (character >= 'a' && character <= 'z') character = static_cast<char>(character - 'a' + 'A');
    }
    return upper;
}

std::string_view yesOrNo(std::string_view text) {
    const std::string upper = inUpperCase(text);
    if (upper == fixed::yes || upper == "TRUE" || upper == "1" || upper == "Y") return fixed::yes;
    if (upper == fixed::no || upper == "FALSE" || upper == "0" || upper == "N") return fixed::no;
    return {};
}

std::vector<VELHLSEdit> tidyList(const VELHLSDocument& document, const VELHLSLine& line) {
    std::vector<VELHLSAttribute> kept;
    for (const VELHLSAttribute& attribute : line.attributes()) {
        if (attribute.fault == VELHLSAttribute::QuoteUnclosed) return {};
        if (!isBlank(attribute.text)) kept.push_back(attribute);
    }
    if (kept.empty()) return {};
    std::vector<VELHLSEdit> edits;
    const auto remove = [&](std::string_view from, std::string_view to) {
        if (from.data() < to.data()) edits.push_back(removalOf(document, from, to));
    };
    std::string_view rest = line.value;
    for (const VELHLSAttribute& attribute : kept) {
        const std::string_view text = bare(attribute.text);
        remove(rest, text);
        const std::size_t equals = text.find('=');
        const bool isDivided =
            equals != std::string_view::npos && !attribute.name.empty() && !attribute.writtenValue.empty();
        if (isDivided && isBlank(text.substr(attribute.name.size(), equals - attribute.name.size()))) {
            remove(text.substr(attribute.name.size()), text.substr(equals));
            remove(text.substr(equals + 1), bare(text.substr(equals + 1)));
        }
        const bool isLast = attribute.text.data() == kept.back().text.data();
        const std::string_view comma = endOf(attribute.text);
        remove(endOf(text), isLast ? endOf(line.value) : comma);
        const auto done = static_cast<std::size_t>(comma.data() - line.value.data());
        if (!isLast) rest = line.value.substr(done + 1);
    }
    return edits;
}

bool isMalformed(const VELHLSLine& line) {
    for (const VELHLSAttribute& each : line.attributes()) {
        if (each.fault != VELHLSAttribute::None) return true;
    }
    return false;
}

std::vector<VELHLSEdit> moveBefore(const VELHLSDocument& document, std::size_t line, std::size_t target) {
    return {document.insertBefore(target, document.line(line).text), document.removeLine(line)};
}

std::vector<VELHLSEdit> moveToEnd(const VELHLSDocument& document, std::size_t line) {
    return {document.removeLine(line), document.insertAfter(document.lineCount(), document.line(line).text)};
}

std::vector<VELHLSEdit> removeRendition(FaultyText& text, const VELHLSLine& line) {
    std::vector<VELHLSEdit> edits = {text.document().removeLine(line.number)};
    const auto type = line.attributes().find(attribute::type);
    const auto groupId = line.attributes().find(attribute::groupId);
    if (!type || !groupId || text.renditionCount(type->value, groupId->value) > 1) return edits;
    for (const std::size_t variant : text.variantsNaming(type->value, groupId->value)) {
        const std::vector<VELHLSEdit> reference =
            changeAttributes(text.document(), variant, {{std::string(type->value), std::nullopt}});
        edits.insert(edits.end(), reference.begin(), reference.end());
    }
    return edits;
}

}  // namespace velhls
