#include "tool/JsonReport.h"

#include <nlohmann/json.hpp>

#include "tool/FindingText.h"
#include "tool/JsonText.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;

/// Changes when what is written would no longer be read as before.
constexpr int formatVersion = 1;

Json describeFinding(const VELHLSFinding& finding) {
    return {{"rule", finding.ruleId},   {"severity", VELHLSFinding::textOf(finding.severity)},
            {"line", finding.line},     {"column", finding.column},
            {"length", finding.length}, {"message", finding.message},
            {"source", finding.source}, {"suppressed", finding.suppressed}};
}

Json describeFile(const CheckedFile& file) {
    Json description = {{"path", file.path}};
    if (!file.failure.empty()) {
        description["failure"] = file.failure;
        return description;
    }
    const bool isPlaylist = file.kind != PlaylistKind::Detect;
    description["kind"] = isPlaylist ? Json(nameOf(file.kind)) : Json();
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
