#include "velhls/diagnostics/VELHLSDiagnostics.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "velhls/common/Names.h"
#include "velhls/common/Readers.h"
#include "velhls/common/ReasonText.h"
#include "velhls/common/TagLine.h"
#include "velhls/common/TextScan.h"
#include "velhls/common/WholeText.h"
#include "velhls/diagnostics/BoundedCheck.h"
#include "velhls/diagnostics/KindDetection.h"
#include "velhls/document/TextLines.h"
#include "velhls/fixes/FixTable.h"
#include "velhls/losses/LossFinder.h"
#include "velhls/losses/LossFindings.h"
#include "velhls/losses/ReadLines.h"
#include "velhls/manifest/VELHLSParsedManifest.h"
#include "velhls/media/VELHLSMediaStream.h"
#include "velhls/presentation/VELHLSPresentation.h"
#include "velhls/standard/CheckStandard.h"

namespace {

using velhls::Reading;
using velhls::ReadLines;
using velhls::RecordLines;
using velhls::Rule;

using Profile = VELHLSDiagnostics::Profile;

constexpr std::array<std::string_view, 4> profileNames = {"rfc8216", "rfc8216bis", "apple", "library"};

bool isStandard(Profile profile) {
    return profile != Profile::library;
}

VELHLSStandard::Profile standardOf(Profile profile) {
    if (profile == Profile::apple) return VELHLSStandard::Profile::apple;
    return profile == Profile::rfc8216 ? VELHLSStandard::Profile::rfc8216
                                       : VELHLSStandard::Profile::rfc8216bis;
}

/// What is said of a text that is no playlist by whatever profile is asked for.
VELHLSRule notAPlaylist(Profile profile) {
    VELHLSRule rule = {"not-a-playlist",  VELHLSFinding::Error,    "The text is no HLS playlist at all.",
                       "an HLS playlist", "RFC 8216, section 4.1", false};
    rule.profile = VELHLSDiagnostics::nameOf(profile);
    if (isStandard(profile)) {
        rule.level = "SYN";
        rule.clause = velhls::clauseOf(rule.source);
    } else {
        rule.source = "library behaviour";
    }
    return rule;
}

static_assert(VELHLSDiagnostics::maximumFindingsPerRule == velhls::BoundedFindings::mostOfOneRule &&
              VELHLSDiagnostics::maximumFindingsPerRule == Reading::mostRejectionsOfOneRule);

VELHLSRule ruleOf(Rule reason) {
    const velhls::ReasonRow row = velhls::rowOf(reason);
    return {row.id, VELHLSFinding::Error, row.summary, row.expected, row.source, false};
}

/// One reading of a text, and what is to be said of it.
class CheckedText {
  public:
    explicit CheckedText(std::string_view text, std::size_t mostOfOneRule = Reading::mostRejectionsOfOneRule)
        : text_(text),
          lines_(text),
          findings_(lines_, mostOfOneRule),
          reading_(text, Reading::Extent::toEnd, mostOfOneRule) {}

    /// Why it is rejected, and nothing else.
    std::vector<VELHLSFinding> findRejections(VELHLSDiagnostics::PlaylistKind kind) {
        if (kind == VELHLSDiagnostics::Master) {
            const auto manifest = velhls::readMaster(text_, reading_);
            addRejectionsOfLines();
            addRejectionsBetweenRecords();
        } else {
            const auto stream = velhls::readMedia(text_, reading_);
            addRejectionsOfLines();
        }
        return findings_.takeAll();
    }

    std::vector<VELHLSFinding> checkMaster() {
        const auto manifest = velhls::readMaster(text_, reading_);
        addRejectionsOfLines();
        std::optional<bool> pairs = manifest->hasZORStreamInformation;
        if (!variantsAreKnown()) pairs = std::nullopt;
        ReadLines lines(lines_, reading_, ReadLines::Kind::master, pairs);
        for (velhls::LossLine line; lines.next(line);) {
            velhls::findLossesOfMasterLine(line, findings_);
        }
        addRejectionsBetweenRecords();
        velhls::findLossesOfPlaylist({lines.playlist(), lines_, reading_, manifest.get(), nullptr},
                                     findings_);
        return findings_.takeAll();
    }

