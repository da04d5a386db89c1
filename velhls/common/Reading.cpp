#include "velhls/common/Reading.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "velhls/common/AttributeList.h"
#include "velhls/common/Names.h"
#include "velhls/common/ReasonText.h"
#include "velhls/common/TagLine.h"
#include "velhls/common/TextScan.h"

namespace velhls {
namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

std::string cleaned(std::string_view line) {
    std::string text(line);
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    return text;
}

/// Where in the line of the text the character stands that is at the position in the line as it was read.
std::size_t positionInText(std::string_view lineOfText, std::size_t sizeAsRead, std::size_t position) {
    if (lineOfText.size() == sizeAsRead) return position;
    std::size_t left = position;
    std::size_t at = 0;
    for (; at < lineOfText.size() && (left > 0 || lineOfText[at] == '\r'); ++at) {
        if (lineOfText[at] != '\r') --left;
    }
    // Carriage returns at the end of the line stand after all of its characters.
    return std::min(at, std::max(position, withoutTrailing(lineOfText, lineEnds).size()));
}

Place wholeLine(std::size_t number, std::string_view line) {
    return {number, 1, withoutTrailing(line, lineEnds).size()};
}

std::string_view withoutBlanks(std::string_view text) {
    text = withoutTrailing(text, blanks);
    while (!text.empty() && blanks.holds(text.front()))
        text.remove_prefix(1);
    return text;
}

/// What is missing is there under a name with white space, or a value has a quote before it that opens nothing.
void tellOfOddCharacters(Reason& reason, std::string_view lineOfText) {
    if (reason.seen == "none") {
        const std::string_view wanted = rowOf(reason.rule).expected;
        if (!isTagOrComment(lineOfText)) return;
        for (const Attribute& attribute :
             attributesAsWritten(TagLine(lineOfText).value).value_or(std::vector<Attribute>())) {
            const std::string_view name = withoutBlanks(attribute.name);
            if (name.size() < attribute.name.size() && name == wanted.substr(0, wanted.find(',')))
                reason.seen = quoted(attribute.name) + ", a name with white space";
        }
    } else if (reason.rule == Rule::keyIvMalformed && isPartOf(reason.where, lineOfText)) {
        const std::string_view before =
            lineOfText.substr(0, static_cast<std::size_t>(reason.where.data() - lineOfText.data()));
        const bool isStray = before.size() > 1 && before.back() == '"' && before[before.size() - 2] != '=';
        if (isStray)
            reason.seen = (reason.where.empty() ? "nothing" : quoted(reason.where)) +
                          " after a quote inside of the value";
    }
}

/// Whether the line of a body makes one of the expanded text. All vendor tags with a colon are increments, or fail.
bool isExpanded(std::string_view line) {
    return !isVendorTag(line) || !TagLine(line).hasColon;
}

}  // namespace

bool isPartOf(std::string_view piece, std::string_view text) {
    const std::less_equal<const char*> notAfter;
    return notAfter(text.data(), piece.data()) &&
           notAfter(piece.data() + piece.size(), text.data() + text.size());
}

Place placeIn(std::size_t lineNumber, std::string_view lineOfText, std::string_view lineAsRead,
              std::string_view piece) {
    const auto start = static_cast<std::size_t>(piece.data() - lineAsRead.data());
    const std::size_t first = positionInText(lineOfText, lineAsRead.size(), start);
    if (piece.empty()) return {lineNumber, first + 1, 0};
    const std::size_t last = positionInText(lineOfText, lineAsRead.size(), start + piece.size() - 1);
    return {lineNumber, first + 1, last + 1 - first};
}

Place placeOfAttribute(std::size_t lineNumber, std::string_view lineOfText, std::string_view attributeName) {
    const std::string line = cleaned(lineOfText);
    const TagLine tagLine(line);
    AttributeList attributes;
    Reason ignored;
    const bool isList = !attributeName.empty() && attributes.read(tagLine.value, ignored);
    const std::optional<std::string_view> value = isList ? attributes.find(attributeName) : std::nullopt;
    return placeIn(lineNumber, lineOfText, line, value.value_or(tagLine.name));
}

