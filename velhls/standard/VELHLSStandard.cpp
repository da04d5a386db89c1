#include "velhls/standard/VELHLSStandard.h"

#include "velhls/standard/CheckStandard.h"

std::vector<VELHLSFinding> VELHLSStandard::check(const VELHLSDocument& document, Profile profile) {
    std::vector<VELHLSFinding> findings;
    velhls::checkStandard(document, document.kind(), profile, findings);
    return findings;
}

std::string_view VELHLSStandard::nameOf(Profile profile) noexcept {
    if (profile == Profile::apple) return "apple";
    return profile == Profile::rfc8216 ? "rfc8216" : "rfc8216bis";
}

std::vector<VELHLSRule> VELHLSStandard::rules(Profile profile) {
    std::vector<VELHLSRule> rules;
    for (const velhls::StandardRule& stated : velhls::rulesOfStandard(profile)) {
        VELHLSRule& rule = rules.emplace_back(stated.rule);
        rule.level = stated.level;
        rule.clause = velhls::clauseOf(stated.rule.source);
        rule.profile = nameOf(profile);
    }
    return rules;
}
