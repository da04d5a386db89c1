#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "velhls/VELHLS.h"
#include "velhls/VELHLSCheck.h"

/// What the fixes promise of every text, for the tests and the fuzz target.
namespace oracle {

inline std::string_view bare(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t start = text.find_first_not_of(blanks);
    if (start == std::string_view::npos) return {};
    return text.substr(start, text.find_last_not_of(blanks) - start + 1);
}

/// What a document means, in the form that docs/guide/mending.md defines: two texts with the same form mean the same.
class NormalForm {
  public:
    explicit NormalForm(const std::string& text) : document_(text), structure_(document_) {
        for (const VELHLSLine line : document_.lines())
            add(line);
        if (!tags_.empty()) endSegment("");
        if (target_)
            meaning_["EXT-X-TARGETDURATION"].push_back(std::to_string(std::max(*target_, longest())));
    }

    /// Of each tag of the playlist what it says, in order; of each segment its tags and its URI; of each variant likewise.
    [[nodiscard]] const std::map<std::string, std::vector<std::string>>& meaning() const { return meaning_; }

  private:
    void add(const VELHLSLine& line) {
        if (line.kind == VELHLSLine::Uri) return addUri(line);
        if (line.kind != VELHLSLine::Tag) return;
        const std::string name(line.name);
        if (name == "EXTM3U" || name == "EXT-X-VERSION") return;
        const std::string value = valueOf(line);
        if (name == "EXT-X-TARGETDURATION" && addTarget(value)) return;
        if (name == "EXT-X-STREAM-INF") {
            if (!variant_.empty()) meaning_["variant"].push_back(variant_);
            variant_ = value;
            hasVariant_ = true;
            return;
        }
        const bool isOfSegments = document_.kind() == VELHLSDocument::Media && isOfSegment(line);
        if (isOfSegments) {
            tags_.insert(name + ":" + value);
            return;
        }
        std::vector<std::string>& all = meaning_[name];
        if (std::find(all.begin(), all.end(), value) == all.end() || !isOnce(line)) all.push_back(value);
    }

    static bool isOnce(const VELHLSLine& line) {
        const bool isOfSession = line.name == "EXT-X-SESSION-KEY" || line.name == "EXT-X-SESSION-DATA";
        return isOfSession || (line.definition != nullptr && line.definition->once);
    }

    static bool isOfSegment(const VELHLSLine& line) {
        if (line.definition == nullptr) return true;
        return line.definition->reach != VELHLSTagDefinition::Itself;
    }

    bool addTarget(const std::string& value) {
        const auto seconds = VELHLSSyntax::readDecimalInteger(value);
        if (!seconds || (target_ && target_ != seconds)) return false;
        target_ = seconds;
        return true;
    }

    [[nodiscard]] std::uint64_t longest() const {
        double longest = 0.0;
        for (const VELHLSStructure::Segment& segment : structure_.segments()) {
            if (segment.uriLine != 0) longest = std::max(longest, segment.duration);
        }
        return longest < 1e9 ? static_cast<std::uint64_t>(std::lround(longest)) : 0;
    }

    void addUri(const VELHLSLine& line) {
        const std::string uri = normalUri(std::string(bare(line.value)));
        if (hasVariant_) {
            meaning_["variant"].push_back(variant_ + " " + uri);
            variant_.clear();
            hasVariant_ = false;
            return;
        }
        endSegment(uri);
    }

    void endSegment(const std::string& uri) {
        std::string segment;
        for (const std::string& tag : tags_)
            segment += tag + "\n";
        tags_.clear();
        meaning_["segment"].push_back(segment + uri);
    }

    /// Without "./" where it says nothing (RFC 3986, section 5.2.4).
    static std::string normalUri(std::string uri) {
        const std::size_t start = !uri.empty() && uri.front() == '/' && uri.compare(0, 2, "//") != 0 ? 1 : 0;
        while (uri.compare(start, 2, "./") == 0)
            uri.erase(start, 2);
        return uri;
    }

    static std::string valueOf(const VELHLSLine& line) {
        const std::string value(bare(line.value));
        if (line.definition == nullptr) return value;
        switch (line.definition->form) {
            case VELHLSTagDefinition::AttributeList:
                return listOf(line);
            case VELHLSTagDefinition::Duration:
                return durationOf(value);
            case VELHLSTagDefinition::DateTime:
                return dateOf(value);
            default:
                return value;
        }
    }

    static std::string durationOf(const std::string& value) {
        const std::size_t comma = std::min(value.find(','), value.size());
        const std::string title = comma < value.size() ? value.substr(comma + 1) : "";
        return std::string(bare(std::string_view(value).substr(0, comma))) + "," + title;
    }

