// What looks at texts: checks, rules, comparisons and presentations.
#include "Findings.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Calls.h"

using velhls_c::give;
using velhls_c::giveOne;
using velhls_c::guarded;
using velhls_c::stringOf;
using velhls_c::viewOf;

struct velhls_comparison {
    std::vector<VELHLSChange> changes;
    velhls_findings findings;
};

struct velhls_presentation {
    VELHLSPresentation::Resource master;
    std::vector<VELHLSPresentation::Resource> resources;
    std::vector<VELHLSPresentation::Reference> references;
};

namespace {

/// A bit of velhls_profiles, and the profile of a standard that stands for it.
struct NamedStandard {
    velhls_profiles bit;
    VELHLSStandard::Profile profile;
};

constexpr NamedStandard allStandards[] = {
    {VELHLS_PROFILE_RFC8216, VELHLSStandard::Profile::rfc8216},
    {VELHLS_PROFILE_RFC8216BIS, VELHLSStandard::Profile::rfc8216bis},
    {VELHLS_PROFILE_APPLE, VELHLSStandard::Profile::apple},
};

velhls_finding structureOf(const VELHLSFinding& finding) {
    velhls_finding value = {};
    value.severity = finding.severity;
    value.rule = stringOf(finding.ruleId);
    value.uri = stringOf(finding.uri);
    value.line = finding.line;
    value.column = finding.column;
    value.length = finding.length;
    value.message = stringOf(finding.message);
    value.source = stringOf(finding.source);
    value.profile = stringOf(finding.profile);
    value.clause = stringOf(finding.clause);
    value.level = stringOf(finding.level);
    value.related_count = finding.related.size();
    value.suppressed = finding.suppressed;
    value.fix_count = finding.fixes.size();
    return value;
}

velhls_rule structureOf(const VELHLSRule& rule) {
    velhls_rule value = {};
    value.severity = rule.severity;
    value.is_lost_when_written = velhls_c::truthOf(rule.isLostWhenWritten);
    value.id = stringOf(rule.id);
    value.summary = stringOf(rule.summary);
    value.expected = stringOf(rule.expected);
    value.source = stringOf(rule.source);
    value.profile = stringOf(rule.profile);
    value.clause = stringOf(rule.clause);
    value.level = stringOf(rule.level);
    return value;
}

/// The fix of these places; null where there is none.
const VELHLSFix* fixOf(const velhls_findings& findings, size_t index, size_t fix) {
    if (index >= findings.findings.size() || fix >= findings.findings[index].fixes.size()) return nullptr;
    return &findings.findings[index].fixes[fix];
}

const VELHLSDocument* documentOf(const velhls_document* document) {
    return document == nullptr ? nullptr : &document->document;
}

}  // namespace

size_t velhls_findings_count(const velhls_findings* findings) {
    return findings == nullptr ? 0 : findings->findings.size();
}

velhls_status velhls_findings_get(const velhls_findings* findings, size_t index, velhls_finding* finding) {
    if (findings == nullptr) return VELHLS_INVALID_ARGUMENT;
    return giveOne(findings->findings, index, finding,
                   [](const VELHLSFinding& found) { return structureOf(found); });
}

velhls_status velhls_findings_related(const velhls_findings* findings, size_t index, size_t related,
                                      velhls_related_place* place) {
    if (findings == nullptr || place == nullptr) return VELHLS_INVALID_ARGUMENT;
    if (index >= findings->findings.size()) return VELHLS_OUT_OF_RANGE;
    return giveOne(findings->findings[index].related, related, place, [](const VELHLSRelatedPlace& found) {
        velhls_related_place value = {};
        value.uri = stringOf(found.uri);
        value.line = found.line;
        value.column = found.column;
        value.length = found.length;
        value.message = stringOf(found.message);
        return value;
    });
}

velhls_status velhls_findings_fix(const velhls_findings* findings, size_t index, size_t fix,
                                  velhls_fix* found) {
    if (findings == nullptr || found == nullptr) return VELHLS_INVALID_ARGUMENT;
    const VELHLSFix* const known = fixOf(*findings, index, fix);
    if (known == nullptr) return VELHLS_OUT_OF_RANGE;
    velhls_fix value = {};
    value.fix_class = known->fixClass;
    value.sentence = stringOf(known->sentence);
    value.edit_count = known->edits.size();
    return give(value, found);
}

velhls_status velhls_findings_fix_edit(const velhls_findings* findings, size_t index, size_t fix, size_t edit,
                                       velhls_edit* found) {
    if (findings == nullptr || found == nullptr) return VELHLS_INVALID_ARGUMENT;
    const VELHLSFix* const known = fixOf(*findings, index, fix);
    if (known == nullptr) return VELHLS_OUT_OF_RANGE;
    return giveOne(known->edits, edit, found, velhls_c::editOf);
}

velhls_status velhls_check(const char* text, size_t length, const velhls_check_options* options,
                           velhls_report** report) {
    if (!velhls_c::clear(report) || !velhls_c::isText(text, length)) return VELHLS_INVALID_ARGUMENT;
    if (options != nullptr && options->size < sizeof(velhls_check_options)) return VELHLS_INVALID_ARGUMENT;
    return guarded([&]() -> velhls_status {
        VELHLSDiagnostics::Options asked;
        if (options != nullptr) {
            if (!velhls_c::ask(asked, options->profiles, options->kind)) return VELHLS_INVALID_ARGUMENT;
            asked.fixes = options->fixes != 0;
        }
        *report =
            new velhls_report(velhls_c::reportOf(VELHLSDiagnostics::check(viewOf(text, length), asked)));
        return VELHLS_OK;
    });
}

