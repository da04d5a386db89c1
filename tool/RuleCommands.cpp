#include "tool/RuleCommands.h"

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <CLI/CLI.hpp>

#include "velhls/VELHLSCheck.h"

#include "tool/FindingOptions.h"
#include "tool/JsonText.h"
#include "tool/OutputFile.h"
#include "tool/RuleNames.h"
#include "tool/RulePages.h"
#include "tool/Table.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;
using Profiles = std::vector<VELHLSDiagnostics::Profile>;

/// Changes when what is written would no longer be read as before.
constexpr int formatVersion = 1;

/// A rule, the command that finds it, and the profiles that have it with the same clause and weight.
struct ListedRule {
    VELHLSRule rule;
    std::string_view command;
    std::vector<std::string> profiles;
};

bool isSame(const VELHLSRule& one, const VELHLSRule& other) {
    return one.id == other.id && one.source == other.source && one.clause == other.clause &&
           one.level == other.level && one.severity == other.severity;
}

void add(std::vector<ListedRule>& rules, const VELHLSRule& rule, std::string_view command) {
    const auto same = std::find_if(rules.begin(), rules.end(), [&](const ListedRule& listed) {
        return listed.command == command && isSame(listed.rule, rule);
    });
    if (same == rules.end()) {
        rules.push_back({rule, command, {std::string(rule.profile)}});
    } else {
        same->profiles.emplace_back(rule.profile);
    }
}

std::vector<ListedRule> rulesOf(const Profiles& profiles) {
    std::vector<ListedRule> rules;
    for (const VELHLSDiagnostics::Profile profile : profiles) {
        for (const VELHLSRule& rule : VELHLSDiagnostics::rules(profile))
            add(rules, rule, "check");
    }
    for (const VELHLSRule& rule : VELHLSComparison::rules()) {
        const bool isAskedFor = std::any_of(profiles.begin(), profiles.end(), [&rule](auto profile) {
            return VELHLSDiagnostics::nameOf(profile) == rule.profile;
        });
        if (isAskedFor) add(rules, rule, "compare");
    }
    return rules;
}

Json ruleAsJson(const ListedRule& listed) {
    const VELHLSRule& rule = listed.rule;
    return {{"rule", rule.id},
            {"command", listed.command},
            {"profiles", listed.profiles},
            {"clause", rule.clause},
            {"level", rule.level},
            {"severity", VELHLSFinding::textOf(rule.severity)},
            {"summary", rule.summary},
            {"expected", rule.expected},
            {"source", rule.source},
            {"isLostWhenWritten", rule.isLostWhenWritten},
            {"fix", rule.fix}};
}

std::string asJson(const std::vector<ListedRule>& rules) {
    Json list = Json::array();
    for (const ListedRule& rule : rules)
        list.push_back(ruleAsJson(rule));
    return jsonText({{"version", formatVersion}, {"rules", list}});
}

std::string joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : ",") + name;
    return text;
}

std::string asTable(const std::vector<ListedRule>& rules) {
    using Align = Table::Align;
    Table table({"RULE", "COMMAND", "PROFILE", "CLAUSE", "LEVEL", "SEVERITY", "WHAT"},
                std::vector<Align>(7, Align::left));
    for (const auto& [rule, command, profiles] : rules) {
        table.addRow({std::string(rule.id), std::string(command), joined(profiles), std::string(rule.clause),
                      std::string(rule.level), std::string(VELHLSFinding::textOf(rule.severity)),
                      std::string(rule.summary)});
    }
    return table.text();
}

/// Those of compare have pages too.
std::string whyNoPage(const std::string& id) {
    return pageOf(id).empty() ? whyNoRule(id) : std::string();
}

struct RulesRequest {
    Profiles profiles = VELHLSDiagnostics::profiles();
    std::string format = "text";
};

}  // namespace

void addRulesCommand(CLI::App& app) {
    CLI::App* const command = app.add_subcommand("rules", "List the rules that check and compare know");
    const auto request = std::make_shared<RulesRequest>();
    addProfileOption(*command, request->profiles, "Whose rules to list, all unless told otherwise");
    command->add_option("--format", request->format, "How to write them")
        ->check(CLI::IsMember({"text", "json"}))
        ->capture_default_str();
    command->callback([request] {
        const std::vector<ListedRule> rules = rulesOf(request->profiles);
        writeToStandardOutput(request->format == "json" ? asJson(rules) : asTable(rules));
    });
}

void addExplainCommand(CLI::App& app) {
    CLI::App* const command = app.add_subcommand("explain", "Show the page of a rule");
    const auto rule = std::make_shared<std::string>();
    command->add_option("RULE", *rule, "The rule, as check and compare name it in brackets")
        ->required()
        ->check(CLI::Validator(whyNoPage, "RULE"));
    command->callback([rule] { writeToStandardOutput(pageOf(*rule)); });
}

}  // namespace tool
