#include "velhls/diagnostics/FindingRecorder.h"

#include <algorithm>
#include <exception>
#include <functional>

#include "velhls/common/AttributeList.h"
#include "velhls/common/Names.h"
#include "velhls/common/Numbers.h"
#include "velhls/common/TagLine.h"

namespace velhls {
namespace {

bool hasForm(std::string_view number, NumberForm form) {
    if (form == NumberForm::signedDecimal && startsWith(number, "-")) number.remove_prefix(1);
    if (form == NumberForm::integer) return !number.empty() && holdsOnly(number, digits);
    return !number.empty() && holdsOnly(number, digitsAndPoint) &&
           std::count(number.begin(), number.end(), '.') <= 1;
}

/// What the library reads; nothing when it reads nothing.
std::optional<std::string> textAsRead(std::string_view number, NumberForm form) {
    std::string text;
    try {
        if (form == NumberForm::integer) {
            appendDecimal(text, toInt64(number));
        } else {
            text = inSeconds(toDouble(number));
        }
    } catch (const std::logic_error&) {
        return std::nullopt;
    }
    return text;
}

std::string withoutCarriageReturns(std::string_view line) {
    std::string text(line);
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    return text;
}

constexpr bool isByteOrderMark(std::string_view line) {
    return startsWith(line, "\xEF\xBB\xBF");
}

}  // namespace

void FindingRecorder::lineRead(std::string_view line) {
    const std::size_t lineNumber = nextLineNumber();
    std::move_backward(buffers_.begin(), buffers_.end() - 1, buffers_.end());
    buffers_.front() = {line.data(), line.size(), lineNumber, false};
    // What stood in the same memory stands there no more.
    for (auto older = buffers_.begin() + 1; older != buffers_.end(); ++older) {
        if (older->start == line.data()) older->start = nullptr;
    }
    converted_ = {};
    if (source_ == Source::expandedText) {
        buffers_.front().isSubstituted =
            withoutCarriageReturns(line) != withoutCarriageReturns(lines_.line(lineNumber));
    } else if (linesRead_ <= lines_.count()) {
        standardRules_.lineRead(linesRead_);
    }
}

/// Of a line that is read when nothing is left, the last line.
std::size_t FindingRecorder::nextLineNumber() {
    if (source_ == Source::expandedText) {
        if (expandedLines_.empty()) return lines_.count();
        return expandedLines_[expandedLinesRead_++ % expandedLines_.size()];
    }
    ++linesRead_;
    return std::min(linesRead_, lines_.count());
}

/// A media pattern repeats its lines: what is to be said of them was said in the first pass.
bool FindingRecorder::isRepeated() const {
    return source_ == Source::expandedText && expandedLinesRead_ > expandedLines_.size();
}

void FindingRecorder::tagRead(const TagLine& tagLine) {
    if (isRepeated()) return;
    inRendition_ = tagLine.name == tag::media;
    inVariant_ = tagLine.name == tag::streamInf || tagLine.name == tag::iFrameStreamInf;
    standardRules_.tagRead(tagLine, placeOf(tagLine.name), placeOf(tagLine.value));
}

void FindingRecorder::tagIgnored(const TagLine& tagLine) {
    if (!isRepeated()) standardRules_.tagIgnored(tagLine, placeOf(tagLine.name));
}

void FindingRecorder::attributesRead(std::string_view tagName, const AttributeList& attributes) {
    if (isRepeated()) return;
    for (const Attribute& attribute : attributes) {
        standardRules_.attributeRead(tagName, attribute, placeOf(attribute.name), placeOf(attribute.value));
    }
    standardRules_.attributesRead(tagName, attributes, placeOf(tagName));
}

void FindingRecorder::recordRead(const void* record, std::string_view where) {
    records_[record] = placeOf(where);
}

void FindingRecorder::recordMade(const void* record, const void* madeOf) {
    if (isRepeated()) return;
    const std::optional<Place> place = placeOfRecord(madeOf);
    if (place) records_[record] = *place;
}

std::optional<Place> FindingRecorder::placeOfRecord(const void* record) const {
    const auto found = records_.find(record);
    if (found == records_.end()) return std::nullopt;
    return found->second;
}

void FindingRecorder::report(Rule rule, std::string_view where, const std::string& seen) {
    converted_ = {};
    const bool isError = rowOf(rule).severity == VELHLSFinding::Error;
    if (followsFromEarlierError(rule) || (isRepeated() && !isError)) return;
    noteRejection(rule);
    const Place place = placeOf(where);
    const bool marked = rule == Rule::uriWithoutTag && place.line == 1 && isByteOrderMark(lines_.line(1));
    if (marked) {
        constexpr std::size_t length = 3;
        findings_.add(Rule::byteOrderMark, {1, 1, length}, "one");
    } else {
        findings_.add(rule, place, seen);
    }
}

void FindingRecorder::reportRecord(Rule rule, const void* record, std::string_view attributeName,
                                   const std::string& seen) {
    converted_ = {};
    const bool isError = rowOf(rule).severity == VELHLSFinding::Error;
    if (followsFromEarlierError(rule) || (isRepeated() && !isError)) return;
    noteRejection(rule);
    Place place = placeOfRecord(record).value_or(Place());
    if (!attributeName.empty()) {
        const std::string line = withoutCarriageReturns(lines_.line(place.line));
        AttributeList attributes;
        const bool isList = attributes.parse(TagLine(line).value);
        const auto value = isList ? attributes.find(attributeName) : std::nullopt;
        if (value) {
            const auto start = static_cast<std::size_t>(value->data() - line.data());
            place = placeIn(place.line, line.size(), start, value->size());
        }
    }
    findings_.add(rule, place, seen);
}

void FindingRecorder::converting(std::string_view number, NumberForm form, std::string_view where) {
    if (form != NumberForm::any && !hasForm(number, form)) {
        const std::optional<std::string> read = textAsRead(number, form);
        if (read) report(Rule::numberNotDecimal, where, quoted(number) + ", read as " + *read);
    }
    converted_ = number;
    // Found now: the exception leaves what it is thrown in first.
    convertedAt_ = placeOf(where);
}

void FindingRecorder::conversionFailed(Rule rule) {
    // Where none was under way the reader has told why it would throw.
    if (converted_.data() == nullptr) return;
    noteRejection(rule);
    findings_.add(rule, convertedAt_, converted_.empty() ? "nothing" : quoted(converted_));
    converted_ = {};
}

void FindingRecorder::patternBegins(std::size_t linesInFront) {
    if (source_ != Source::playlist) return;
    bodyLines_.clear();
    const std::size_t current = buffers_.front().lineNumber;
    for (std::size_t line = current - std::min(linesInFront, current - 1); line < current; ++line)
        bodyLines_.push_back(line);
}

void FindingRecorder::patternLineKept() {
    if (source_ == Source::playlist) bodyLines_.push_back(buffers_.front().lineNumber);
}

void FindingRecorder::expansionBegins(std::string_view body) {
    source_ = Source::patternBody;
    body_ = body;
    expandedLines_.clear();
    expandedLinesRead_ = 0;
    bodyLineStarts_.clear();
    for (std::size_t start = 0; start < body.size(); start = body.find('\n', start) + 1)
        bodyLineStarts_.push_back(start);
}

void FindingRecorder::lineExpanded(std::string_view bodyLine) {
    expandedLines_.push_back(placeInBody(bodyLine).line);
}

void FindingRecorder::expandedTextBegins() {
    source_ = Source::expandedText;
}

void FindingRecorder::expansionEnds() {
    source_ = Source::playlist;
    body_ = {};
}

const FindingRecorder::Buffer* FindingRecorder::bufferWith(std::string_view view) const {
    const std::less_equal<const char*> notBehind;
    for (const Buffer& buffer : buffers_) {
        if (buffer.start == nullptr) continue;
        if (notBehind(buffer.start, view.data()) &&
            notBehind(view.data() + view.size(), buffer.start + buffer.size)) {
            return &buffer;
        }
    }
    return nullptr;
}

Place FindingRecorder::placeOf(std::string_view view) const {
    if (view.data() == nullptr) return {};
    const std::less_equal<const char*> notBehind;
    const bool inBody = source_ == Source::patternBody && notBehind(body_.data(), view.data()) &&
                        notBehind(view.data() + view.size(), body_.data() + body_.size());
    if (inBody) return placeInBody(view);
    const Buffer* buffer = bufferWith(view);
    if (buffer == nullptr) return {};
    if (buffer->isSubstituted) return wholeLine(buffer->lineNumber);
    const auto start = static_cast<std::size_t>(view.data() - buffer->start);
    return placeIn(buffer->lineNumber, buffer->size, start, view.size());
}

Place FindingRecorder::placeInBody(std::string_view view) const {
    const auto position = static_cast<std::size_t>(view.data() - body_.data());
    const auto behind = std::upper_bound(bodyLineStarts_.begin(), bodyLineStarts_.end(), position);
    const auto index = static_cast<std::size_t>(behind - bodyLineStarts_.begin()) - 1;
    if (behind == bodyLineStarts_.begin() || index >= bodyLines_.size()) return {};
    const std::size_t start = bodyLineStarts_[index];
    const std::size_t size = body_.find('\n', start) - start;
    return placeIn(bodyLines_[index], size, position - start, view.size());
}

Place FindingRecorder::wholeLine(std::size_t lineNumber) const {
    return {lineNumber, 1, withoutTrailing(lines_.line(lineNumber), lineEnds).size()};
}

/// The place of a piece of a line as it was read. Carriage returns behind the piece do not belong to it.
Place FindingRecorder::placeIn(std::size_t lineNumber, std::size_t sizeAsRead, std::size_t start,
                               std::size_t length) const {
    const std::size_t position = positionInText(lineNumber, sizeAsRead, start);
    if (length == 0) return {lineNumber, position + 1, 0};
    const std::size_t last = positionInText(lineNumber, sizeAsRead, start + length - 1);
    return {lineNumber, position + 1, last + 1 - position};
}

/// The position in the line of the text, which may have carriage returns that the line as it was read has not.
std::size_t FindingRecorder::positionInText(std::size_t lineNumber, std::size_t sizeAsRead,
                                            std::size_t position) const {
    const std::string_view line = lines_.line(lineNumber);
    if (line.size() == sizeAsRead) return position;
    if (scannedLine_ != lineNumber || scannedSize_ != sizeAsRead) {
        scannedLine_ = lineNumber;
        scannedSize_ = sizeAsRead;
        findCarriageReturns(line);
    }
    const auto behind = std::upper_bound(carriageReturns_.begin(), carriageReturns_.end(), position);
    return std::min(position + static_cast<std::size_t>(behind - carriageReturns_.begin()), line.size());
}

/// Once for all places in a line, which may be as many as it has attributes.
void FindingRecorder::findCarriageReturns(std::string_view line) const {
    carriageReturns_.clear();
    // Those at the end of the line move nothing.
    if (withoutTrailing(line, lineEnds).size() == scannedSize_) return;
    for (std::size_t at = line.find('\r'); at != std::string_view::npos; at = line.find('\r', at + 1)) {
        // Counted in the line as it was read.
        carriageReturns_.push_back(at - carriageReturns_.size());
    }
}

bool FindingRecorder::followsFromEarlierError(Rule rule) const {
    const bool needsVariants = rule == Rule::variantsMissing || rule == Rule::vendorStreamInformationUnpaired;
    const bool needsRenditions = rule == Rule::groupMissing || rule == Rule::groupDefaultRepeated ||
                                 rule == Rule::groupRenditionMissing ||
                                 rule == Rule::groupRenditionDifferent ||
                                 rule == Rule::groupRenditionUnmatched;
    return (needsVariants && variantRejected_) || (needsRenditions && renditionRejected_);
}

void FindingRecorder::noteRejection(Rule rule) {
    if (rowOf(rule).severity != VELHLSFinding::Error) return;
    // A line that is no tag says nothing of the tag in front of it.
    if (rule == Rule::uriWithoutTag) return;
    renditionRejected_ = renditionRejected_ || inRendition_;
    variantRejected_ = variantRejected_ || inVariant_;
}

}  // namespace velhls
