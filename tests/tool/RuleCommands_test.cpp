#include <filesystem>
#include <iterator>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/PlaylistText.h"
#include "tests/support/VelhlsCommand.h"

namespace {

using command::Outcome;
using command::velhls;
using playlist::contentOf;
using testing::HasSubstr;

/// The lines of a table, each as its cells, which two spaces at least keep apart.
std::vector<std::vector<std::string>> rowsOf(const std::string& table) {
    static const std::regex cell("\\S+( \\S+)*");
    std::vector<std::vector<std::string>> rows;
    std::istringstream text(table);
    for (std::string line; std::getline(text, line);) {
        rows.emplace_back();
        for (std::sregex_iterator match(line.begin(), line.end(), cell); match != std::sregex_iterator();
             ++match)
            rows.back().push_back(match->str());
    }
    return rows;
}

std::vector<std::string> rowOf(const std::string& rule, const std::vector<std::string>& options = {}) {
    std::vector<std::string> arguments = {"rules"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    for (const std::vector<std::string>& row : rowsOf(velhls(arguments).output)) {
        if (row[0] == rule) return row;
    }
    return {};
}

TEST(RulesCommand, ListsTheRulesOfAllProfilesWithTheirClauses) {
    const auto rows = rowsOf(velhls({"rules"}).output);
    EXPECT_EQ(rows[0], (std::vector<std::string>{"RULE", "COMMAND", "PROFILE", "CLAUSE", "LEVEL", "SEVERITY",
                                                 "WHAT"}));
    EXPECT_GT(rows.size(), 300U);
    EXPECT_EQ(rowOf("header-missing"),
              (std::vector<std::string>{"header-missing", "check", "rfc8216,rfc8216bis", "4.3.1.1", "MUST",
                                        "error", "The playlist has no #EXTM3U line."}));
    EXPECT_EQ(rowOf("segment-uri-too-short")[2], "library");
}

TEST(RulesCommand, ListsTheRulesOfTheProfilesThatAreAskedFor) {
    EXPECT_EQ(rowOf("header-missing", {"--profile=rfc8216bis"})[2], "rfc8216bis");
    EXPECT_EQ(rowOf("header-missing", {"--profile=apple"}).size(), 0U);
    EXPECT_EQ(rowOf("header-missing", {"--profile=apple", "--profile", "rfc8216"})[2], "rfc8216");
    EXPECT_EQ(rowOf("header-missing", {"--profile=rfc8216,rfc8216"})[2], "rfc8216");
    EXPECT_EQ(rowOf("segment-uri-too-short", {"--profile=rfc8216,apple"}).size(), 0U);
    EXPECT_EQ(velhls({"rules", "--profile=rfc9999"}).exitStatus, 2);
}

TEST(RulesCommand, TellsTheRulesOfCompareFromThoseOfCheck) {
    std::size_t compared = 0;
    for (const std::vector<std::string>& row : rowsOf(velhls({"rules"}).output))
        compared += row[1] == "compare" ? 1 : 0;
    const std::filesystem::directory_iterator pages(VELHLS_SOURCE "/docs/comparison");
    EXPECT_EQ(compared, static_cast<std::size_t>(std::distance(begin(pages), end(pages))));
    const auto row = rowOf("media-sequence-decreased");
    ASSERT_GT(row.size(), 2U);
    EXPECT_EQ(row[1], "compare");
    EXPECT_EQ(row[2], "rfc8216");
    EXPECT_EQ(rowOf("media-sequence-decreased", {"--profile=rfc8216bis"}).size(), 0U);
}

TEST(RulesCommand, ListsEveryRuleThatCheckNamesInItsReports) {
    const std::string rules = velhls({"rules", "--format=json"}).output;
    EXPECT_THAT(rules,
                testing::StartsWith("{\n  \"version\": 1,\n  \"rules\": [\n    {\n      \"rule\": \""));
    EXPECT_THAT(rules, HasSubstr("\",\n      \"command\": \"compare\",\n"));
    const std::string lines = velhls({"check", "--format=jsonl", "--severity=note", "--profile=rfc8216bis",
                                      "--profile=apple", "--profile=library", VELHLS_EXAMPLE_FINDINGS})
                                  .output;
    const std::vector<std::string> ids = command::quotedAfter("\"rule\":\"", lines);
    for (const std::string& id : ids)
        EXPECT_NE(rules.find("\"rule\": \"" + id + "\""), std::string::npos) << id;
    EXPECT_GT(ids.size(), 300U);
}

TEST(ExplainCommand, ShowsThePageOfARule) {
    for (const std::string rule :
         {"variant-bandwidth-zero", "version-too-low", "rendition-report-absolute"}) {
        const Outcome outcome = velhls({"explain", rule});
        EXPECT_EQ(outcome.exitStatus, 0);
        EXPECT_EQ(outcome.output, contentOf(VELHLS_SOURCE "/docs/rules/" + rule + ".md"));
        EXPECT_NE(outcome.output, "");
    }
}

TEST(ExplainCommand, OffersRulesWithNearNames) {
    const std::vector<std::pair<std::string, std::string>> offers = {
        {"variant-bandwith-zero", "\"variant-bandwith-zero\"; did you mean variant-bandwidth-zero?\n"},
        {"Variant-Bandwidth-Zero", "\"Variant-Bandwidth-Zero\"; did you mean variant-bandwidth-zero?\n"},
        {"bandwidth-zero", "\"bandwidth-zero\"; did you mean variant-bandwidth-zero?\n"},
        {"something else entirely", "\"something else entirely\"\n"},
        {"", "\"\"\n"},
    };
    for (const auto& [asked, offered] : offers) {
        const Outcome outcome = velhls({"explain", asked});
        EXPECT_EQ(outcome.exitStatus, 2);
        EXPECT_THAT(outcome.errors, HasSubstr("there is no rule " + offered)) << asked;
        EXPECT_EQ(velhls({"check", "--disable", asked}).exitStatus, 2);
    }
}

TEST(ExplainCommand, OffersFewRulesAndTakesNoTimeForLongNames) {
    const std::string errors = velhls({"explain", "missing"}).errors;
    EXPECT_THAT(errors,
                testing::ContainsRegex("did you mean [a-z0-9-]+, [a-z0-9-]+, [a-z0-9-]+, [a-z0-9-]+ or "
                                       "[a-z0-9-]+[?]\n"));
    EXPECT_LT(velhls({"explain", std::string(100000, 'x')}).errors.size(), 300U);
}

}  // namespace
