#include "tool/SarifReport.h"

#include <cstddef>
#include <map>
#include <string_view>

#include <nlohmann/json.hpp>

#include "tool/FindingText.h"
#include "tool/InputFile.h"
#include "tool/JsonText.h"
#include "tool/RulePages.h"
#include "tool/Utf8.h"

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
Json regionOf(const VELHLSFinding& finding, std::string_view line) {
    const std::size_t startColumn = utf8::countCharacters(line.substr(0, finding.column - 1)) + 1;
    const std::size_t length = utf8::countCharacters(line.substr(finding.column - 1, finding.length));
    return {{"startLine", finding.line},
            {"startColumn", startColumn},
            {"endLine", finding.line},
            {"endColumn", startColumn + length}};
}

Json describeFinding(const CheckedFile& file, const VELHLSFinding& finding, std::string_view line,
                     std::size_t ruleIndex) {
    Json result = {
        {"ruleId", finding.ruleId},
        {"ruleIndex", ruleIndex},
        {"level", VELHLSFinding::textOf(finding.severity)},
        {"message", {{"text", finding.message}}},
        {"locations",
         {{{"physicalLocation",
            {{"artifactLocation", {{"uri", uriOf(file.path)}}}, {"region", regionOf(finding, line)}}}}}}};
    if (finding.suppressed != 0) result["properties"] = {{"suppressed", finding.suppressed}};
    return result;
}

void appendFindings(Json& results, const CheckedFile& file,
                    const std::map<std::string, std::size_t>& ruleIndices) {
    std::size_t lineNumber = 1;
    std::size_t start = 0;
    for (const VELHLSFinding& finding : file.findings) {
        if (finding.line < lineNumber) {
            lineNumber = 1;
            start = 0;
        }
        for (; lineNumber < finding.line; ++lineNumber)
            start = file.text.find('\n', start) + 1;
        const std::string_view rest = std::string_view(file.text).substr(start);
        results.push_back(
            describeFinding(file, finding, rest.substr(0, rest.find('\n')), ruleIndices.at(finding.ruleId)));
    }
}

}  // namespace

SarifReport::SarifReport() : rules_(describeRules(ruleIndices_)) {}

void SarifReport::add(const CheckedFile& file) {
    appendFindings(results_, file, ruleIndices_);
    if (file.failure.empty()) return;
    notifications_.push_back({{"level", "error"}, {"message", {{"text", file.failure}}}});
}

std::string SarifReport::text(ExitStatus status) const {
    const Json driver = {{"name", "velhls"}, {"version", VELHLS_TOOL_VERSION}, {"rules", rules_}};
    Json invocation = {{"executionSuccessful", status != unusable}, {"exitCode", static_cast<int>(status)}};
    if (!notifications_.empty()) invocation["toolExecutionNotifications"] = notifications_;
    const Json run = {{"tool", {{"driver", driver}}},
                      {"columnKind", "unicodeCodePoints"},
                      {"invocations", Json::array({invocation})},
                      {"results", results_}};
    return jsonText(
        {{"$schema",
          "https://docs.oasis-open.org/sarif/sarif/v2.1.0/errata01/os/schemas/sarif-schema-2.1.0.json"},
         {"version", "2.1.0"},
         {"runs", Json::array({run})}});
}

}  // namespace tool