    static std::string dateOf(const std::string& value) {
        std::string upper = value;
        for (char& character : upper) {
            if (character == 't' || character == 'z') character = static_cast<char>(character - 'a' + 'A');
        }
        constexpr std::string_view digits = "0123456789";
        if (upper.find_first_not_of(digits) == 8 && upper[8] == 'T' &&
            upper.find_first_not_of(digits, 9) >= 15) {
            upper.insert(13, ":").insert(11, ":").insert(6, "-").insert(4, "-");
        }
        const auto date = VELHLSSyntax::readDateTime(upper);
        return date && date->hasTime ? std::to_string(date->microseconds) + (date->hasZone ? "Z" : "")
                                     : value;
    }

    static std::string listOf(const VELHLSLine& line) {
        std::map<std::string, std::string> attributes;
        for (const VELHLSAttribute& attribute : line.attributes()) {
            if (bare(attribute.text).empty()) continue;
            if (line.name == "EXT-X-SESSION-DATA" && attribute.name == "X-SPARE") continue;
            const bool isWhole =
                !attribute.name.empty() && attribute.text.find('=') != std::string_view::npos;
            const std::string name(isWhole ? attribute.name : bare(attribute.text));
            std::string value(attribute.value);
            if (attribute.fault == VELHLSAttribute::TextAfterQuote) value = bare(attribute.text);
            if (attribute.name == "IV") value = numberOf(value);
            const auto [place, isFirst] = attributes.emplace(name, value);
            if (!isFirst && place->second != value) attributes.emplace(name + "," + value, value);
        }
        if (line.name == "EXT-X-KEY" && attributes["METHOD"] == "NONE") return "METHOD=NONE";
        std::string list;
        for (const auto& [name, value] : attributes)
            list += name + "=" + value + ",";
        return list;
    }

    /// Without zeros before it, and in one case.
    static std::string numberOf(std::string value) {
        value = bare(value);
        for (char& character : value) {
            if (character >= 'A' && character <= 'Z') character = static_cast<char>(character - 'A' + 'a');
        }
        if (value.compare(0, 2, "0x") != 0 ||
            value.find_first_not_of("0123456789abcdef", 2) != std::string::npos)
            return value;
        value.erase(0, std::min(value.find_first_not_of('0', 2), value.size()));
        return "0x" + value;
    }

    VELHLSDocument document_;
    VELHLSStructure structure_;
    std::map<std::string, std::vector<std::string>> meaning_;
    std::set<std::string> tags_;
    std::string variant_;
    bool hasVariant_ = false;
    std::optional<std::uint64_t> target_;
};

/// How many findings above a note RFC 8216 has.
inline std::size_t weightOf(const std::string& text, VELHLSDiagnostics::PlaylistKind kind) {
    VELHLSDiagnostics::Options options;
    options.kind = kind;
    std::size_t weight = 0;
    for (const VELHLSFinding& finding : VELHLSDiagnostics::check(text, options).findings) {
        if (finding.severity > VELHLSFinding::Note) weight += 1 + finding.suppressed;
    }
    return weight;
}

/// Which promise the fixes of a text break; empty for none.
inline std::string brokenFixPromise(const std::string& text, const VELHLSFixes::Options& options) {
    const VELHLSFixes::Result result = VELHLSFixes::apply(text, options);
    const VELHLSDocument document(text);
    const VELHLSEditedText edited = document.apply(result.edits);
    if (edited.overlap || edited.text != result.text) return "the edits make the text";
    if (result.edits.empty() != (result.text == text)) return "there are edits where something changed";
    if (!result.edits.empty() && result.done.empty()) return "what was done is told";
    for (const VELHLSFixes::Done& done : result.done) {
        if (done.fixClass == VELHLSFix::Lossy && !options.lossy) return "nothing is lost unasked";
        if (done.fixClass == VELHLSFix::Guess && !options.guess) return "nothing is guessed unasked";
        if (done.line < 1 || done.line > std::max<std::size_t>(document.lineCount(), 1))
            return "lines are lines";
    }
    const VELHLSDiagnostics::PlaylistKind kind = VELHLSDiagnostics::check(text, {options.kind, {}}).kind;
    if (kind == VELHLSDiagnostics::Detect) return result.text == text ? "" : "what is no playlist stays";
    VELHLSFixes::Options again = options;
    again.kind = kind;
    const bool isDone = result.rounds < VELHLSFixes::maximumRounds;
    if (isDone && VELHLSFixes::apply(result.text, again).text != result.text)
        return "mending twice is mending once";
    const bool wasAccepted = !VELHLSDiagnostics::check(text, {kind, {}}).rejected;
    const bool isAccepted = !VELHLSDiagnostics::check(result.text, {kind, {}}).rejected;
    if (wasAccepted && !isAccepted) return "what was accepted stays accepted";
    if (weightOf(result.text, kind) > weightOf(text, kind)) return "the standard finds no more";
    const bool isSafe = !options.lossy && !options.guess;
    if (isSafe && NormalForm(text).meaning() != NormalForm(result.text).meaning())
        return "a safe fix leaves the meaning";
    const bool ofModels = options.profiles == std::vector{VELHLSDiagnostics::Profile::library};
    if (ofModels && wasAccepted && result.text != text) return "what the models accept stays as it is";
    return "";
}

}  // namespace oracle
