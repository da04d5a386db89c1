#pragma once

#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "velhls/VELHLS.h"
#include "velhls/VELHLSCheck.h"

#include "tests/support/LibraryFindings.h"

/// What the diagnostics promise of every text, for the tests and the fuzz target.
namespace oracle {

inline std::vector<std::string_view> linesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t feed = std::min(text.find('\n'), text.size());
        lines.push_back(text.substr(0, feed));
        text.remove_prefix(std::min(feed + 1, text.size()));
    }
    if (lines.empty()) lines.emplace_back();
    return lines;
}

/// What the plain parse makes of a text.
struct PlainParse {
    bool rejected = false;
    /// The number of the line that was read last.
    std::size_t lastLine = 0;
    /// The text that the playlist renders.
    std::string rendered;
};

template <typename Parse>
PlainParse parsePlainly(const std::string& text, Parse parse) {
    PlainParse result;
    std::istringstream input(text);
    try {
        const auto playlist = parse(input);
        result.rejected = playlist == nullptr;
        std::ostringstream out;
        if (playlist != nullptr && playlist->render(out) == 0) result.rendered = out.str();
    } catch (const std::invalid_argument&) {
        result.rejected = true;
    } catch (const std::out_of_range&) {
        result.rejected = true;
    }
    const bool atEnd = !input.good();
    input.clear();
    const std::size_t read = atEnd ? text.size() : static_cast<std::size_t>(input.tellg());
    result.lastLine = linesOf(std::string_view(text).substr(0, read)).size();
    return result;
}

inline PlainParse parsePlainly(const std::string& text, VELHLSDiagnostics::PlaylistKind kind) {
    if (kind == VELHLSDiagnostics::Master) {
        return parsePlainly(
            text, [](std::istream& input) { return VELHLSParsedManifest::parseManifest(input, nullptr); });
    }
    return parsePlainly(
        text, [](std::istream& input) { return VELHLSMediaStream::parseMediaStream(input, nullptr); });
}

/// What the parse of a text in memory makes of it.
struct TextParse {
    bool rejected = false;
    VELHLSReason reason;
    std::string rendered;
};

template <typename Parse>
TextParse parseText(std::string_view text, Parse parse) {
    TextParse result;
    const auto playlist = parse(text, &result.reason);
    result.rejected = playlist == nullptr;
    std::ostringstream out;
    if (playlist != nullptr && playlist->render(out) == 0) result.rendered = out.str();
    return result;
}

inline TextParse parseText(std::string_view text, VELHLSDiagnostics::PlaylistKind kind) {
    if (kind == VELHLSDiagnostics::Master) {
        return parseText(text, [](std::string_view read, VELHLSReason* reason) {
            return VELHLSParsedManifest::parseManifest(read, reason);
        });
    }
    return parseText(text, [](std::string_view read, VELHLSReason* reason) {
        return VELHLSMediaStream::parseMediaStream(read, reason);
    });
}

inline bool startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

inline std::string_view trimmed(std::string_view line) {
    const std::size_t last = line.find_last_not_of(" \t\r\n");
    return line.substr(0, last + 1);
}

/// The line as the library reads it outside of media patterns.
inline std::string asRead(std::string_view line) {
    std::string kept(line);
    kept.erase(std::remove(kept.begin(), kept.end(), '\r'), kept.end());
    return kept;
}

inline bool isUriLine(std::string_view line) {
    return !startsWith(line, "#") && !trimmed(line).empty();
}

/// Errors of rules between records, which are no reason to stop reading.
inline bool isBetweenRecords(const std::string& rule) {
    static const std::set<std::string> rules = {"variants-missing",          "group-missing",
                                                "group-default-repeated",    "group-rendition-missing",
                                                "group-rendition-different", "group-rendition-unmatched",
                                                "session-data-repeated",     "session-key-repeated"};
    return rules.count(rule) != 0;
}

/// Whether an error in a line belongs to the record with which reading stopped: no other record ends between the
/// two.
inline bool belongsToLastRecord(const std::vector<std::string_view>& lines, std::size_t errorLine,
                                std::size_t lastLine, VELHLSDiagnostics::PlaylistKind kind) {
    if (errorLine == lastLine) return true;
    if (errorLine > lastLine) return false;
    if (kind == VELHLSDiagnostics::Master) {
        return errorLine + 1 == lastLine && startsWith(asRead(lines[errorLine - 1]), "#EXT-X-STREAM-INF:");
    }
    bool inPattern = false;
    bool holdsUri = false;
    for (std::size_t index = 0; index + 1 < lastLine; ++index) {
        const std::string line = asRead(lines[index]);
        inPattern = inPattern || startsWith(line, "#ZOR-PATTERN_START");
        holdsUri = holdsUri || (index + 1 >= errorLine && isUriLine(line));
    }
    return inPattern || !holdsUri;
}

/// How often each tag stands in a text, and its other lines.
struct Content {
    std::map<std::string, std::size_t> tags;
    std::set<std::string> uris;
};

inline Content contentOf(std::string_view text) {
    Content content;
    for (const std::string_view line : linesOf(text)) {
        const std::string kept(trimmed(asRead(line)));
        if (startsWith(kept, "#EXT") || startsWith(kept, "#ZOR")) {
            ++content.tags[kept.substr(0, kept.find(':'))];
        } else if (isUriLine(kept)) {
            content.uris.insert(kept);
        }
    }
    return content;
}