void Reading::lineRead(std::string_view line) {
    if (isExpanding()) {
        expandedLine_ = line;
        ++expandedLinesRead_;
    } else {
        ++linesRead_;
        line_ = {line, linesRead_};
    }
}

std::string_view Reading::withoutCarriageReturns(std::string_view line) {
    cleanLines_.push_back({cleaned(line), line, currentLine().number});
    return cleanLines_.back().text;
}

void Reading::recordBegins() {
    recordStart_ = line_;
    recordsBefore_ = records_.size();
    const bool lastIsClean = !cleanLines_.empty() && cleanLines_.back().line.data() == line_.line.data();
    while (cleanLines_.size() > (lastIsClean ? 1U : 0U))
        cleanLines_.pop_front();
}

void Reading::recordMade(const void* record) {
    if (!isExpanding() || expandedLines_.empty()) {
        records_.push_back({RecordLines::Kind::record, false, record, recordStart_.number, line_.number});
        return;
    }
    const std::size_t first = expandedRecordStart_ % expandedLines_.size();
    records_.push_back(
        {RecordLines::Kind::record, false, record, expandedLines_[first].number, currentLine().number});
    expandedRecordStart_ = expandedLinesRead_;
    cleanLines_.clear();
}

void Reading::patternMade() {
    records_.push_back({RecordLines::Kind::pattern, false, nullptr, recordStart_.number, line_.number});
}

void Reading::recordRejected() {
    records_.resize(recordsBefore_);
    // Lines that are no tags may be many and short, and each says the same.
    const bool isPlain = recordStart_.number == line_.number && !isTagOrComment(line_.line);
    if (isPlain && !records_.empty() && records_.back().kind == RecordLines::Kind::rejected &&
        records_.back().isPlain && records_.back().lastLine + 1 == line_.number) {
        records_.back().lastLine = line_.number;
        return;
    }
    records_.push_back({RecordLines::Kind::rejected, isPlain, nullptr, recordStart_.number, line_.number});
}

void Reading::rejected(Reason& reason) {
    if (!reason.isSet) return;
    reason.clear();
    // From here on setting a variable would take the time that the rule is there to spare.
    if (reason.rule == Rule::defineNamesCollide) hasEnded_ = true;
    const bool isMarked =
        reason.rule == Rule::uriWithoutTag && linesRead_ == 1 && startsWith(text_, byteOrderMark);
    const Rule rule = isMarked ? Rule::byteOrderMark : reason.rule;
    if (rule == Rule::uriWithoutTag && followsIndentation(reason)) return;
    if (isFull(rule)) return;
    if (isMarked) return add({rule, {1, 1, byteOrderMark.size()}, "one"});
    const bool isInSegment = rule == Rule::segmentTagUnknown || rule == Rule::segmentBareTagUnknown;
    if (isInSegment && !isExpanding()) {
        reason.seen = quoted(reason.where) + " in the segment that line " +
                      std::to_string(recordStart_.number) + " opened";
    }
    if (!isExpanding()) tellOfOddCharacters(reason, lineAround(reason.where));
    const bool hasPlace = reason.where.data() != nullptr;
    add({rule, hasPlace ? find(reason.where) : placeOfRecord(reason.tag), std::move(reason.seen)});
}

/// A tag with white space before it is no tag to the readers, and the lines after it are then what they are not: all of those
/// that follow each other are told as one.
bool Reading::followsIndentation(Reason& reason) {
    if (isExpanding()) return false;
    const std::string_view content = withoutBlanks(reason.where);
    const bool isTag = !isTagOrComment(reason.where) && isTagOrComment(content);
    const bool follows = lastIndented_ != 0 && lastIndented_ + 1 == line_.number;
    if (isTag || follows) lastIndented_ = line_.number;
    if (isTag && !follows) reason.seen = quoted(reason.where) + ", a tag with white space before it";
    return follows;
}

