#include "tool/FindingJson.h"

namespace tool {

nlohmann::ordered_json findingAsJson(const VELHLSFinding& finding) {
    return {{"rule", finding.ruleId},
            {"profile", finding.profile},
            {"clause", finding.clause},
            {"level", finding.level},
            {"severity", VELHLSFinding::textOf(finding.severity)},
            {"line", finding.line},
            {"column", finding.column},
            {"length", finding.length},
            {"message", finding.message},
            {"source", finding.source},
            {"suppressed", finding.suppressed}};
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
