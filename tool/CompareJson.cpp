#include <nlohmann/json.hpp>

#include "tool/CompareReport.h"
#include "tool/FindingJson.h"
#include "tool/JsonText.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;

/// Changes when what is written would no longer be read as before.
constexpr int formatVersion = 1;

Json changeAsJson(const VELHLSChange& change) {
    const auto lineAsJson = [](std::size_t line) { return line == 0 ? Json() : Json(line); };
    return {{"kind", VELHLSChange::textOf(change.kind)},
            {"path", change.path},
            {"what", change.what},
            {"old", change.kind == VELHLSChange::Added ? Json() : Json(change.oldText)},
            {"new", change.kind == VELHLSChange::Removed ? Json() : Json(change.newText)},
            {"oldLine", lineAsJson(change.oldLine)},
            {"newLine", lineAsJson(change.newLine)}};
}

void addPair(const ComparedPair& pair, Json& json) {
    json["old"] = pair.oldPath;
    json["new"] = pair.newPath;
    if (!pair.failure.empty()) {
        json["failure"] = pair.failure;
        return;
    }
    json["kind"] = pair.kind;
    json["changes"] = Json::array();
    for (const VELHLSChange& change : pair.comparison.changes)
        json["changes"].push_back(changeAsJson(change));
    json["findings"] = Json::array();
    for (const VELHLSFinding& finding : pair.comparison.findings)
        json["findings"].push_back(findingAsJson(pair.oldPath, finding));
}

Json summaryAsJson(const SeriesSummary& summary) {
    Json json = {
        {"versions", summary.versions},   {"unchanged", summary.unchanged}, {"changed", summary.changed},
        {"forbidden", summary.forbidden}, {"failed", summary.failed},       {"errors", summary.errors},
        {"warnings", summary.warnings},   {"notes", summary.notes},         {"rules", Json::object()}};
    for (const auto& [rule, count] : summary.rules)
        json["rules"][rule] = count;
    return json;
}

/// What is written by itself in a place that is indented so far.
std::string indented(const std::string& text, const std::string& margin) {
    std::string lines;
    for (const char character : text) {
        lines += character;
        if (character == '\n') lines += margin;
    }
    return lines;
}

std::string withoutLineFeed(std::string text) {
    text.pop_back();
    return text;
}

}  // namespace

std::string comparisonAsJson(const ComparedPair& pair) {
    Json json = {{"version", formatVersion}};
    addPair(pair, json);
    return jsonText(json);
}

std::string SeriesJson::start() {
    return "{\n  \"version\": " + std::to_string(formatVersion) + ",\n  \"steps\": [";
}

std::string SeriesJson::step(const ComparedPair& pair) {
    Json json = Json::object();
    addPair(pair, json);
    const std::string margin = "    ";
    const std::string before = isFirst_ ? "\n" : ",\n";
    isFirst_ = false;
    return before + margin + indented(withoutLineFeed(jsonText(json)), margin);
}

std::string SeriesJson::end(const SeriesSummary& summary) const {
    const std::string margin = "  ";
    return (isFirst_ ? "],\n" : "\n  ],\n") + margin +
           "\"summary\": " + indented(withoutLineFeed(jsonText(summaryAsJson(summary))), margin) + "\n}\n";
}

}  // namespace tool
