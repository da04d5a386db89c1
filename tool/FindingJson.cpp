#include "tool/FindingJson.h"

namespace tool {
namespace {

nlohmann::ordered_json fixAsJson(const VELHLSFix& fix) {
    nlohmann::ordered_json json = {{"class", VELHLSFix::textOf(fix.fixClass)},
                                   {"sentence", fix.sentence},
                                   {"edits", nlohmann::ordered_json::array()}};
    for (const VELHLSEdit& edit : fix.edits) {
        json["edits"].push_back(
            {{"offset", edit.offset}, {"length", edit.length}, {"replacement", edit.replacement}});
    }
    return json;
}

}  // namespace

nlohmann::ordered_json findingAsJson(const std::string& path, const VELHLSFinding& finding) {
    nlohmann::ordered_json json = {{"rule", finding.ruleId},
                                   {"profile", finding.profile},
                                   {"clause", finding.clause},
                                   {"level", finding.level},
                                   {"severity", VELHLSFinding::textOf(finding.severity)},
                                   {"line", finding.line},
                                   {"column", finding.column},
                                   {"length", finding.length},
                                   {"message", finding.message},
                                   {"source", finding.source},
                                   {"suppressed", finding.suppressed},
                                   {"related", nlohmann::ordered_json::array()}};
    for (const VELHLSRelatedPlace& place : finding.related) {
        json["related"].push_back({{"path", place.uri.empty() ? path : place.uri},
                                   {"line", place.line},
                                   {"column", place.column},
                                   {"length", place.length},
                                   {"message", place.message}});
    }
    for (const VELHLSFix& fix : finding.fixes)
        json["fixes"].push_back(fixAsJson(fix));
    return json;
}

nlohmann::ordered_json rejectionAsJson(const std::optional<VELHLSReason>& reason) {
    if (!reason) return nullptr;
    return {{"rule", reason->ruleId},
            {"line", reason->line},
            {"column", reason->column},
            {"length", reason->length},
            {"message", reason->message}};
}

}  // namespace tool
