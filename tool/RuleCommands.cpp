#include "tool/RuleCommands.h"

#include <memory>
#include <string>

#include <CLI/CLI.hpp>

#include "velhls/VELHLSCheck.h"

#include "tool/JsonText.h"
#include "tool/OutputFile.h"
#include "tool/RuleNames.h"
#include "tool/RulePages.h"
#include "tool/Table.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;

/// Changes when what is written would no longer be read as before.
constexpr int formatVersion = 1;

Json ruleAsJson(const VELHLSRule& rule) {
    return {{"rule", rule.id},
            {"severity", VELHLSFinding::textOf(rule.severity)},
            {"level", rule.level},
            {"summary", rule.summary},
            {"expected", rule.expected},
            {"source", rule.source},
            {"isLostWhenWritten", rule.isLostWhenWritten}};
}

std::string rulesAsJson() {
    Json rules = Json::array();
    for (const VELHLSRule& rule : VELHLSDiagnostics::rules())
        rules.push_back(ruleAsJson(rule));
    return jsonText({{"version", formatVersion}, {"rules", rules}});
}

std::string rulesAsTable() {
    using Align = Table::Align;
    Table table({"RULE", "SEVERITY", "LEVEL", "WHAT"}, {Align::left, Align::left, Align::left, Align::left});
    for (const VELHLSRule& rule : VELHLSDiagnostics::rules()) {
        table.addRow({std::string(rule.id), std::string(VELHLSFinding::textOf(rule.severity)),
                      std::string(rule.level), std::string(rule.summary)});
    }
    return table.text();
}

void addRulesCommand(CLI::App& app) {
    CLI::App* const command = app.add_subcommand("rules", "List the rules that check knows");
    const auto format = std::make_shared<std::string>("text");
    command->add_option("--format", *format, "How to write them")
        ->check(CLI::IsMember({"text", "json"}))
        ->capture_default_str();
    command->callback(
        [format] { writeToStandardOutput(*format == "json" ? rulesAsJson() : rulesAsTable()); });
}

void addExplainCommand(CLI::App& app) {
    CLI::App* const command = app.add_subcommand("explain", "Show the page of a rule");
    const auto rule = std::make_shared<std::string>();
    command->add_option("RULE", *rule, "The rule, as check names it in brackets")
        ->required()
        ->check(CLI::Validator(whyNoRule, "RULE"));
    command->callback([rule] { writeToStandardOutput(pageOf(*rule)); });
}

}  // namespace

void addRuleCommands(CLI::App& app) {
    addRulesCommand(app);
    addExplainCommand(app);
}

}  // namespace tool
