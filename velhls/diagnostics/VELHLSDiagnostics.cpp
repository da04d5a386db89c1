#include "velhls/diagnostics/VELHLSDiagnostics.h"

#include <algorithm>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string_view>

#include "velhls/common/Names.h"
#include "velhls/common/Readers.h"
#include "velhls/common/TagLine.h"
#include "velhls/common/TextScan.h"
#include "velhls/common/WholeText.h"
#include "velhls/diagnostics/KindDetection.h"
#include "velhls/diagnostics/StandardRules.h"
#include "velhls/document/FindingList.h"
#include "velhls/document/TextLines.h"
#include "velhls/losses/LossFinder.h"
#include "velhls/losses/ReadLines.h"
#include "velhls/manifest/VELHLSParsedManifest.h"
#include "velhls/media/VELHLSMediaStream.h"

namespace {

using velhls::Reading;
using velhls::ReadLines;
using velhls::RecordLines;
using velhls::Rule;

constexpr VELHLSRule notAPlaylist = {
    "not-a-playlist",  VELHLSFinding::Error,    "The text is no HLS playlist at all.",
    "an HLS playlist", "RFC 8216, section 4.1", false};

static_assert(VELHLSDiagnostics::maximumFindingsPerRule == velhls::FindingList::mostOfOneRule &&
              VELHLSDiagnostics::maximumFindingsPerRule == Reading::mostRejectionsOfOneRule);

VELHLSRule ruleOf(Rule reason) {
    const velhls::ReasonRow row = velhls::rowOf(reason);
    return {row.id, VELHLSFinding::Error, row.summary, row.expected, row.source, false};
}

/// One reading of a text, and what is to be said of it.
class CheckedText {
  public:
    CheckedText(std::string_view text, VELHLSDiagnostics::PlaylistKind kind)
        : text_(text),
          lines_(text),
          findings_(lines_),
          standardRules_(kind, lines_, findings_),
          reading_(text, Reading::Extent::toEnd) {}

    std::vector<VELHLSFinding> checkMaster() {
        const auto manifest = velhls::readMaster(text_, reading_);
        addRejectionsOfLines();
        std::optional<bool> pairs = manifest->hasZORStreamInformation;
        if (!variantsAreKnown()) pairs = std::nullopt;
        ReadLines lines(lines_, reading_, ReadLines::Kind::master, pairs);
        for (velhls::LossLine line; lines.next(line);) {
            standardRules_.lineRead(line);
            velhls::findLossesOfMasterLine(line, findings_);
        }
        addRejectionsBetweenRecords();
        standardRules_.masterRead(*manifest, reading_);
        return findings_.takeAll();
    }

    std::vector<VELHLSFinding> checkMedia() {
        const auto stream = velhls::readMedia(text_, reading_);
        addRejectionsOfLines();
        ReadLines lines(lines_, reading_, ReadLines::Kind::media, std::nullopt);
        for (velhls::LossLine line; lines.next(line);) {
            standardRules_.lineRead(line);
            velhls::findLossesOfMediaLine(line, findings_);
        }
        velhls::findLossesOfSegments(*stream, reading_, lines_, lines, findings_);
        findings_.readingEnded();
        standardRules_.mediaRead(*stream, reading_);
        return findings_.takeAll();
    }

  private:
    void addRejectionsOfLines() {
        for (const velhls::Rejection& rejection : reading_.rejections()) {
            if (!rejection.isBetweenRecords) add(rejection);
        }
    }

    /// What only follows from a variant or a rendition that was rejected is left out.
    void addRejectionsBetweenRecords() {
        findings_.readingEnded();
        const bool renditionsAreKnown = !rejectedTag({velhls::tag::media});
        for (const velhls::Rejection& rejection : reading_.rejections()) {
            if (!rejection.isBetweenRecords) continue;
            const bool isOfVariants = rejection.rule == Rule::variantsMissing;
            const bool isOfSession =
                rejection.rule == Rule::sessionDataRepeated || rejection.rule == Rule::sessionKeyRepeated;
            if (isOfSession || (isOfVariants ? variantsAreKnown() : renditionsAreKnown)) add(rejection);
        }
    }

    void add(const velhls::Rejection& rejection) {
        const VELHLSRule rule = ruleOf(rejection.rule);
        findings_.add(rule, rejection.place, rejection.seen);
        findings_.addSuppressed(rule, rejection.suppressed);
    }

    [[nodiscard]] bool variantsAreKnown() const {
        return !rejectedTag({velhls::tag::streamInf, velhls::tag::iFrameStreamInf});
    }

    /// Whether a line with one of the tags was rejected.
    [[nodiscard]] bool rejectedTag(std::initializer_list<std::string_view> names) const {
        const auto& records = reading_.records();
        return std::any_of(records.begin(), records.end(), [&](const RecordLines& record) {
            if (record.kind != RecordLines::Kind::rejected) return false;
            const std::string_view line = lines_.line(record.firstLine);
            return std::any_of(names.begin(), names.end(), [line](std::string_view name) {
                return velhls::isTagOrComment(line) && velhls::TagLine(line).name == name;
            });
        });
    }

    std::string_view text_;
    velhls::TextLines lines_;
    velhls::FindingList findings_;
    velhls::StandardRules standardRules_;
    Reading reading_;
};

std::vector<VELHLSFinding> noPlaylist(const std::string& text) {
    const velhls::TextLines lines(text);
    velhls::FindingList findings(lines);
    const std::size_t lengthOfLine = velhls::withoutTrailing(lines.line(1), velhls::lineEnds).size();
    findings.add(notAPlaylist, {1, 1, lengthOfLine}, velhls::describeNoPlaylist(text));
    return findings.takeAll();
}

}  // namespace

std::vector<VELHLSFinding> VELHLSDiagnostics::check(const std::string& text, PlaylistKind kind) {
    if (kind == Detect) {
        const std::optional<Detection> detection = detectKind(text);
        if (!detection) return noPlaylist(text);
        kind = detection->kind;
    }
    CheckedText checked(text, kind);
    return kind == Master ? checked.checkMaster() : checked.checkMedia();
}

std::vector<VELHLSFinding> VELHLSDiagnostics::check(std::istream& input, PlaylistKind kind) {
    if (!input.good()) return check(std::string(), kind);
    return check(velhls::readAll(input), kind);
}

std::optional<VELHLSDiagnostics::Detection> VELHLSDiagnostics::detectKind(const std::string& text) {
    return velhls::detectKind(text);
}

std::vector<VELHLSRule> VELHLSDiagnostics::rules() {
    std::vector<VELHLSRule> all = {notAPlaylist};
    for (std::size_t index = 0; index < velhls::ruleCount; ++index)
        all.push_back(ruleOf(static_cast<Rule>(index)));
    for (const VELHLSRule& rule : velhls::rulesOfLosses())
        all.push_back(rule);
    for (const VELHLSRule& rule : velhls::StandardRules::rules())
        all.push_back(rule);
    return all;
}

std::optional<VELHLSRule> VELHLSDiagnostics::ruleNamed(const std::string& id) {
    const std::vector<VELHLSRule> all = rules();
    const auto rule =
        std::find_if(all.begin(), all.end(), [&id](const VELHLSRule& row) { return row.id == id; });
    if (rule == all.end()) return std::nullopt;
    return *rule;
}
