#include "velhls/presentation/VELHLSPresentation.h"

#include <algorithm>
#include <initializer_list>
#include <set>

#include "velhls/presentation/Presentation.h"
#include "velhls/presentation/VariantRates.h"

namespace {

using velhls::MasterUse;
using velhls::PresentationTable;

/// The tables of a profile, in the order of the documentation.
std::vector<PresentationTable> tablesOf(VELHLSStandard::Profile profile) {
    if (profile == VELHLSStandard::Profile::apple) return {velhls::authoringPresentationRules()};
    return {velhls::referenceRules(), velhls::headerAgreementRules(), velhls::sharedKeyRules(),
            velhls::bandwidthRules(), velhls::timelineRules(),        velhls::sharedDateRangeRules()};
}

void findAll(const PresentationTable& table, VELHLSStandard::Profile profile,
             const velhls::Presentation& presentation, velhls::PresentationFindings& findings) {
    for (const velhls::PresentationEntry& entry : table)
        entry.find(presentation, velhls::TellPresentation(findings, entry.rule, profile));
}

}  // namespace

std::vector<VELHLSPresentation::Reference> VELHLSPresentation::references(const VELHLSDocument& master) {
    const Resource resource = {{}, &master};
    const velhls::Presentation presentation(resource, {});
    std::vector<Reference> references;
    for (const MasterUse& use : presentation.uses()) {
        const bool isData = use.kind == MasterUse::Kind::sessionData;
        references.push_back({use.uri.piece, isData ? Use::SessionData : Use::Playlist, use.uri.line.number});
    }
    std::stable_sort(references.begin(), references.end(),
                     [](const Reference& left, const Reference& right) { return left.line < right.line; });
    std::set<std::string_view> seen;
    references.erase(
        std::remove_if(references.begin(), references.end(),
                       [&seen](const Reference& reference) { return !seen.insert(reference.uri).second; }),
        references.end());
    return references;
}

std::vector<VELHLSFinding> VELHLSPresentation::check(const Resource& master,
                                                     const std::vector<Resource>& resources,
                                                     const std::vector<VELHLSStandard::Profile>& profiles) {
    if (master.document == nullptr) return {};
    const velhls::Presentation presentation(master, resources);
    velhls::PresentationFindings findings;
    findAll(velhls::unreadResourceRules(), VELHLSStandard::Profile::rfc8216, presentation, findings);
    for (const VELHLSStandard::Profile profile : profiles) {
        for (const PresentationTable& table : tablesOf(profile))
            findAll(table, profile, presentation, findings);
    }
    return findings.takeAll();
}

std::vector<VELHLSPresentation::MeasuredRates> VELHLSPresentation::measure(
    const Resource& master, const std::vector<Resource>& resources) {
    if (master.document == nullptr) return {};
    const velhls::Presentation presentation(master, resources);
    velhls::RateMeasurement measurement(presentation);
    std::vector<MeasuredRates> measured;
    for (const MasterUse& use : presentation.uses()) {
        if (!use.isVariant()) continue;
        const velhls::VariantRates rates = measurement.measure(use);
        if (rates.peak.largest == nullptr) continue;
        measured.push_back({use.line.number, rates.peak.rate, rates.average.rate, rates.isWhole});
    }
    std::sort(measured.begin(), measured.end(),
              [](const MeasuredRates& left, const MeasuredRates& right) { return left.line < right.line; });
    return measured;
}

std::vector<VELHLSRule> VELHLSPresentation::rules(VELHLSStandard::Profile profile) {
    std::vector<VELHLSRule> rules;
    for (const PresentationTable& table : tablesOf(profile)) {
        for (const velhls::PresentationEntry& entry : table) {
            VELHLSRule& rule = rules.emplace_back(entry.rule.rule);
            rule.level = entry.rule.level;
            rule.clause = velhls::clauseOf(rule.source);
            rule.profile = VELHLSStandard::nameOf(profile);
        }
    }
    for (const velhls::PresentationEntry& entry : velhls::unreadResourceRules())
        rules.emplace_back(entry.rule.rule).profile = "library";
    return rules;
}
