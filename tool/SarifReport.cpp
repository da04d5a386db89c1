#include "tool/SarifReport.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string_view>

#include <nlohmann/json.hpp>

#include "tool/CharacterPlace.h"
#include "tool/Escaping.h"
#include "tool/InputFile.h"
#include "tool/OutputFile.h"
#include "tool/Path.h"
#include "tool/RuleLinks.h"
#include "tool/RulePages.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;

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
                          {"isLostWhenWritten", rule.isLostWhenWritten},
                          {"fix", rule.fix}}}};
    const std::string help = helpUriOf(rule);
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
    const std::string text = textOf(pathOf(path));
    std::string scheme;
    if (pathOf(path).is_absolute()) scheme = text.front() == '/' ? "file://" : "file:///";
    return scheme + percentEncodedPath(text);
}

/// SARIF counts columns in characters.
Json locationOf(const std::string& path, std::size_t line, const CharacterPlace& place) {
    const Json region = {{"startLine", line},
                         {"startColumn", place.column},
                         {"endLine", line},
                         {"endColumn", place.column + place.length}};
    return {{"physicalLocation", {{"artifactLocation", {{"uri", uriOf(path)}}}, {"region", region}}}};
}

/// FNV-1a: the same in every build.
std::uint64_t hashOf(std::string_view text) {
    std::uint64_t hash = 0xCBF29CE484222325U;
    for (const char character : text)
        hash = (hash ^ static_cast<unsigned char>(character)) * 0x100000001B3U;
    return hash;
}

std::string hexadecimalOf(std::uint64_t number) {
    std::string text(16, '0');
    for (std::size_t position = text.size(); position-- > 0; number >>= 4U)
        text[position] = "0123456789abcdef"[number & 0xFU];
    return text;
}

/// What stays the same when lines before the finding come and go: its rule and the start of its line. The same again has a number.
class Fingerprints {
  public:
    std::string next(const VELHLSFinding& finding, std::string_view line) {
        const std::uint64_t hash = hashOf(finding.ruleId + "\n" + std::string(line.substr(0, 1024)));
        return hexadecimalOf(hash) + ":" + std::to_string(++seen_[hash]);
    }

  private:
    std::map<std::uint64_t, std::size_t> seen_;
};

Json propertiesOf(const VELHLSFinding& finding) {
    Json properties = {{"profile", finding.profile}, {"clause", finding.clause}, {"level", finding.level}};
    if (finding.suppressed != 0) properties["suppressed"] = finding.suppressed;
    return properties;
}

/// Of other texts, which are not at hand here, the line alone: columns are characters.
Json relatedLocationsOf(const std::string& path, const VELHLSFinding& finding) {
    Json locations = Json::array();
    for (const VELHLSRelatedPlace& place : finding.related) {
        const std::string& file = place.uri.empty() ? path : place.uri;
        locations.push_back(
            {{"physicalLocation",
              {{"artifactLocation", {{"uri", uriOf(file)}}}, {"region", {{"startLine", place.line}}}}},
             {"message", {{"text", place.message}}}});
    }
    return locations;
}

/// The bytes that an edit deletes are counted from the start of the file.
Json fixesOf(const std::string& path, const VELHLSFinding& finding) {
    Json fixes = Json::array();
    for (const VELHLSFix& fix : finding.fixes) {
        Json replacements = Json::array();
        for (const VELHLSEdit& edit : fix.edits) {
            Json replacement = {
                {"deletedRegion", {{"byteOffset", edit.offset}, {"byteLength", edit.length}}}};
            if (!edit.replacement.empty()) replacement["insertedContent"] = {{"text", edit.replacement}};
            replacements.push_back(replacement);
        }
        const Json change = {{"artifactLocation", {{"uri", uriOf(path)}}}, {"replacements", replacements}};
        fixes.push_back(
            {{"description", {{"text", std::string(VELHLSFix::textOf(fix.fixClass)) + ": " + fix.sentence}}},
             {"artifactChanges", Json::array({change})}});
    }
    return fixes;
}

Json resultOf(const std::string& path, const VELHLSFinding& finding, CharacterPlaces& places,
              Fingerprints& fingerprints) {
    const CharacterPlace place = places.of(finding.line, finding.column, finding.length);
    Json result = {{"ruleId", finding.ruleId},
                   {"level", VELHLSFinding::textOf(finding.severity)},
                   {"message", {{"text", finding.message}}},
                   {"locations", Json::array({locationOf(path, finding.line, place)})},
                   {"partialFingerprints",
                    {{"ruleAndLine/v1", fingerprints.next(finding, places.lineNumbered(finding.line))}}},
                   {"properties", propertiesOf(finding)}};
    if (!finding.fixes.empty()) result["fixes"] = fixesOf(path, finding);
    if (!finding.related.empty()) result["relatedLocations"] = relatedLocationsOf(path, finding);
    return result;
}

Json rejectionOf(const std::string& path, const VELHLSReason& reason, CharacterPlaces& places) {
    const CharacterPlace place = places.of(reason.line, reason.column, reason.length);
    return {{"level", "note"},
            {"message", {{"text", "rejected: " + reason.message + " [" + reason.ruleId + "]"}}},
            {"locations", Json::array({locationOf(path, reason.line, place)})}};
}

Json logWithoutResults(const std::vector<VELHLSDiagnostics::Profile>& profiles,
                       std::map<std::string, std::size_t>& ruleIndices) {
    const Json driver = {{"name", "velhls"},
                         {"version", VELHLS_TOOL_VERSION},
                         {"rules", describeRules(profiles, ruleIndices)}};
    const Json run = {
        {"tool", {{"driver", driver}}}, {"columnKind", "unicodeCodePoints"}, {"results", Json::array()}};
    return {{"$schema",
             "https://docs.oasis-open.org/sarif/sarif/v2.1.0/errata01/os/schemas/sarif-schema-2.1.0.json"},
            {"version", "2.1.0"},
            {"runs", Json::array({run})}};
}

}  // namespace

SarifReport::SarifReport(const std::vector<VELHLSDiagnostics::Profile>& profiles)
    : log_(logWithoutResults(profiles, ruleIndices_)), text_(log_, "results") {
    writeToStandardOutput(text_.start());
}

void SarifReport::add(const CheckedFile& file) {
    if (!file.failure.empty())
        notifications_.push_back({{"level", "error"}, {"message", {{"text", file.failure}}}});
    CharacterPlaces places(file.text);
    Fingerprints fingerprints;
    std::string results;
    for (const VELHLSFinding& finding : file.findings) {
        Json result = resultOf(file.path, finding, places, fingerprints);
        // What was not read is told whatever profiles are asked for.
        const auto index = ruleIndices_.find(finding.ruleId);
        if (index != ruleIndices_.end()) result["ruleIndex"] = index->second;
        results += text_.element(result);
    }
    if (file.rejected) notifications_.push_back(rejectionOf(file.path, *file.rejected, places));
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