void velhls_report_free(velhls_report* report) {
    delete report;
}

velhls_kind velhls_report_kind(const velhls_report* report) {
    return report == nullptr ? velhls_kind{VELHLS_KIND_NEITHER} : report->kind;
}

const velhls_findings* velhls_report_findings(const velhls_report* report) {
    return report == nullptr ? nullptr : &report->findings;
}

velhls_status velhls_report_rejection(const velhls_report* report, velhls_reason* reason) {
    if (report == nullptr || reason == nullptr) return VELHLS_INVALID_ARGUMENT;
    if (!report->rejected) return VELHLS_NOT_FOUND;
    return give(velhls_c::reasonOf(*report->rejected), reason);
}

velhls_status velhls_rule_named(const char* name, size_t length, velhls_rule* rule) {
    if (rule == nullptr || !velhls_c::isText(name, length)) return VELHLS_INVALID_ARGUMENT;
    return guarded([&]() -> velhls_status {
        const auto found = VELHLSDiagnostics::ruleNamed(viewOf(name, length));
        return found ? give(structureOf(*found), rule) : velhls_status{VELHLS_NOT_FOUND};
    });
}

velhls_status velhls_compare(const velhls_document* old_version, const velhls_document* new_version,
                             double elapsed_seconds, velhls_comparison** comparison) {
    if (!velhls_c::clear(comparison) || old_version == nullptr || new_version == nullptr) {
        return VELHLS_INVALID_ARGUMENT;
    }
    return guarded([&]() -> velhls_status {
        VELHLSComparison::Options options;
        if (elapsed_seconds >= 0) options.elapsedSeconds = elapsed_seconds;
        auto compared = VELHLSComparison::compare(old_version->document, new_version->document, options);
        if (!compared) return VELHLS_REFUSED;
        *comparison = new velhls_comparison{std::move(compared->changes), {std::move(compared->findings)}};
        return VELHLS_OK;
    });
}

void velhls_comparison_free(velhls_comparison* comparison) {
    delete comparison;
}

size_t velhls_comparison_change_count(const velhls_comparison* comparison) {
    return comparison == nullptr ? 0 : comparison->changes.size();
}

velhls_status velhls_comparison_change(const velhls_comparison* comparison, size_t index,
                                       velhls_change* change) {
    if (comparison == nullptr) return VELHLS_INVALID_ARGUMENT;
    return giveOne(comparison->changes, index, change, [](const VELHLSChange& found) {
        velhls_change value = {};
        value.kind = found.kind;
        value.path = stringOf(found.path);
        value.what = stringOf(found.what);
        value.old_text = stringOf(found.oldText);
        value.new_text = stringOf(found.newText);
        value.old_line = found.oldLine;
        value.new_line = found.newLine;
        return value;
    });
}

const velhls_findings* velhls_comparison_findings(const velhls_comparison* comparison) {
    return comparison == nullptr ? nullptr : &comparison->findings;
}

velhls_status velhls_presentation_new(const char* uri, size_t length, const velhls_document* master,
                                      velhls_presentation** presentation) {
    if (!velhls_c::clear(presentation) || master == nullptr || !velhls_c::isText(uri, length)) {
        return VELHLS_INVALID_ARGUMENT;
    }
    return guarded([&] {
        auto made = std::make_unique<velhls_presentation>();
        made->master = {std::string(viewOf(uri, length)), &master->document};
        made->references = VELHLSPresentation::references(master->document);
        *presentation = made.release();
        return VELHLS_OK;
    });
}

void velhls_presentation_free(velhls_presentation* presentation) {
    delete presentation;
}

size_t velhls_presentation_reference_count(const velhls_presentation* presentation) {
    return presentation == nullptr ? 0 : presentation->references.size();
}

velhls_status velhls_presentation_reference(const velhls_presentation* presentation, size_t index,
                                            velhls_reference* reference) {
    if (presentation == nullptr) return VELHLS_INVALID_ARGUMENT;
    return giveOne(presentation->references, index, reference,
                   [](const VELHLSPresentation::Reference& found) {
                       velhls_reference value = {};
                       value.uri = stringOf(found.uri);
                       value.use = static_cast<velhls_use>(found.use);
                       value.line = found.line;
                       return value;
                   });
}

velhls_status velhls_presentation_add(velhls_presentation* presentation, const char* uri, size_t length,
                                      const velhls_document* document, const char* why_not_read,
                                      size_t why_length) {
    if (presentation == nullptr || !velhls_c::isText(uri, length) ||
        !velhls_c::isText(why_not_read, why_length)) {
        return VELHLS_INVALID_ARGUMENT;
    }
    return guarded([&] {
        presentation->resources.push_back({std::string(viewOf(uri, length)), documentOf(document),
                                           std::string(viewOf(why_not_read, why_length))});
        return VELHLS_OK;
    });
}

velhls_status velhls_presentation_check(const velhls_presentation* presentation, velhls_profiles profiles,
                                        velhls_report** report) {
    if (!velhls_c::clear(report) || presentation == nullptr) return VELHLS_INVALID_ARGUMENT;
    return guarded([&]() -> velhls_status {
        const auto asked = velhls_c::profilesOf(profiles, allStandards);
        if (!asked) return VELHLS_INVALID_ARGUMENT;
        *report = new velhls_report{
            VELHLS_KIND_MASTER,
            {VELHLSPresentation::check(presentation->master, presentation->resources, *asked)},
            std::nullopt};
        return VELHLS_OK;
    });
}
