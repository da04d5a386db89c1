#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/PlaylistText.h"
#include "tests/support/RunCommand.h"

namespace {

using command::Outcome;
using playlist::contentOf;
using testing::HasSubstr;

Outcome velhls(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), VELHLS_COMMAND);
    return command::run(arguments);
}

TEST(ExplainCommand, ShowsThePageOfARule) {
    const Outcome outcome = velhls({"explain", "variant-bandwidth-zero"});
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_EQ(outcome.output, contentOf(VELHLS_SOURCE "/docs/rules/variant-bandwidth-zero.md"));
}

TEST(ExplainCommand, ShowsThePagesOfBothVoices) {
    EXPECT_EQ(velhls({"explain", "rendition-report-absolute"}).output,
              contentOf(VELHLS_SOURCE "/docs/standard/rendition-report-absolute.md"));
    EXPECT_EQ(velhls({"explain", "version-too-low"}).output,
              contentOf(VELHLS_SOURCE "/docs/standard/version-too-low.md") + "\n" +
                  contentOf(VELHLS_SOURCE "/docs/rules/version-too-low.md"));
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
