// Internal to the library, not installed: what the makers of fixes look at and write to.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "velhls/document/VELHLSDocument.h"
#include "velhls/document/VELHLSFinding.h"
#include "velhls/document/VELHLSStructure.h"

namespace velhls {

/// A text with faults, and what many makers want to know of it. What takes time is found when it is asked for first; all of
/// it together takes time linear in the text where findings come in the order of their places, but for sorting.
class FaultyText {
  public:
    /// The document must outlive this.
    FaultyText(const VELHLSDocument& document, VELHLSDocument::Kind kind)
        : document_(document), kind_(kind) {}

    [[nodiscard]] const VELHLSDocument& document() const { return document_; }
    [[nodiscard]] VELHLSDocument::Kind kind() const { return kind_; }
    [[nodiscard]] const VELHLSStructure& structure();

    /// A segment as the models read it. It begins with the first tag since the URI before that they take for a segment's.
    struct ModelSegment {
        /// The first of its lines, or of those that lie between two URIs: where it is looked for.
        std::size_t start = 1;
        /// 0 where no tag opens it.
        std::size_t openingLine = 0;
        /// 0 where the text ends before one.
        std::size_t uriLine = 0;
        std::size_t end = 1;
    };

    /// The one that the line stands in.
    [[nodiscard]] const ModelSegment& segmentAt(std::size_t line);

    /// The target duration that the segments want: that of the longest, rounded, in seconds. 0 without any.
    [[nodiscard]] std::uint64_t longestSegment();

    /// What a segment without a duration probably has, in whole seconds: the target duration, the mean of the others, or 10.
    [[nodiscard]] std::uint64_t usualDuration();

    /// Where a tag that the format knows stands.
    struct Places {
        /// 0 for none.
        std::size_t firstLine = 0;
        std::size_t lastLine = 0;
        std::size_t count = 0;
        /// Whether all of them are the same text.
        bool areAlike = true;
    };
    [[nodiscard]] Places placesOf(std::string_view tagName);

    /// A whole number that the first tag with this name has for its value.
    [[nodiscard]] std::optional<std::uint64_t> numberOf(std::string_view tagName);

    /// The renditions of a group, by the names that they have: the first of several with one name, as the models do.
    using Group = std::map<std::string_view, std::size_t>;
    /// The lines of renditions by TYPE, GROUP-ID and NAME. What lacks one of these stands in none.
    [[nodiscard]] const std::map<std::string_view, std::map<std::string_view, Group>>& groups();

    /// True when it is asked for the first time of this group: what mends a group as a whole stands with its first finding.
    [[nodiscard]] bool isNewGroup(std::string_view type, std::string_view groupId) {
        return askedGroups_.insert({type, groupId}).second;
    }

    /// True when it is asked for the first time: what mends all lines stands with the first finding.
    [[nodiscard]] bool isFirstToTidy() { return !std::exchange(isTidied_, true); }

    /// True when it is asked for the first time of this line, and of no line in between: what mends a list as a whole stands
    /// with its first finding.
    [[nodiscard]] bool isNewList(std::size_t line) { return std::exchange(lastList_, line) != line; }

    /// Whether that was something.
    [[nodiscard]] bool isListTidied() const { return isListTidied_; }
    void setListTidied(bool isTidied) { isListTidied_ = isTidied; }

    /// How many EXT-X-MEDIA tags there are with this TYPE and GROUP-ID.
    [[nodiscard]] std::size_t renditionCount(std::string_view type, std::string_view groupId);

    /// The lines of the variants whose attribute names a group.
    [[nodiscard]] const std::vector<std::size_t>& variantsNaming(std::string_view attribute,
                                                                 std::string_view groupId);

    /// The first EXT-X-SESSION-KEY or EXT-X-SESSION-DATA with the text of this one; 0 for none.
    [[nodiscard]] std::size_t firstLike(const VELHLSLine& line);

    /// A line with the DATA-ID of this one whose first attribute is LANGUAGE; 0 for none.
    [[nodiscard]] std::size_t dataWithLanguageFirst(const VELHLSLine& line);

  private:
    [[nodiscard]] bool isModelUri(std::size_t number) const;
    [[nodiscard]] bool opensSegment(std::size_t number) const;
    void measureSegments();
    void findReferences();
    void findGroups();
    void findSessionTags();

    using GroupName = std::pair<std::string_view, std::string_view>;

