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

constexpr bool isByteOrderMark(std::string_view line) {
    return startsWith(line, "\xEF\xBB\xBF");
}

}  // namespace

void FindingRecorder::lineRead(std::string_view line) {
    ++linesRead_;
    std::move_backward(buffers_.begin(), buffers_.end() - 1, buffers_.end());
    buffers_.front() = {line.data(), line.size(), std::clamp<std::size_t>(linesRead_, 1, lines_.count())};
    // What stood in the same memory stands there no more.
    for (auto older = buffers_.begin() + 1; older != buffers_.end(); ++older) {
        if (older->start == line.data()) older->start = nullptr;
    }
    if (linesRead_ <= lines_.count()) standardRules_.lineRead(linesRead_);
    converted_.reset();
}

void FindingRecorder::tagRead(const TagLine& tagLine) {
    inRendition_ = tagLine.name == tag::media;
    inVariant_ = tagLine.name == tag::streamInf || tagLine.name == tag::iFrameStreamInf;
    standardRules_.tagRead(tagLine, placeOf(tagLine.name), placeOf(tagLine.value));
}

void FindingRecorder::tagIgnored(const TagLine& tagLine) {
    standardRules_.tagIgnored(tagLine, placeOf(tagLine.name));
}

void FindingRecorder::attributesRead(std::string_view tagName, const AttributeList& attributes) {
    for (const Attribute& attribute : attributes) {
        standardRules_.attributeRead(tagName, attribute, placeOf(attribute.name), placeOf(attribute.value));
    }
    standardRules_.attributesRead(tagName, attributes, placeOf(tagName));
}

void FindingRecorder::recordRead(const void* record, std::string_view where) {
    records_[record] = placeOf(where);
}

void FindingRecorder::recordMade(const void* record, const void* madeOf) {
    records_[record] = placeOfRecord(madeOf);
}

Place FindingRecorder::placeOfRecord(const void* record) const {
    const auto found = records_.find(record);
    return found == records_.end() ? Place() : found->second;
}

void FindingRecorder::report(Rule rule, std::string_view where, const std::string& seen) {
    converted_.reset();
    if (followsFromEarlierError(rule)) return;
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
    converted_.reset();
    if (followsFromEarlierError(rule)) return;
    noteRejection(rule);
    Place place = placeOfRecord(record);
    if (!attributeName.empty()) {
        std::string line(lines_.line(place.line));
        line.erase(std::remove(line.begin(), line.end(), '\r'), line.end());
        const std::optional<AttributeList> attributes = AttributeList::parse(TagLine(line).value);
        const auto value = attributes ? attributes->find(attributeName) : std::nullopt;
        if (value) {
            const auto start = static_cast<std::size_t>(value->data() - line.data());
            place = placeIn(place.line, line.size(), start, value->size());
        }
    }
    findings_.add(rule, place, seen);
}

void FindingRecorder::converting(std::string_view number, NumberForm form) {
    if (!hasForm(number, form)) {
        const std::optional<std::string> read = textAsRead(number, form);
        if (read) report(Rule::numberNotDecimal, number, quoted(number) + ", read as " + *read);
    }
    converted_ = placeOf(number);
}

void FindingRecorder::conversionFailed(Rule rule) {
    // Where none was under way the reader has told why it would throw.
    if (!converted_) return;
    noteRejection(rule);
    findings_.add(rule, *converted_);
    converted_.reset();
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
    const Buffer* buffer = view.data() == nullptr ? nullptr : bufferWith(view);
    if (buffer == nullptr) return {};
    const auto start = static_cast<std::size_t>(view.data() - buffer->start);
    return placeIn(buffer->lineNumber, buffer->size, start, view.size());
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
    if (withoutTrailing(line, lineEnds).size() == sizeAsRead) return position;
    if (scannedLine_ != lineNumber) {
        scannedLine_ = lineNumber;
        carriageReturns_.clear();
        for (std::size_t at = line.find('\r'); at != std::string_view::npos; at = line.find('\r', at + 1)) {
            // Counted in the line as it was read.
            carriageReturns_.push_back(at - carriageReturns_.size());
        }
    }
    const auto behind = std::upper_bound(carriageReturns_.begin(), carriageReturns_.end(), position);
    return std::min(position + static_cast<std::size_t>(behind - carriageReturns_.begin()), line.size());
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
