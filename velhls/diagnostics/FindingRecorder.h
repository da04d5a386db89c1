// Internal to the library, not installed: the recorder that makes findings.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "velhls/common/Recorder.h"
#include "velhls/diagnostics/FindingList.h"
#include "velhls/diagnostics/StandardRules.h"
#include "velhls/diagnostics/TextLines.h"

namespace velhls {

/// Makes findings of what the readers report: it knows which line a view looks into, and where that line stands
/// in the text. It hands what it is told of to the rules of RFC 8216 that no reader looks at.
class FindingRecorder final : public Recorder {
  public:
    FindingRecorder(const TextLines& lines, FindingList& findings, StandardRules& standardRules)
        : lines_(lines), findings_(findings), standardRules_(standardRules) {}

    void lineRead(std::string_view line) override;
    void tagRead(const TagLine& tagLine) override;
    void tagIgnored(const TagLine& tagLine) override;
    void attributesRead(std::string_view tagName, const AttributeList& attributes) override;
    void recordRead(const void* record, std::string_view where) override;
    void recordMade(const void* record, const void* madeOf) override;
    void report(Rule rule, std::string_view where, const std::string& seen) override;
    void reportRecord(Rule rule, const void* record, std::string_view attribute,
                      const std::string& seen) override;
    void converting(std::string_view number, NumberForm form, std::string_view where) override;
    void conversionFailed(Rule rule) override;
    void patternBegins(std::size_t linesInFront) override;
    void patternLineKept() override;
    void expansionBegins(std::string_view body) override;
    void lineExpanded(std::string_view bodyLine) override;
    void expandedTextBegins() override;
    void expansionEnds() override;

    /// Where the record stands. Nothing for an unknown one, and for those that a media pattern repeats.
    [[nodiscard]] std::optional<Place> placeOfRecord(const void* record) const;

  private:
    /// A line as a reader holds it.
    struct Buffer {
        const char* start = nullptr;
        std::size_t size = 0;
        std::size_t lineNumber = 1;
        /// The line holds what was put in the place of variables: it has no columns in the text.
        bool isSubstituted = false;
    };

    enum class Source { playlist, patternBody, expandedText };

    [[nodiscard]] std::size_t positionInText(std::size_t lineNumber, std::size_t sizeAsRead,
                                             std::size_t position) const;
    [[nodiscard]] Place placeIn(std::size_t lineNumber, std::size_t sizeAsRead, std::size_t start,
                                std::size_t length) const;
    [[nodiscard]] const Buffer* bufferWith(std::string_view view) const;
    [[nodiscard]] Place placeOf(std::string_view view) const;
    void findCarriageReturns(std::string_view line) const;
    [[nodiscard]] bool followsFromEarlierError(Rule rule) const;
    void noteRejection(Rule rule);
    [[nodiscard]] bool isRepeated() const;
    [[nodiscard]] std::size_t nextLineNumber();
    [[nodiscard]] Place placeInBody(std::string_view view) const;
    [[nodiscard]] Place wholeLine(std::size_t lineNumber) const;

    const TextLines& lines_;
    FindingList& findings_;
    StandardRules& standardRules_;
    std::size_t linesRead_ = 0;
    /// The latest line first.
    std::array<Buffer, 3> buffers_;
    /// Where the carriage returns of one line stand, for the places in it.
    mutable std::size_t scannedLine_ = 0;
    mutable std::size_t scannedSize_ = 0;
    mutable std::vector<std::size_t> carriageReturns_;
    std::unordered_map<const void*, Place> records_;
    /// What is being converted, and where it was given.
    std::string_view converted_;
    Place convertedAt_;
    Source source_ = Source::playlist;
    std::string_view body_;
    std::vector<std::size_t> bodyLineStarts_;
    /// The lines of the text that the lines of the pattern's body and of one pass of the expanded text are.
    std::vector<std::size_t> bodyLines_;
    std::vector<std::size_t> expandedLines_;
    std::size_t expandedLinesRead_ = 0;
    bool inVariant_ = false;
    bool inRendition_ = false;
    bool variantRejected_ = false;
    bool renditionRejected_ = false;
};

}  // namespace velhls