    std::vector<VELHLSFinding> checkMedia() {
        const auto stream = velhls::readMedia(text_, reading_);
        addRejectionsOfLines();
        ReadLines lines(lines_, reading_, ReadLines::Kind::media, std::nullopt);
        for (velhls::LossLine line; lines.next(line);) {
            velhls::findLossesOfMediaLine(line, findings_);
        }
        velhls::findLossesOfSegments(*stream, reading_, lines_, lines, findings_);
        findings_.readingEnded();
        velhls::findLossesOfPlaylist({lines.playlist(), lines_, reading_, nullptr, stream.get()}, findings_);
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
    velhls::LossFindings findings_;
    Reading reading_;
};

/// What is said of the first line of a text that is no playlist.
VELHLSFinding noPlaylist(std::string_view text, Profile profile) {
    const VELHLSRule rule = notAPlaylist(profile);
    const std::string_view line = velhls::withoutTrailing(text.substr(0, text.find('\n')), velhls::lineEnds);
    VELHLSFinding finding;
    finding.severity = rule.severity;
    finding.ruleId = rule.id;
    finding.length = line.size();
    finding.message =
        velhls::messageOf(line, {1, 1, line.size()}, rule.expected, velhls::describeNoPlaylist(text));
    finding.source = rule.source;
    finding.profile = rule.profile;
    finding.clause = rule.clause;
    finding.level = rule.level;
    return finding;
}

/// Checks one text by several profiles.
class ProfileRun {
  public:
    ProfileRun(std::string_view text, const VELHLSDiagnostics::Options& options)
        : text_(text), profiles_(options.profiles), fixes_(options.fixes) {
        report_.kind = options.kind;
        std::sort(profiles_.begin(), profiles_.end());
        profiles_.erase(std::unique(profiles_.begin(), profiles_.end()), profiles_.end());
    }

    VELHLSDiagnostics::Report run() {
        const bool isDetected = report_.kind != VELHLSDiagnostics::Detect;
        const bool asksStandard = std::any_of(profiles_.begin(), profiles_.end(), isStandard);
        if (!isDetected || asksStandard) checkDocument(VELHLSDocument(std::string(text_)));
        report_.rejected = whyRejected();
        if (asks(Profile::library)) append(checkByLibrary());
        if (profiles_.size() > 1) order();
        if (fixes_ && !report_.findings.empty()) addFixes();
        return std::move(report_);
    }

  private:
    /// Finds the kind, and what the profiles of the standard have to say. The document is gone before the models read.
    void checkDocument(const VELHLSDocument& document) {
        if (report_.kind == VELHLSDiagnostics::Detect) {
            report_.kind = velhls::kindOf(document);
            if (report_.kind == VELHLSDiagnostics::Detect && velhls::isNoPlaylist(document)) {
                if (!profiles_.empty()) report_.findings.push_back(noPlaylist(text_, profiles_.front()));
                return;
            }
        }
        const auto kind = static_cast<VELHLSDocument::Kind>(report_.kind);
        for (const Profile profile : profiles_) {
            if (isStandard(profile))
                velhls::checkStandard(document, kind, standardOf(profile), report_.findings);
        }
    }

    [[nodiscard]] bool asks(Profile profile) const {
        return std::find(profiles_.begin(), profiles_.end(), profile) != profiles_.end();
    }

    [[nodiscard]] std::optional<VELHLSReason> whyRejected() const {
        if (report_.kind == VELHLSDiagnostics::Media) return velhls::whyMediaIsRejected(text_);
        if (report_.kind == VELHLSDiagnostics::Master) {
            VELHLSReason reason;
            if (VELHLSParsedManifest::parseManifest(text_, &reason) != nullptr) return std::nullopt;
            return reason;
        }
        const VELHLSFinding finding = noPlaylist(text_, Profile::library);
        return VELHLSReason{finding.ruleId, finding.line, finding.column, finding.length, finding.message};
    }