void Reading::recordsRejected(const BrokenRule& broken) {
    constexpr bool isBetweenRecords = true;
    if (!isFull(broken.rule)) add({broken.rule, placeOf(broken), broken.seen, isBetweenRecords});
}

bool Reading::isFull(Rule rule) {
    const Count& count = counts_[static_cast<std::size_t>(rule)];
    if (count.kept < mostOfOneRule_) return false;
    ++rejections_[count.last].suppressed;
    return true;
}

void Reading::add(Rejection rejection) {
    Count& count = counts_[static_cast<std::size_t>(rejection.rule)];
    ++count.kept;
    count.last = rejections_.size();
    rejections_.push_back(std::move(rejection));
}

/// The lines of a body are lines of the record, in their order: those of the pattern's own tags are left out.
void Reading::expansionBegins(std::string_view body) {
    bodyLines_.clear();
    expandedLines_.clear();
    std::string_view rest = body;
    for (const NumberedLine& line : linesOfRecord()) {
        std::string_view after = rest;
        const std::string_view bodyLine = nextLine(after);
        if (rest.empty() || (line.line != bodyLine && cleaned(line.line) != bodyLine)) continue;
        rest = after;
        bodyLines_.push_back(line);
        if (isExpanded(bodyLine)) expandedLines_.push_back(line);
    }
    body_ = body;
    expandedLine_ = {};
    expandedLinesRead_ = 0;
    expandedRecordStart_ = 0;
}

void Reading::expansionEnds() {
    body_ = {};
    cleanLines_.clear();
}

Reading::NumberedLine Reading::currentLine() const {
    if (!isExpanding() || expandedLinesRead_ == 0 || expandedLines_.empty()) return line_;
    return expandedLines_[(expandedLinesRead_ - 1) % expandedLines_.size()];
}

/// While a pattern is expanded those of its segment that was begun last.
std::vector<Reading::NumberedLine> Reading::linesOfRecord() const {
    if (!isExpanding() || expandedLines_.empty()) return linesOfTextSince(recordStart_);
    std::vector<NumberedLine> lines;
    for (std::size_t index = expandedRecordStart_; index < expandedLinesRead_; ++index)
        lines.push_back(expandedLines_[index % expandedLines_.size()]);
    return lines;
}

std::vector<Reading::NumberedLine> Reading::linesOfTextSince(const NumberedLine& start) const {
    std::vector<NumberedLine> lines;
    if (start.line.data() == nullptr) return lines;
    const char* const end = line_.line.data() + line_.line.size();
    std::string_view rest(start.line.data(), static_cast<std::size_t>(end - start.line.data()));
    for (std::size_t number = start.number; number <= line_.number; ++number)
        lines.push_back({nextLine(rest), number});
    return lines;
}

Place Reading::find(std::string_view piece) const {
    if (isPartOf(piece, text_)) return findInText(piece);
    if (isExpanding() && isPartOf(piece, body_)) return findInBody(piece);
    const auto clean = std::find_if(cleanLines_.rbegin(), cleanLines_.rend(),
                                    [piece](const CleanLine& line) { return isPartOf(piece, line.text); });
    if (clean == cleanLines_.rend()) return findInExpandedLine(expandedLine_, piece);
    if (isExpanding()) return findInExpandedLine(clean->text, piece);
    return placeIn(clean->number, clean->line, clean->text, piece);
}

/// The line that holds the piece, as it was read; empty for one that was not kept.
std::string_view Reading::lineAround(std::string_view piece) const {
    if (isPartOf(piece, text_)) {
        const auto position = static_cast<std::size_t>(piece.data() - text_.data());
        const std::size_t feed = position == 0 ? std::string_view::npos : text_.rfind('\n', position - 1);
        std::string_view rest = text_.substr(feed == std::string_view::npos ? 0 : feed + 1);
        return nextLine(rest);
    }
    const auto clean = std::find_if(cleanLines_.rbegin(), cleanLines_.rend(),
                                    [piece](const CleanLine& line) { return isPartOf(piece, line.text); });
    return clean == cleanLines_.rend() ? std::string_view() : std::string_view(clean->text);
}

