// Internal to the library, not installed: where the records of a text stand in it, and why some are rejected.
#pragma once

#include <array>
#include <cstddef>
#include <deque>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "velhls/common/PrivateExport.h"
#include "velhls/common/Reason.h"
#include "velhls/common/ReasonTable.h"

namespace velhls {

/// A piece of a line of a text. All are counted from 1; the length may be 0.
struct Place {
    std::size_t line = 1;
    std::size_t column = 1;
    std::size_t length = 0;
};

/// A Reason whose place is found.
struct Rejection {
    Rule rule = {};
    Place place;
    /// What was seen there; empty for the text of the place itself.
    std::string seen;
    /// Whether each record was read, and the rule binds them to each other.
    bool isBetweenRecords = false;
    /// How many more there were of the rule: other than 0 in the last one of it, when all are not kept.
    std::size_t suppressed = 0;
};

/// A rule that binds records to each other, and a record that breaks it.
struct BrokenRule {
    Rule rule = {};
    /// Null when it is the playlist as a whole.
    const void* record = nullptr;
    /// The attribute of the record that breaks the rule, or an empty name.
    std::string_view attribute;
    /// What was seen there; empty for the text of the attribute itself.
    std::string seen;
};

/// The lines that a record was made of.
struct RecordLines {
    /// A media pattern's are those of all its segments too. Rejected lines made nothing.
    enum class Kind { record, pattern, rejected };

    Kind kind = Kind::record;
    /// Rejected lines that are no tags: all that follow each other are one.
    bool isPlain = false;
    /// Tells which record it is. Null for one that was not kept, for a pattern and for rejected lines.
    const void* record = nullptr;
    std::size_t firstLine = 1;
    std::size_t lastLine = 1;
};

/// What somebody who follows a reading learns of it: the readers are given one when he wants to know where the records
/// stand and why something is rejected, and none by all who only want the records.
///
/// The readers tell it of every line, record and rejection. The text must outlive it.
class Reading {
  public:
    /// Whether the readers read on after a rejection, to find all there is. A rejected segment is read on to its URI, and
    /// a rejected media pattern to its ZOR-PATTERN_REPEAT, so that what follows is read as what it is.
    enum class Extent { toFirstRejection, toEnd };

    /// The most rejections of one rule that are kept, unless more are asked for.
    static constexpr std::size_t mostRejectionsOfOneRule = 100;

    Reading(std::string_view text, Extent extent, std::size_t mostOfOneRule = mostRejectionsOfOneRule)
        : text_(text), readsOn_(extent == Extent::toEnd), mostOfOneRule_(mostOfOneRule) {}

    /// The next line was read, with its carriage returns.
    void lineRead(std::string_view line);
    /// The line that was read last without its carriage returns, good until the next record begins.
    [[nodiscard]] std::string_view withoutCarriageReturns(std::string_view line);

    /// The line that was read last may begin a record.
    void recordBegins();
    /// A record was made of the lines from its first one to the one that was read last; or a pattern; or they were
    /// rejected, and with them what had been made of them.
    void recordMade(const void* record);
    void patternMade();
    void recordRejected();

    /// Takes down the reason, unless it was taken down already and is therefore no longer set.
    void rejected(Reason& reason);
    /// All records were made, and this one breaks a rule between them.
    void recordsRejected(const BrokenRule& broken);

    /// Whether the readers read on after a rejection.
    [[nodiscard]] bool readsOn() const { return readsOn_; }
    /// Whether no more lines are to be read, since reading them would take more than linear time.
    [[nodiscard]] bool hasEnded() const { return hasEnded_; }

    /// The body of a media pattern is expanded: from here on the lines that are read are those of its text, pass after
    /// pass, until the expansion ends. The lines of the body are among those of the record that has begun.
    void expansionBegins(std::string_view body);
    void expansionEnds();

    /// In the order in which they were made. The segments that a media pattern makes stand in the lines of its body.
    [[nodiscard]] const std::vector<RecordLines>& records() const { return records_; }

    /// In the order in which they were met: of each rule the first.
    [[nodiscard]] const std::vector<Rejection>& rejections() const { return rejections_; }

    [[nodiscard]] std::size_t linesRead() const { return linesRead_; }