    const VELHLSDocument& document_;
    std::optional<VELHLSStructure> structure_;
    ModelSegment segment_;
    std::uint64_t longestSegment_ = 0;
    double meanDuration_ = 0.0;
    std::optional<std::uint64_t> usualDuration_;
    std::map<std::string_view, std::map<std::string_view, Group>> groups_;
    std::map<GroupName, std::size_t> renditionCounts_;
    std::set<GroupName> askedGroups_;
    std::map<GroupName, std::vector<std::size_t>> references_;
    std::map<std::string_view, Places> places_;
    std::map<std::string_view, std::size_t> sessionTags_;
    std::map<std::string_view, std::size_t> dataWithLanguageFirst_;
    std::size_t lastList_ = 0;
    VELHLSDocument::Kind kind_;
    // What was found or asked already.
    bool areSegmentsMeasured_ = false;
    bool areGroupsKnown_ = false;
    bool areReferencesKnown_ = false;
    bool arePlacesKnown_ = false;
    bool areSessionTagsKnown_ = false;
    bool isListTidied_ = false;
    bool isTidied_ = false;
};

/// One finding in a faulty text, and what was made of it so far. A maker of fixes adds its fixes, the best first.
struct Fault {
    FaultyText& text;
    const VELHLSFinding& finding;
    /// The line of the finding.
    VELHLSLine line;
    std::vector<VELHLSFix>& fixes;

    [[nodiscard]] const VELHLSDocument& document() const { return text.document(); }
    /// What the finding marks.
    [[nodiscard]] std::string_view place() const {
        return line.text.substr(finding.column - 1, finding.length);
    }
    /// The attribute of the line that the place is in.
    [[nodiscard]] std::optional<VELHLSAttribute> attribute() const;

    /// Each adds a fix, unless it has no edit or one that the document refuses.
    void safe(std::string sentence, std::vector<VELHLSEdit> edits) const;
    void lossy(std::string sentence, std::vector<VELHLSEdit> edits) const;
    void guess(std::string sentence, std::vector<VELHLSEdit> edits) const;

    /// An edit that replaces a piece of the document's text.
    [[nodiscard]] VELHLSEdit replace(std::string_view piece, std::string replacement) const;
    /// One that sets an attribute of the line, or removes it; nothing where the line cannot be given it.
    [[nodiscard]] std::vector<VELHLSEdit> setAttribute(std::string_view name,
                                                       std::optional<std::string> value) const;

    /// Fixes that several makers have.
    void removeAttribute(std::string_view name) const;
    void removeLine(const std::string& whatIsLost) const;

  private:
    void add(VELHLSFix::Class fixClass, std::string sentence, std::vector<VELHLSEdit> edits) const;
};

/// A maker of fixes: it adds to the fault's.
using MakeFixes = void (*)(const Fault& fault);

/// What is mended of a rule, and how.
struct FixEntry {
    std::string_view rule;
    MakeFixes make;
    /// For the rule's page: what the fixes do, each after its class.
    std::string_view what;
};

struct FixTable {
    const FixEntry* first;
    std::size_t count;

    [[nodiscard]] const FixEntry* begin() const { return first; }
    [[nodiscard]] const FixEntry* end() const { return first + count; }
};

// The tables. Each stands beside its functions, in the file of its name.
[[nodiscard]] FixTable listFixes();
[[nodiscard]] FixTable lineFixes();
[[nodiscard]] FixTable segmentFixes();
[[nodiscard]] FixTable keyFixes();
[[nodiscard]] FixTable masterFixes();
[[nodiscard]] FixTable groupFixes();

/// Takes white space from around the attributes, names and values of a list, and commas that divide nothing. No edits
/// where there is neither, and where a quote is not closed.
[[nodiscard]] std::vector<VELHLSEdit> tidyList(const VELHLSDocument& document, const VELHLSLine& line);

/// Whether something in the line's list breaks the grammar: it may be meant to be divided otherwise than it is.
[[nodiscard]] bool isMalformed(const VELHLSLine& line);

/// The edits that move a line before another one, or to the end of the text.
[[nodiscard]] std::vector<VELHLSEdit> moveBefore(const VELHLSDocument& document, std::size_t line,
                                                 std::size_t target);
[[nodiscard]] std::vector<VELHLSEdit> moveToEnd(const VELHLSDocument& document, std::size_t line);

/// Whether EXT-X-STREAM-INF may be moved to its URI: there are lines between them, and none of a segment.
[[nodiscard]] bool mayMoveToUri(const VELHLSDocument& document, const VELHLSStructure::Variant& variant);

/// Gives a variant the BANDWIDTH that it most probably has.
void fixBandwidth(const Fault& fault);

/// The edit that changes attributes of a line, or replaces the value of a tag; none where the line cannot be given them.
[[nodiscard]] std::vector<VELHLSEdit> changeAttributes(const VELHLSDocument& document, std::size_t line,
                                                       const std::vector<VELHLSAttributeChange>& changes);
[[nodiscard]] std::vector<VELHLSEdit> replaceValue(const VELHLSDocument& document, std::size_t line,
                                                   std::string_view value);

/// Removes a rendition, and where it is the last of its group also what names that.
[[nodiscard]] std::vector<VELHLSEdit> removeRendition(FaultyText& text, const VELHLSLine& line);

/// The text with A to Z for a to z.
[[nodiscard]] std::string inUpperCase(std::string_view text);

/// YES or NO for what seems to mean it, in whatever case: TRUE, 0. Empty for all else.
[[nodiscard]] std::string_view yesOrNo(std::string_view text);

/// The text without white space around it.
[[nodiscard]] std::string_view bare(std::string_view text);

}  // namespace velhls
