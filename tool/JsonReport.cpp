#include "tool/JsonReport.h"

#include <optional>

#include <nlohmann/json.hpp>

#include "tool/FindingText.h"
#include "tool/JsonText.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;

/// Changes when what is written would no longer be read as before.
constexpr int formatVersion = 2;

Json describeFinding(const VELHLSFinding& finding) {
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

Json describeRejection(const std::optional<VELHLSReason>& reason) {
    if (!reason) return nullptr;
    return {{"rule", reason->ruleId},
            {"line", reason->line},
            {"column", reason->column},
            {"length", reason->length},
            {"message", reason->message}};
}

Json describeFile(const CheckedFile& file) {
    Json description = {{"path", file.path}};
    if (!file.failure.empty()) {
        description["failure"] = file.failure;
        return description;
    }
    const bool isPlaylist = file.kind != PlaylistKind::Detect;
    description["kind"] = isPlaylist ? Json(nameOf(file.kind)) : Json();
    description["rejected"] = describeRejection(file.rejected);
    description["findings"] = Json::array();
    for (const VELHLSFinding& finding : file.findings)
        description["findings"].push_back(describeFinding(finding));
    return description;
}

}  // namespace

void JsonReport::add(const CheckedFile& file) {
    files_.push_back(describeFile(file));
}

std::string JsonReport::text() const {
    return jsonText({{"version", formatVersion}, {"files", files_}});
}

}  // namespace tool