  private:
    /// A line that was copied without its carriage returns.
    struct CleanLine {
        std::string text;
        std::string_view line;
        std::size_t number;
    };

    struct NumberedLine {
        std::string_view line;
        std::size_t number = 1;
    };

    /// The rejections of one rule that are kept.
    struct Count {
        std::size_t kept = 0;
        std::size_t last = 0;
    };

    /// Counts one more of a rule that has as many as are kept.
    [[nodiscard]] bool isFull(Rule rule);
    [[nodiscard]] bool followsIndentation(Reason& reason);
    void add(Rejection rejection);

    [[nodiscard]] bool isExpanding() const { return body_.data() != nullptr; }
    [[nodiscard]] NumberedLine currentLine() const;
    [[nodiscard]] std::vector<NumberedLine> linesOfRecord() const;
    [[nodiscard]] std::vector<NumberedLine> linesOfTextSince(const NumberedLine& start) const;
    [[nodiscard]] std::string_view lineAround(std::string_view piece) const;
    [[nodiscard]] Place find(std::string_view piece) const;
    [[nodiscard]] Place findInText(std::string_view piece) const;
    [[nodiscard]] Place findInBody(std::string_view piece) const;
    [[nodiscard]] Place findInExpandedLine(std::string_view line, std::string_view piece) const;
    [[nodiscard]] Place placeOfRecord(std::string_view tagName) const;
    [[nodiscard]] Place placeOf(const BrokenRule& broken);
    void findFirstLines();

    std::string_view text_;
    bool readsOn_;
    std::size_t mostOfOneRule_;
    bool hasEnded_ = false;
    NumberedLine line_;
    std::size_t linesRead_ = 0;
    /// From here on the lines are the record's.
    NumberedLine recordStart_;
    std::size_t recordsBefore_ = 0;
    std::deque<CleanLine> cleanLines_;

    std::string_view body_;
    /// The lines of the text that the body is made of, and of these the ones that each pass of the expansion makes again.
    std::vector<NumberedLine> bodyLines_;
    std::vector<NumberedLine> expandedLines_;
    std::string_view expandedLine_;
    std::size_t expandedLinesRead_ = 0;
    std::size_t expandedRecordStart_ = 0;

    /// The last of the lines that are rejected since a tag before them has white space before it; 0 for none.
    std::size_t lastIndented_ = 0;

    /// Where a record begins.
    struct FirstLine {
        const void* record = nullptr;
        NumberedLine line;
    };

    [[nodiscard]] static bool isBefore(const FirstLine& left, const FirstLine& right) {
        return std::less<>()(left.record, right.record);
    }

    std::vector<RecordLines> records_;
    /// Of all records, in the order of their addresses: made when a rule between them is broken.
    std::vector<FirstLine> firstLines_;
    std::vector<Rejection> rejections_;
    std::array<Count, ruleCount> counts_ = {};
};

/// Takes a step of a reading, false when that rejects something. Who follows the reading is told why while the lines can
/// still be looked at. An exception of number conversion leaves this function, unless somebody follows.
template <typename Step>
[[nodiscard]] bool succeeds(Step step, Reading* reading, Reason& why) {
    try {
        if (step()) return true;
    } catch (const std::logic_error&) {
        if (reading == nullptr) throw;
    }
    if (reading != nullptr) reading->rejected(why);
    return false;
}

/// Whether a reader reads on after a rejection.
[[nodiscard]] inline bool readsOn(const Reading* reading) {
    return reading != nullptr && reading->readsOn();
}

/// The place of a piece of a line as a reader read it. The line of the text may have carriage returns that this one has
/// not; those after the piece do not belong to it.
[[nodiscard]] VELHLS_PRIVATE_API Place placeIn(std::size_t lineNumber, std::string_view lineOfText,
                                               std::string_view lineAsRead, std::string_view piece);

/// The place of the attribute's value in a tag's line of the text, or of the tag's name where it has no such attribute.
[[nodiscard]] VELHLS_PRIVATE_API Place placeOfAttribute(std::size_t lineNumber, std::string_view lineOfText,
                                                        std::string_view attributeName);

/// Whether a piece is a part of a text, and not only equal to one.
[[nodiscard]] bool isPartOf(std::string_view piece, std::string_view text);

}  // namespace velhls