    [[nodiscard]] std::vector<VELHLSFinding> checkByLibrary() const {
        if (report_.kind == VELHLSDiagnostics::Detect) {
            if (!report_.findings.empty() &&
                report_.findings.front().ruleId == notAPlaylist(Profile::library).id)
                return {};
            return {noPlaylist(text_, Profile::library)};
        }
        CheckedText checked(text_);
        return report_.kind == VELHLSDiagnostics::Master ? checked.checkMaster() : checked.checkMedia();
    }

    void append(std::vector<VELHLSFinding> findings) {
        report_.findings.insert(report_.findings.end(), std::make_move_iterator(findings.begin()),
                                std::make_move_iterator(findings.end()));
    }

    /// Puts what several profiles found in the order of the places, and leaves out what the later standard says again.
    void order() {
        auto& findings = report_.findings;
        std::stable_sort(findings.begin(), findings.end(),
                         [](const VELHLSFinding& left, const VELHLSFinding& right) {
                             return std::tie(left.line, left.column) < std::tie(right.line, right.column);
                         });
        if (!asks(Profile::rfc8216) || !asks(Profile::rfc8216bis)) return;
        std::set<std::tuple<std::size_t, std::size_t, std::string_view>> later;
        for (const VELHLSFinding& finding : findings) {
            if (finding.profile == profileNames[static_cast<std::size_t>(Profile::rfc8216bis)])
                later.emplace(finding.line, finding.column, finding.ruleId);
        }
        std::vector<VELHLSFinding> kept;
        for (VELHLSFinding& finding : findings) {
            const bool isEarlier =
                finding.profile == profileNames[static_cast<std::size_t>(Profile::rfc8216)];
            const bool isSaidAgain =
                isEarlier && later.count({finding.line, finding.column, finding.ruleId}) != 0;
            if (!isSaidAgain) kept.push_back(finding);
        }
        findings = std::move(kept);
    }

    void addFixes() {
        if (report_.kind == VELHLSDiagnostics::Detect) return;
        const VELHLSDocument document{std::string(text_)};
        velhls::addFixes(document, static_cast<VELHLSDocument::Kind>(report_.kind), report_.findings);
    }