inline std::string lostContent(std::string_view before, std::string_view after) {
    const Content written = contentOf(after);
    const Content read = contentOf(before);
    for (const auto& [name, count] : read.tags) {
        const auto found = written.tags.find(name);
        if (found == written.tags.end() || found->second < count) return name;
    }
    for (const std::string& uri : read.uris) {
        if (written.uris.count(uri) == 0) return uri;
    }
    return {};
}

inline bool isTheSame(const VELHLSReason& reason, const VELHLSFinding& finding) {
    return reason.ruleId == finding.ruleId && reason.line == finding.line &&
           reason.column == finding.column && reason.length == finding.length &&
           reason.message == finding.message;
}

/// What the parse of a text says otherwise than that of a stream, or than the check: its reason is the first error.
/// Rules between records are looked at in their own order, and found in that of their places.
inline std::string brokenPromiseOfText(const std::string& text, VELHLSDiagnostics::PlaylistKind kind,
                                       const PlainParse& plain, const std::vector<VELHLSFinding>& findings) {
    const TextParse parsed = parseText(text, kind);
    if (parsed.rejected != plain.rejected) return "text and stream differ in what they accept";
    if (parsed.rendered != plain.rendered) return "text and stream give different playlists";
    const VELHLSReason& reason = parsed.reason;
    if (!parsed.rejected) return reason.ruleId.empty() ? "" : "accepted with a reason";
    for (const VELHLSFinding& finding : findings) {
        if (finding.severity != VELHLSFinding::Error) continue;
        if (isTheSame(reason, finding)) return "";
        if (!isBetweenRecords(finding.ruleId)) break;
    }
    return reason.ruleId + ": the reason is not the first error";
}

/// Looked up once: the tests ask for millions of findings.
inline const std::map<std::string_view, VELHLSRule>& rulesByName() {
    static const std::map<std::string_view, VELHLSRule> rules = [] {
        std::map<std::string_view, VELHLSRule> named;
        for (const VELHLSRule& rule : library::rules())
            named.emplace(rule.id, rule);
        return named;
    }();
    return rules;
}

/// The line that decides what kind a document is, found by looking at all of them; 0 for none.
inline std::size_t decidingLine(const VELHLSDocument& document) {
    const bool isMaster = document.kind() == VELHLSDocument::Master;
    std::size_t first = 0;
    for (const VELHLSLine line : document.lines()) {
        if (line.definition == nullptr) continue;
        const bool isOfVariant = line.name == "EXT-X-STREAM-INF" || line.name == "EXT-X-I-FRAME-STREAM-INF";
        if (isMaster ? isOfVariant : line.name == "EXTINF") return line.number;
        const auto playlist = isMaster ? VELHLSTagDefinition::Master : VELHLSTagDefinition::Media;
        if (first == 0 && line.definition->playlist == playlist) first = line.number;
    }
    return first;
}

/// What of the detection of a text's kind differs from what the check and the document say of it; empty when nothing does.
inline std::string brokenDetection(const std::string& text) {
    const auto detection = VELHLSDiagnostics::detectKind(text);
    const auto detected = detection ? detection->kind : VELHLSDiagnostics::Detect;
    if (detected != VELHLSDiagnostics::check(text).kind) return "the check takes it for another kind";
    if (!detection) return "";
    const VELHLSDocument document(text);
    if (static_cast<int>(document.kind()) != static_cast<int>(detected))
        return "the document is of another kind";
    if (decidingLine(document) != detection->line) return "another line decides";
    return document.line(detection->line).name == detection->tag ? "" : "another tag decides";
}

/// What of the promises is broken for this text; empty when none is.
inline std::string brokenPromise(const std::string& text, VELHLSDiagnostics::PlaylistKind kind) {
    const PlainParse plain = parsePlainly(text, kind);
    const std::vector<VELHLSFinding> findings = library::findingsIn(text, kind);
    const std::vector<std::string_view> lines = linesOf(text);

    const VELHLSFinding* firstError = nullptr;
    bool losesContent = false;
    for (const VELHLSFinding& finding : findings) {
        if (finding.line < 1 || finding.line > lines.size()) return finding.ruleId + ": no such line";
        const std::size_t lineLength = lines[finding.line - 1].size();
        if (finding.column < 1 || finding.column - 1 + finding.length > lineLength) {
            return finding.ruleId + ": outside its line";
        }
        if (finding.severity == VELHLSFinding::Error && firstError == nullptr) firstError = &finding;
        const auto rule = rulesByName().find(finding.ruleId);
        if (rule == rulesByName().end()) return finding.ruleId + ": no such rule";
        losesContent = losesContent || rule->second.isLostWhenWritten;
    }
    if (plain.rejected && firstError == nullptr) return "rejected without an error";
    if (!plain.rejected && firstError != nullptr) return firstError->ruleId + ": accepted with an error";
    if (firstError != nullptr && !isBetweenRecords(firstError->ruleId) &&
        !belongsToLastRecord(lines, firstError->line, plain.lastLine, kind)) {
        return firstError->ruleId + ": in line " + std::to_string(firstError->line) +
               ", but reading stopped at line " + std::to_string(plain.lastLine);
    }
    const std::string ofText = brokenPromiseOfText(text, kind, plain, findings);
    if (!ofText.empty() || plain.rejected || losesContent) return ofText;
    const std::string lost = lostContent(text, plain.rendered);
    return lost.empty() ? "" : "lost without a finding: " + lost;
}

}  // namespace oracle
