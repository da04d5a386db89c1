#include "tool/Playlist.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

#include "tool/Failure.h"
#include "tool/FindingText.h"
#include "tool/InputFile.h"
#include "tool/Printable.h"

namespace tool {
namespace {

/// False when the playlist is rejected.
bool parse(Playlist& playlist) {
    std::istringstream input(playlist.text);
    try {
        if (playlist.kind == PlaylistKind::Master) {
            playlist.model = VELHLSParsedManifest::parseManifest(input, &playlist.status);
        } else {
            playlist.model = VELHLSMediaStream::parseMediaStream(input, &playlist.status);
        }
    } catch (const std::logic_error&) {
        // The exceptions of number conversion are the library's way to reject a number.
        return false;
    }
    return std::visit([](const auto& model) { return model != nullptr; }, playlist.model);
}

std::vector<VELHLSFinding> findingsOfLibrary(const std::string& text, PlaylistKind kind) {
    return VELHLSDiagnostics::check(text, {kind, {VELHLSDiagnostics::Profile::library}}).findings;
}

constexpr std::string_view mapBeforeKey = "map-before-key";

bool tellsOf(const std::vector<VELHLSFinding>& findings, std::string_view ruleId) {
    return std::any_of(findings.begin(), findings.end(),
                       [ruleId](const VELHLSFinding& finding) { return finding.ruleId == ruleId; });
}

/// Whether the rule tells of what is written and was not read: those have such names.
bool isAddition(std::string_view ruleId) {
    constexpr std::string_view ending = "-added";
    return ruleId.size() > ending.size() && ruleId.substr(ruleId.size() - ending.size()) == ending;
}

/// Whether what the models do not render is written all the same as RFC 8216 wants it.
bool isKeptByWriter(std::string_view ruleId, PlaylistKind kind) {
    constexpr std::array<std::string_view, 4> kept = {"byte-range-empty-not-written", "cue-not-written",
                                                      "rendition-audio-track-type-not-written",
                                                      "session-key-not-written"};
    const bool isStartOfMaster = ruleId == "start-zero-not-written" && kind == PlaylistKind::Master;
    return isStartOfMaster || isAddition(ruleId) || std::find(kept.begin(), kept.end(), ruleId) != kept.end();
}

std::map<std::string_view, VELHLSRule> rulesOfLibrary() {
    std::map<std::string_view, VELHLSRule> rules;
    for (const VELHLSRule& rule : VELHLSDiagnostics::rules(VELHLSDiagnostics::Profile::library))
        rules.emplace(rule.id, rule);
    return rules;
}

/// "EXT-X-KEY: KEYID: " before a sentence about an attribute of a tag, without what the sentence begins with; before one
/// about a line that is no tag, the start of the line.
std::string subjectOf(const VELHLSLine& line, const VELHLSFinding& finding, std::string_view sentence) {
    if (line.name.empty()) return quotedExcerpt(line.text) + ": ";
    std::string subject;
    const auto name = [&](std::string_view what) {
        if (sentence.substr(0, what.size()) != what) subject += printable(what) + ": ";
    };
    name(line.name);
    const bool hasList =
        line.definition != nullptr && line.definition->form == VELHLSTagDefinition::AttributeList;
    if (!hasList) return subject;
    for (const VELHLSAttribute& attribute : line.attributes()) {
        const std::size_t start = line.column(attribute.text);
        if (start <= finding.column && finding.column < start + attribute.text.size()) name(attribute.name);
    }
    return subject;
}

[[noreturn]] void reject(const Playlist& playlist) {
    std::string message;
    for (const VELHLSFinding& finding : findingsOfLibrary(playlist.text, playlist.kind)) {
        if (finding.severity == VELHLSFinding::Error)
            message += describeByLine(playlist.name, finding) + "\n";
    }
    if (playlist.kind == PlaylistKind::Detect) {
        message += playlist.name + ": note: if it is a playlist, say of which kind with --kind\n";
    } else {
        message += playlist.name + ": note: read as a " + std::string(nameOf(playlist.kind)) + " playlist\n";
    }
    message.pop_back();
    throw Failure(rejected, message);
}

}  // namespace

Playlist readPlaylist(const std::string& path, PlaylistKind askedKind, std::size_t mostBytes) {
    Playlist playlist;
    playlist.name = nameInMessages(path);
    playlist.text = contentOf(path, mostBytes);
    playlist.kind = decideKind(playlist.text, askedKind);
    if (playlist.kind == PlaylistKind::Detect || !parse(playlist)) reject(playlist);
    return playlist;
}

std::string cleanText(const Playlist& playlist, Writing writing) {
    std::ostringstream out;
    if (writing == Writing::Conformant) {
        const std::optional<std::string> refusal = std::visit(
            [&out](const auto& model) { return VELHLSPlaylistWriter::write(*model, out); }, playlist.model);
        if (refusal) throw Failure(rejected, playlist.name + ": error: cannot be written: " + *refusal);
        return out.str();
    }
    const std::int32_t result =
        std::visit([&out](const auto& model) { return model->render(out); }, playlist.model);
    if (result != 0) throw Failure(rejected, "error: the parsed playlist cannot be written");
    return out.str();
}

std::string describeLosses(const Playlist& playlist, Writing writing) {
    struct Loss {
        VELHLSFinding first;
        std::size_t more = 0;
    };
    const std::map<std::string_view, VELHLSRule> rules = rulesOfLibrary();
    std::vector<Loss> losses;
    std::map<std::string, std::size_t> indices;
    const std::vector<VELHLSFinding> findings = findingsOfLibrary(playlist.text, playlist.kind);
    // Only the written text shows whether the model let the writer know where a map belongs.
    const bool keepsMaps =
        writing == Writing::Conformant && tellsOf(findings, mapBeforeKey) &&
        tellsOf(findingsOfLibrary(cleanText(playlist, writing), playlist.kind), mapBeforeKey);
    for (const VELHLSFinding& finding : findings) {
        if (!rules.at(finding.ruleId).isLostWhenWritten && !isAddition(finding.ruleId)) continue;
        if (writing == Writing::Conformant && isKeptByWriter(finding.ruleId, playlist.kind)) continue;
        if (keepsMaps && finding.ruleId == mapBeforeKey) continue;
        const auto [index, isNew] = indices.emplace(finding.ruleId, losses.size());
        if (isNew) losses.push_back({finding, finding.suppressed});
        if (!isNew) losses[index->second].more += 1 + finding.suppressed;
    }
    if (losses.empty()) return {};
    const VELHLSDocument document(playlist.text);
    std::string text;
    for (const Loss& loss : losses) {
        const std::string_view summary = rules.at(loss.first.ruleId).summary;
        text += playlist.name + ":" + std::to_string(loss.first.line) +
                (isAddition(loss.first.ruleId)
                     ? ": added: "
                     : ": lost: " + subjectOf(document.line(loss.first.line), loss.first, summary)) +
                std::string(summary);
        if (loss.more != 0) text += " And " + std::to_string(loss.more) + " more.";
        text += " [" + loss.first.ruleId + "]\n";
    }
    return text;
}

}  // namespace tool
