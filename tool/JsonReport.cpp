#include "tool/JsonReport.h"

#include <nlohmann/json.hpp>

#include "tool/FindingJson.h"
#include "tool/JsonText.h"
#include "tool/OutputFile.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;

/// Changes when what is written would no longer be read as before.
constexpr int formatVersion = 2;

Json reportWithoutFiles() {
    return {{"version", formatVersion}, {"files", Json::array()}};
}

Json fileAsJson(const CheckedFile& file) {
    Json json = {{"path", file.path}};
    if (!file.failure.empty()) {
        json["failure"] = file.failure;
        return json;
    }
    const bool isPlaylist = file.kind != PlaylistKind::Detect;
    json["kind"] = isPlaylist ? Json(nameOf(file.kind)) : Json();
    json["rejected"] = rejectionAsJson(file.rejected);
    if (file.followed) {
        json["followed"] = {{"read", file.followed->read},
                            {"missing", file.followed->missing},
                            {"refused", file.followed->refused},
                            {"network", file.followed->network},
                            {"variable", file.followed->variable}};
    }
    json["findings"] = Json::array();
    for (const VELHLSFinding& finding : file.findings)
        json["findings"].push_back(findingAsJson(file.path, finding));
    return json;
}

}  // namespace

JsonReport::JsonReport() : text_(reportWithoutFiles(), "files") {
    writeToStandardOutput(text_.start());
}

void JsonReport::add(const CheckedFile& file) {
    writeToStandardOutput(text_.element(fileAsJson(file)));
}

void JsonReport::end(const CheckSummary& /*summary*/) {
    writeToStandardOutput(text_.end(reportWithoutFiles()));
}

void JsonLinesReport::add(const CheckedFile& file) {
    writeToStandardOutput(jsonLine(fileAsJson(file)));
}

void JsonLinesReport::end(const CheckSummary& /*summary*/) {}

}  // namespace tool
