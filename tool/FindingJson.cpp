#include "tool/FindingJson.h"

namespace tool {

nlohmann::ordered_json findingAsJson(const VELHLSFinding& finding) {
    return {{"rule", finding.ruleId},   {"severity", VELHLSFinding::textOf(finding.severity)},
            {"line", finding.line},     {"column", finding.column},
            {"length", finding.length}, {"message", finding.message},
            {"source", finding.source}, {"suppressed", finding.suppressed}};
}

}  // namespace tool
