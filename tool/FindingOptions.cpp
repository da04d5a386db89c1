#include "tool/FindingOptions.h"

#include <algorithm>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "tool/FindingChoice.h"
#include "tool/Printable.h"
#include "tool/RuleNames.h"

namespace tool {
namespace {

const CLI::IsMember& isSeverity() {
    static const CLI::IsMember severity({"error", "warning", "note"});
    return severity;
}

/// What CLI11 says of what is not "RULE=SEVERITY".
std::string whyNoSeverityOfRule(const std::string& text) {
    const std::size_t sign = text.find('=');
    if (sign == std::string::npos) return "expected RULE=SEVERITY, seen " + quotedExcerpt(text);
    const std::string severity = text.substr(sign + 1);
    if (severity != "error" && severity != "warning" && severity != "note")
        return "expected the severity error, warning or note, seen " + quotedExcerpt(severity);
    return whyNoRule(text.substr(0, sign));
}

}  // namespace

void addProfileOption(CLI::App& command, std::vector<VELHLSDiagnostics::Profile>& profiles,
                      const std::string& what) {
    std::vector<std::string> names;
    for (const VELHLSDiagnostics::Profile profile : VELHLSDiagnostics::profiles())
        names.emplace_back(VELHLSDiagnostics::nameOf(profile));
    command
        .add_option_function<std::vector<std::string>>(
            "--profile",
            [&profiles](const std::vector<std::string>& asked) {
                profiles.clear();
                for (const std::string& name : asked) {
                    const VELHLSDiagnostics::Profile profile = *VELHLSDiagnostics::profileNamed(name);
                    if (std::count(profiles.begin(), profiles.end(), profile) == 0)
                        profiles.push_back(profile);
                }
            },
            what + "; may be repeated")
        ->check(CLI::IsMember(names))
        ->allow_extra_args(false)
        ->delimiter(',');
}

void addFindingOptions(CLI::App& command, FindingChoice& choice) {
    command
        .add_option_function<std::string>(
            "--severity", [&choice](const std::string& name) { choice.leastShown = severityNamed(name); },
            "The least severity that is shown; it makes no difference to the exit status")
        ->check(isSeverity())
        ->default_str("warning");
    command
        .add_option_function<std::string>(
            "--fail-on", [&choice](const std::string& name) { choice.leastFailing = severityNamed(name); },
            "The least severity that makes the exit status 1")
        ->check(isSeverity())
        ->default_str("error");
    command
        .add_option_function<std::vector<std::string>>(
            "--disable",
            [&choice](const std::vector<std::string>& rules) {
                choice.disabledRules.insert(rules.begin(), rules.end());
            },
            "Leave this rule out; may be repeated")
        ->check(CLI::Validator(whyNoRule, "RULE"))
        ->allow_extra_args(false)
        ->delimiter(',');
    command
        .add_option_function<std::vector<std::string>>(
            "--severity-of",
            [&choice](const std::vector<std::string>& assignments) {
                for (const std::string& assignment : assignments) {
                    const std::size_t sign = assignment.find('=');
                    choice.severities[assignment.substr(0, sign)] =
                        severityNamed(assignment.substr(sign + 1));
                }
            },
            "Give the findings of this rule this severity; may be repeated")
        ->check(CLI::Validator(whyNoSeverityOfRule, "RULE=SEVERITY"))
        ->allow_extra_args(false)
        ->delimiter(',');
}

void addColourOption(CLI::App& command, std::string& colour) {
    command.add_option("--color", colour, "When to use colours")
        ->check(CLI::IsMember({"auto", "always", "never"}))
        ->capture_default_str();
}

}  // namespace tool