/// Mostly in the line that was read last.
Place Reading::findInText(std::string_view piece) const {
    const auto position = static_cast<std::size_t>(piece.data() - text_.data());
    const auto lineStart = static_cast<std::size_t>(line_.line.data() - text_.data());
    if (position >= lineStart) return {line_.number, position - lineStart + 1, piece.size()};
    const std::size_t feed = position == 0 ? std::string_view::npos : text_.rfind('\n', position - 1);
    const std::size_t start = feed == std::string_view::npos ? 0 : feed + 1;
    const auto between = std::count(text_.begin() + static_cast<std::ptrdiff_t>(start),
                                    text_.begin() + static_cast<std::ptrdiff_t>(lineStart), '\n');
    return {line_.number - static_cast<std::size_t>(between), position - start + 1, piece.size()};
}

Place Reading::findInBody(std::string_view piece) const {
    const auto position = static_cast<std::size_t>(piece.data() - body_.data());
    const auto index = static_cast<std::size_t>(
        std::count(body_.begin(), body_.begin() + static_cast<std::ptrdiff_t>(position), '\n'));
    if (index >= bodyLines_.size()) return {};
    const std::size_t feed = position == 0 ? std::string_view::npos : body_.rfind('\n', position - 1);
    const std::string_view rest = body_.substr(feed == std::string_view::npos ? 0 : feed + 1);
    return placeIn(bodyLines_[index].number, bodyLines_[index].line, rest.substr(0, rest.find('\n')), piece);
}

/// A line that holds what was put in the place of variables has no columns in the text.
Place Reading::findInExpandedLine(std::string_view line, std::string_view piece) const {
    if (!isExpanding() || !isPartOf(piece, line)) return {};
    const NumberedLine bodyLine = currentLine();
    const bool isSame = cleaned(bodyLine.line) == cleaned(line);
    return isSame ? placeIn(bodyLine.number, bodyLine.line, line, piece)
                  : wholeLine(bodyLine.number, bodyLine.line);
}

/// The media pattern that makes a segment is a record around it.
Place Reading::placeOfRecord(std::string_view tagName) const {
    const std::vector<NumberedLine> lines = linesOfRecord();
    const auto hasTag = [tagName](const NumberedLine& line) {
        return isTagLine(cleaned(line.line), tagName);
    };
    for (const auto& candidates : {lines, linesOfTextSince(recordStart_)}) {
        const auto found = std::find_if(candidates.rbegin(), candidates.rend(), hasTag);
        if (found == candidates.rend()) continue;
        const std::string text = cleaned(found->line);
        const std::string_view value = TagLine(text).value;
        return placeIn(found->number, found->line, text, value.substr(0, value.find(',')));
    }
    if (lines.empty()) return {};
    const std::string text = cleaned(lines.front().line);
    return placeIn(lines.front().number, lines.front().line, text,
                   isTagOrComment(text) ? TagLine(text).name : std::string_view(text));
}

/// Once for all that break a rule, since these may be many.
void Reading::findFirstLines() {
    if (!firstLines_.empty()) return;
    std::string_view rest = text_;
    NumberedLine line = {nextLine(rest), 1};
    for (const RecordLines& record : records_) {
        // The segments of a media pattern are no records of a master playlist, whose lines only go on.
        for (; line.number < record.firstLine && !rest.empty(); ++line.number)
            line.line = nextLine(rest);
        firstLines_.push_back({record.record, line});
    }
    std::stable_sort(firstLines_.begin(), firstLines_.end(), isBefore);
}

Place Reading::placeOf(const BrokenRule& broken) {
    if (broken.record == nullptr) return {};
    findFirstLines();
    const FirstLine wanted = {broken.record, {}};
    const auto found = std::lower_bound(firstLines_.begin(), firstLines_.end(), wanted, isBefore);
    if (found == firstLines_.end() || found->record != broken.record) return {};
    return placeOfAttribute(found->line.number, found->line.line, broken.attribute);
}

}  // namespace velhls
