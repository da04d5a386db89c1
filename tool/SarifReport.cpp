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

/// Where the clause can be read; empty for what is none.
std::string helpUriOf(std::string_view source, std::string_view clause) {
    if (clause.empty()) return {};
    if (source.find("RFC 8216") == 0)
        return "https://www.rfc-editor.org/rfc/rfc8216#section-" + std::string(clause);
    if (source.find("rfc8216bis") != std::string_view::npos)
        return "https://datatracker.ietf.org/doc/html/draft-pantos-hls-rfc8216bis#section-" +
               std::string(clause);
    return "https://developer.apple.com/documentation/http-live-streaming/"
           "hls-authoring-specification-for-apple-devices";
}

/// The SARIF levels have the names of our severities.
Json describeRule(const VELHLSRule& rule) {
    const std::string page(pageOf(rule.id));
    Json description = {{"id", rule.id},
                        {"shortDescription", {{"text", rule.summary}}},
                        {"help", {{"text", page}, {"markdown", page}}},
                        {"defaultConfiguration", {{"level", VELHLSFinding::textOf(rule.severity)}}},
                        {"properties",
                         {{"expected", rule.expected},
                          {"source", rule.source},
                          {"profile", rule.profile},
                          {"clause", rule.clause},
                          {"level", rule.level},
                          {"isLostWhenWritten", rule.isLostWhenWritten}}}};
    const std::string help = helpUriOf(rule.source, rule.clause);
    if (!help.empty()) description["helpUri"] = help;
    return description;
}

/// A rule that several profiles have stands there once.
Json describeRules(const std::vector<VELHLSDiagnostics::Profile>& profiles,
                   std::map<std::string, std::size_t>& indices) {
    Json rules = Json::array();
    for (const VELHLSDiagnostics::Profile profile : profiles) {
        for (const VELHLSRule& rule : VELHLSDiagnostics::rules(profile)) {
            if (indices.emplace(rule.id, rules.size()).second) rules.push_back(describeRule(rule));
        }
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

SarifReport::SarifReport(const std::vector<VELHLSDiagnostics::Profile>& profiles)
    : rules_(describeRules(profiles, ruleIndices_)) {}

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
