// Internal to the library, not installed: how the readers say why they decide what they decide.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

#include "velhls/common/Rule.h"
#include "velhls/common/TagLine.h"

namespace velhls {

class AttributeList;

/// What a number may be made of, by RFC 8216, section 4.2.
enum class NumberForm { integer, decimal, signedDecimal, any };

/// Takes down what the readers decide, and where.
///
/// Every reader is given a pointer to one. It is null on the plain road, where the outcome alone counts; only
/// velhls/diagnostics gives one that is not. So a reader asks for it where it has rejected something already,
/// or behind a single test where it accepts.
///
/// With a recorder the reading loops go on behind what they reject, so that one run finds all there is.
class Recorder {
  public:
    Recorder() = default;
    virtual ~Recorder() = default;
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    /// The next line of the input was read. Views into `line` tell a place in it until the line after the
    /// next one is read.
    virtual void lineRead(std::string_view line) = 0;

    /// A reader begins to deal with a tag of the line that was read last.
    virtual void tagRead(const TagLine& tagLine) = 0;

    /// A tag is read over, since this kind of playlist does not know it.
    virtual void tagIgnored(const TagLine& tagLine) = 0;

    /// The attributes of a tag were read; `tagName` is the name in its line.
    virtual void attributesRead(std::string_view tagName, const AttributeList& attributes) = 0;

    /// Remembers the place of a record, or of anything else that has an address, for `reportRecord`.
    virtual void recordRead(const void* record, std::string_view where) = 0;

    /// Remembers the place of the one for the other.
    virtual void recordMade(const void* record, const void* madeOf) = 0;

    /// A rule is broken at a place of a line that was read. Without `seen` the text of the place is what was
    /// seen.
    virtual void report(Rule rule, std::string_view where, const std::string& seen) = 0;

    /// A rule is broken by a record, at the value of the attribute with this name where its line has that, and
    /// otherwise at the place that was remembered.
    virtual void reportRecord(Rule rule, const void* record, std::string_view attribute,
                              const std::string& seen) = 0;

    /// The text is about to be converted to a number: if that throws, this is what could not be converted, and
    /// where it was given.
    virtual void converting(std::string_view number, NumberForm form, std::string_view where) = 0;

    /// The last conversion threw.
    virtual void conversionFailed(Rule rule) = 0;

    /// A media pattern begins at the line that was read last. Its body begins with so many lines in front of that
    /// one.
    virtual void patternBegins(std::size_t linesInFront) = 0;

    /// The line that was read last belongs to the body of the pattern.
    virtual void patternLineKept() = 0;

    /// The body is expanded: views into it tell a place in the lines that it was made of, until expansionEnds.
    virtual void expansionBegins(std::string_view body) = 0;

    /// In the first pass: this line of the body made a line of the expanded text.
    virtual void lineExpanded(std::string_view bodyLine) = 0;

    /// The lines that are read from here on are those of the expanded text, pass after pass.
    virtual void expandedTextBegins() = 0;
    virtual void expansionEnds() = 0;
};

/// The text in double quotes, for messages; of a long one its start.
[[nodiscard]] std::string quoted(std::string_view text);

/// What the functions below do when there is a recorder. Apart from them, so that where there is none it costs a
/// test and nothing else.
void report(Recorder& recorder, Rule rule, std::string_view where);
void reportMissing(Recorder& recorder, Rule rule, std::string_view where);

inline void tell(Recorder* recorder, Rule rule, std::string_view where) {
    if (recorder != nullptr) report(*recorder, rule, where);
}

/// For what should stand at a place, or beside it, and does not.
inline void tellMissing(Recorder* recorder, Rule rule, std::string_view where) {
    if (recorder != nullptr) reportMissing(*recorder, rule, where);
}

/// For `return reject(...)` where false means that the playlist is rejected.
[[nodiscard]] bool reject(Recorder* recorder, Rule rule, std::string_view where);
[[nodiscard]] bool rejectMissing(Recorder* recorder, Rule rule, std::string_view where);

/// A line that begins with "#" and is no tag that is read. Vendor tags are more than comments.
inline void tellOfComment(Recorder* recorder, std::string_view line) {
    if (recorder == nullptr) return;
    if (isVendorTag(line)) {
        recorder->tagIgnored(TagLine(line));
    } else {
        recorder->report(Rule::commentNotWritten, line, {});
    }
}

/// The text itself, for a conversion that may throw.
[[nodiscard]] inline std::string_view number(Recorder* recorder, std::string_view text,
                                             NumberForm form = NumberForm::integer) {
    if (recorder != nullptr) recorder->converting(text, form, text);
    return text;
}

/// Reads on a recorded road, where an exception of number conversion is one more reason to reject.
template <typename Outcome, typename Read>
[[nodiscard]] Outcome withoutThrowing(Recorder& recorder, Outcome outcomeOfThrowing, Read read) {
    try {
        return read();
    } catch (const std::invalid_argument&) {
        recorder.conversionFailed(Rule::numberMissing);
    } catch (const std::out_of_range&) {
        recorder.conversionFailed(Rule::numberOutOfRange);
    }
    return outcomeOfThrowing;
}

}  // namespace velhls
