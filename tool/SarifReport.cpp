#include "tool/SarifReport.h"

#include <cstddef>
#include <map>
#include <string_view>

#include <nlohmann/json.hpp>

#include "tool/CharacterPlace.h"
#include "tool/InputFile.h"
#include "tool/OutputFile.h"
#include "tool/RulePages.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;

/// The SARIF levels have the names of our severities.
Json describeRule(const VELHLSRule& rule) {
    const std::string page(pageOf(rule.id));
    return {{"id", rule.id},
            {"shortDescription", {{"text", rule.summary}}},
            {"help", {{"text", page}, {"markdown", page}}},
            {"defaultConfiguration", {{"level", VELHLSFinding::textOf(rule.severity)}}},
            {"properties",
             {{"expected", rule.expected},
              {"source", rule.source},
              {"isLostWhenWritten", rule.isLostWhenWritten}}}};
}

Json describeRules(std::map<std::string, std::size_t>& indices) {
    Json rules = Json::array();
    for (const VELHLSRule& rule : VELHLSDiagnostics::rules()) {
        indices.emplace(rule.id, rules.size());
        rules.push_back(describeRule(rule));
    }
    return rules;
}

/// A path as a URI reference: characters that mean something in a URI, and all beyond ASCII, are escaped.
std::string uriOf(const std::string& path) {
    if (path == standardInput) return "stdin";
    constexpr std::string_view plain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
    constexpr std::string_view hexadecimal = "0123456789ABCDEF";
    std::string uri = path.front() == '/' ? "file://" : "";
    for (const char character : path) {
        if (plain.find(character) != std::string_view::npos) {
            uri += character;
            continue;
        }
        const auto byte = static_cast<unsigned char>(character);
        uri += '%';
        uri += hexadecimal[byte / 16];
        uri += hexadecimal[byte % 16];
    }
    return uri;
}

/// SARIF counts columns in characters.
Json regionOf(const VELHLSFinding& finding, const CharacterPlace& place) {
    return {{"startLine", finding.line},
            {"startColumn", place.column},
            {"endLine", finding.line},
            {"endColumn", place.column + place.length}};
}

Json resultOf(const std::string& path, const VELHLSFinding& finding, const CharacterPlace& place,
              std::size_t ruleIndex) {
    Json result = {
        {"ruleId", finding.ruleId},
        {"ruleIndex", ruleIndex},
        {"level", VELHLSFinding::textOf(finding.severity)},
        {"message", {{"text", finding.message}}},
        {"locations",
         {{{"physicalLocation",
            {{"artifactLocation", {{"uri", uriOf(path)}}}, {"region", regionOf(finding, place)}}}}}}};
    if (finding.suppressed != 0) result["properties"] = {{"suppressed", finding.suppressed}};
    return result;
}

Json logWithoutResults(std::map<std::string, std::size_t>& ruleIndices) {
    const Json driver = {
        {"name", "velhls"}, {"version", VELHLS_TOOL_VERSION}, {"rules", describeRules(ruleIndices)}};
    const Json run = {
        {"tool", {{"driver", driver}}}, {"columnKind", "unicodeCodePoints"}, {"results", Json::array()}};
    return {{"$schema",
             "https://docs.oasis-open.org/sarif/sarif/v2.1.0/errata01/os/schemas/sarif-schema-2.1.0.json"},
            {"version", "2.1.0"},
            {"runs", Json::array({run})}};
}

}  // namespace

SarifReport::SarifReport() : log_(logWithoutResults(ruleIndices_)), text_(log_, "results") {
    writeToStandardOutput(text_.start());
}

void SarifReport::add(const CheckedFile& file) {
    if (!file.failure.empty())
        notifications_.push_back({{"level", "error"}, {"message", {{"text", file.failure}}}});
    CharacterPlaces places(file.text);
    std::string results;
    for (const VELHLSFinding& finding : file.findings) {
        const std::size_t ruleIndex = ruleIndices_.at(finding.ruleId);
        results += text_.element(resultOf(file.path, finding, places.of(finding), ruleIndex));
    }
    writeToStandardOutput(results);
}

void SarifReport::end(const CheckSummary& summary) {
    Json invocation = {{"executionSuccessful", summary.status != unusable},
                       {"exitCode", static_cast<int>(summary.status)}};
    if (!notifications_.empty()) invocation["toolExecutionNotifications"] = notifications_;
    log_["runs"][0]["invocations"] = Json::array({invocation});
    writeToStandardOutput(text_.end(log_));
}

}  // namespace tool