    std::string_view text_;
    std::vector<Profile> profiles_;
    bool fixes_;
    VELHLSDiagnostics::Report report_;
};

/// Of the rules that presentations have by a standard those of one profile: what was not read is no matter of a standard.
void appendOfPresentations(VELHLSStandard::Profile standard, std::string_view profile,
                           std::vector<VELHLSRule>& rules) {
    for (const VELHLSRule& rule : VELHLSPresentation::rules(standard)) {
        if (rule.profile == profile) rules.push_back(rule);
    }
}

std::vector<VELHLSRule> rulesWithoutFixes(Profile profile) {
    std::vector<VELHLSRule> all = {notAPlaylist(profile)};
    if (isStandard(profile)) {
        for (const VELHLSRule& rule : VELHLSStandard::rules(standardOf(profile)))
            all.push_back(rule);
        appendOfPresentations(standardOf(profile), VELHLSDiagnostics::nameOf(profile), all);
        return all;
    }
    for (std::size_t index = 0; index < velhls::ruleCount; ++index)
        all.push_back(ruleOf(static_cast<Rule>(index)));
    for (const VELHLSRule& rule : velhls::rulesOfLosses())
        all.push_back(rule);
    appendOfPresentations(VELHLSStandard::Profile::rfc8216, VELHLSDiagnostics::nameOf(profile), all);
    for (VELHLSRule& rule : all)
        rule.profile = VELHLSDiagnostics::nameOf(profile);
    return all;
}

}  // namespace

namespace velhls {

std::vector<VELHLSFinding> findingsToFix(const VELHLSDocument& document, VELHLSDiagnostics::PlaylistKind kind,
                                         const std::vector<VELHLSDiagnostics::Profile>& profiles,
                                         std::size_t mostOfOneRule) {
    const auto kindOfText = static_cast<VELHLSDocument::Kind>(kind);
    std::vector<VELHLSFinding> findings;
    for (const Profile profile : profiles) {
        std::vector<VELHLSFinding> own;
        if (isStandard(profile)) {
            checkStandard(document, kindOfText, standardOf(profile), own, mostOfOneRule);
        } else {
            own = CheckedText(document.text(), mostOfOneRule).findRejections(kind);
        }
        addFixes(document, kindOfText, own);
        findings.insert(findings.end(), std::make_move_iterator(own.begin()),
                        std::make_move_iterator(own.end()));
    }
    return findings;
}

std::vector<std::size_t> weightyFindings(const VELHLSDocument& document, VELHLSDiagnostics::PlaylistKind kind,
                                         const std::vector<VELHLSDiagnostics::Profile>& profiles) {
    std::vector<Profile> standards = {Profile::rfc8216, Profile::rfc8216bis};
    if (std::find(profiles.begin(), profiles.end(), Profile::apple) != profiles.end())
        standards.push_back(Profile::apple);
    std::vector<std::size_t> counts;
    for (const Profile profile : standards) {
        std::vector<VELHLSFinding> findings;
        checkStandard(document, static_cast<VELHLSDocument::Kind>(kind), standardOf(profile), findings);
        std::size_t count = 0;
        for (const VELHLSFinding& finding : findings) {
            if (finding.severity > VELHLSFinding::Note) count += 1 + finding.suppressed;
        }
        counts.push_back(count);
    }
    return counts;
}

}  // namespace velhls

std::string_view VELHLSDiagnostics::nameOf(Profile profile) noexcept {
    return profileNames[static_cast<std::size_t>(profile)];
}

std::optional<VELHLSDiagnostics::Profile> VELHLSDiagnostics::profileNamed(std::string_view name) noexcept {
    const auto* const found = std::find(profileNames.begin(), profileNames.end(), name);
    if (found == profileNames.end()) return std::nullopt;
    return static_cast<Profile>(found - profileNames.begin());
}

std::vector<VELHLSDiagnostics::Profile> VELHLSDiagnostics::profiles() {
    return {Profile::rfc8216, Profile::rfc8216bis, Profile::apple, Profile::library};
}

VELHLSDiagnostics::Report VELHLSDiagnostics::check(std::string_view text) {
    return check(text, Options());
}

VELHLSDiagnostics::Report VELHLSDiagnostics::check(std::string_view text, const Options& options) {
    return ProfileRun(text, options).run();
}

VELHLSDiagnostics::Report VELHLSDiagnostics::check(std::istream& input) {
    return check(input, Options());
}

VELHLSDiagnostics::Report VELHLSDiagnostics::check(std::istream& input, const Options& options) {
    return check(input.good() ? velhls::readAll(input) : std::string(), options);
}

std::optional<VELHLSDiagnostics::Detection> VELHLSDiagnostics::detectKind(std::string_view text) {
    return velhls::detectKind(text);
}

std::vector<VELHLSRule> VELHLSDiagnostics::rules(Profile profile) {
    std::vector<VELHLSRule> all = rulesWithoutFixes(profile);
    for (VELHLSRule& rule : all)
        rule.fix = velhls::whatFixesDo(rule.id);
    return all;
}

std::optional<VELHLSRule> VELHLSDiagnostics::ruleNamed(std::string_view id) {
    for (const Profile profile : profiles()) {
        const std::vector<VELHLSRule> all = rules(profile);
        const auto rule =
            std::find_if(all.begin(), all.end(), [&id](const VELHLSRule& row) { return row.id == id; });
        if (rule != all.end()) return *rule;
    }
    return std::nullopt;
}
