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

/// Whether what the models do not render is written all the same as RFC 8216 wants it.
bool isKeptByWriter(std::string_view ruleId, PlaylistKind kind) {
    constexpr std::array<std::string_view, 4> kept = {"byte-range-empty-not-written", "cue-not-written",
                                                      "rendition-audio-track-type-not-written",
                                                      "session-key-not-written"};
    const bool isStartOfMaster = ruleId == "start-zero-not-written" && kind == PlaylistKind::Master;
    return isStartOfMaster || std::find(kept.begin(), kept.end(), ruleId) != kept.end();
}

std::vector<VELHLSFinding> findingsOfLibrary(const Playlist& playlist) {
    return VELHLSDiagnostics::check(playlist.text, {playlist.kind, {VELHLSDiagnostics::Profile::library}})
        .findings;
}

std::map<std::string_view, VELHLSRule> rulesOfLibrary() {
    std::map<std::string_view, VELHLSRule> rules;
    for (const VELHLSRule& rule : VELHLSDiagnostics::rules(VELHLSDiagnostics::Profile::library))
        rules.emplace(rule.id, rule);
    return rules;
}

[[noreturn]] void reject(const Playlist& playlist) {
    std::string message;
    for (const VELHLSFinding& finding : findingsOfLibrary(playlist)) {
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
    for (const VELHLSFinding& finding : findingsOfLibrary(playlist)) {
        if (!rules.at(finding.ruleId).isLostWhenWritten) continue;
        if (writing == Writing::Conformant && isKeptByWriter(finding.ruleId, playlist.kind)) continue;
        const auto [index, isNew] = indices.emplace(finding.ruleId, losses.size());
        if (isNew) losses.push_back({finding, finding.suppressed});
        if (!isNew) losses[index->second].more += 1 + finding.suppressed;
    }
    std::string text;
    for (const Loss& loss : losses) {
        text += playlist.name + ":" + std::to_string(loss.first.line) +
                ": lost: " + std::string(rules.at(loss.first.ruleId).summary);
        if (loss.more != 0) text += " And " + std::to_string(loss.more) + " more.";
        text += " [" + loss.first.ruleId + "]\n";
    }
    return text;
}

}  // namespace tool
