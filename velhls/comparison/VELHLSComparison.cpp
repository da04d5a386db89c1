#include "velhls/comparison/VELHLSComparison.h"

#include <array>

#include "velhls/comparison/CheckedUpdate.h"
#include "velhls/comparison/Compare.h"
#include "velhls/comparison/Difference.h"
#include "velhls/comparison/MediaVersion.h"
#include "velhls/comparison/SegmentMatch.h"

namespace {

using velhls::CheckedUpdate;
using UpdateTable = velhls::StandardTable<CheckedUpdate>;

std::array<UpdateTable, 5> allTables() {
    return {velhls::wholeUpdateRules(), velhls::segmentUpdateRules(), velhls::sequenceUpdateRules(),
            velhls::playlistUpdateRules(), velhls::dateRangeUpdateRules()};
}

void findAll(const UpdateTable& table, const CheckedUpdate& update, velhls::StandardFindings& findings) {
    for (const auto& entry : table)
        entry.find(update, velhls::Tell(findings, entry.rule));
}

VELHLSComparison compareMedia(const VELHLSDocument& old, const VELHLSDocument& now,
                              const VELHLSComparison::Options& options) {
    const velhls::MediaVersion before(old);
    const velhls::MediaVersion after(now);
    const velhls::SegmentMatch match = velhls::matchSegments(before, after);
    const velhls::DateRanges rangesBefore(before.playlist());
    const velhls::DateRanges rangesNow(after.playlist());
    velhls::Differences differences;
    velhls::compareTags(old, now, differences);
    velhls::compareSegments(before, after, match, differences);
    velhls::compareDateRanges(rangesBefore, rangesNow, differences);

    const CheckedUpdate update(before, after, match, rangesBefore, rangesNow, differences.all(),
                               options.elapsedSeconds);
    velhls::StandardFindings findings(velhls::StandardProfile::rfc8216);
    if (match.relation == velhls::SegmentMatch::anew) {
        findAll(velhls::wholeUpdateRules(), update, findings);
    } else {
        for (const UpdateTable& table : allTables())
            findAll(table, update, findings);
    }
    return {differences.takeChanges(), findings.takeAll()};
}

VELHLSComparison compareMaster(const VELHLSDocument& old, const VELHLSDocument& now) {
    velhls::Differences differences;
    velhls::compareTags(old, now, differences);
    velhls::compareMasters(VELHLSStructure(old), VELHLSStructure(now), differences);
    return {differences.takeChanges(), {}};
}

}  // namespace

std::optional<VELHLSComparison> VELHLSComparison::compare(const VELHLSDocument& old,
                                                          const VELHLSDocument& now, const Options& options) {
    if (old.kind() != now.kind() || old.kind() == VELHLSDocument::Neither) return std::nullopt;
    if (old.kind() == VELHLSDocument::Master) return compareMaster(old, now);
    return compareMedia(old, now, options);
}

std::vector<VELHLSRule> VELHLSComparison::rules() {
    std::vector<VELHLSRule> rules;
    for (const UpdateTable& table : allTables()) {
        for (const auto& entry : table) {
            VELHLSRule& rule = rules.emplace_back(entry.rule.rule);
            rule.level = entry.rule.level;
            rule.clause = velhls::clauseOf(entry.rule.rule.source);
            rule.profile = VELHLSStandard::nameOf(velhls::StandardProfile::rfc8216);
        }
    }
    return rules;
}
