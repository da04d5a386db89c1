#include "velhls/diagnostics/VELHLSDiagnostics.h"

#include <algorithm>
#include <memory>
#include <sstream>

#include "velhls/common/WholeText.h"
#include "velhls/diagnostics/FindingList.h"
#include "velhls/diagnostics/FindingRecorder.h"
#include "velhls/diagnostics/KindDetection.h"
#include "velhls/diagnostics/RuleTable.h"
#include "velhls/diagnostics/StandardRules.h"
#include "velhls/diagnostics/TextLines.h"
#include "velhls/manifest/ManifestReader.h"
#include "velhls/manifest/ManifestRules.h"
#include "velhls/media/MediaStreamReader.h"

namespace {

using velhls::Rule;

/// One reading of a text with everything recorded.
class RecordedReading {
  public:
    RecordedReading(const std::string& text, VELHLSDiagnostics::PlaylistKind kind)
        : lines_(text),
          findings_(lines_),
          standardRules_(kind, lines_, findings_),
          recorder_(lines_, findings_, standardRules_),
          input_(text) {}

    std::vector<VELHLSFinding> readMaster() {
        const auto manifest = velhls::ManifestReader(input_, &recorder_).read();
        findings_.readingEnded();
        velhls::pairStreamInformation(*manifest, &recorder_);
        static_cast<void>(velhls::keepsRules(*manifest, &recorder_));
        standardRules_.masterRead(*manifest, recorder_);
        return findings_.takeAll();
    }

    std::vector<VELHLSFinding> readMedia() {
        const auto stream = velhls::MediaStreamReader(input_, nullptr, &recorder_).read();
        findings_.readingEnded();
        standardRules_.mediaRead(*stream, recorder_);
        return findings_.takeAll();
    }

  private:
    velhls::TextLines lines_;
    velhls::FindingList findings_;
    velhls::StandardRules standardRules_;
    velhls::FindingRecorder recorder_;
    std::istringstream input_;
};

std::vector<VELHLSFinding> noPlaylist(const std::string& text) {
    const velhls::TextLines lines(text);
    velhls::FindingList findings(lines);
    const std::size_t lengthOfLine = velhls::withoutTrailing(lines.line(1), velhls::lineEnds).size();
    findings.add(Rule::notAPlaylist, {1, 1, lengthOfLine}, velhls::describeNoPlaylist(text));
    return findings.takeAll();
}

}  // namespace

std::vector<VELHLSFinding> VELHLSDiagnostics::check(const std::string& text, PlaylistKind kind) {
    if (kind == Detect) {
        const std::optional<Detection> detection = detectKind(text);
        if (!detection) return noPlaylist(text);
        kind = detection->kind;
    }
    RecordedReading reading(text, kind);
    return kind == Master ? reading.readMaster() : reading.readMedia();
}

std::vector<VELHLSFinding> VELHLSDiagnostics::check(std::istream& input, PlaylistKind kind) {
    if (!input.good()) return check(std::string(), kind);
    return check(velhls::readAll(input), kind);
}

std::optional<VELHLSDiagnostics::Detection> VELHLSDiagnostics::detectKind(const std::string& text) {
    return velhls::detectKind(text);
}

std::vector<VELHLSRule> VELHLSDiagnostics::rules() {
    return {velhls::ruleTable().begin(), velhls::ruleTable().end()};
}

std::optional<VELHLSRule> VELHLSDiagnostics::ruleNamed(const std::string& id) {
    const auto& table = velhls::ruleTable();
    const auto rule =
        std::find_if(table.begin(), table.end(), [&id](const VELHLSRule& row) { return row.id == id; });
    if (rule == table.end()) return std::nullopt;
    return *rule;
}
