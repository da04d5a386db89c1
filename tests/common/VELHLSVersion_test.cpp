#include "velhls/common/VELHLSVersion.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ContainsRegex;
using testing::Not;

const std::string versionText = ZORHLSManifestLibVersionString;

TEST(VELHLSVersion, NumberIsOne) {
    EXPECT_EQ(ZORHLSManifestLibVersionNumber, 1.0);
}

TEST(VELHLSVersion, TextBeginsWithTheLibrarysNameAndSemanticVersion) {
    EXPECT_THAT(versionText, ContainsRegex(R"(^velhls (0|[1-9][0-9]*)\.(0|[1-9][0-9]*)\.(0|[1-9][0-9]*) )"));
}

TEST(VELHLSVersion, TextNamesCompilerAndBuildType) {
    EXPECT_THAT(versionText, ContainsRegex(R"( \((GNU|Clang) [0-9]+\.[0-9]+\.[0-9]+, [A-Za-z ]+\)$)"));
}

// A build must not tell where it was made: two machines build the same text.
TEST(VELHLSVersion, TextHoldsNoPath) {
    EXPECT_EQ(versionText.find_first_of("/\\~@"), std::string::npos) << versionText;
}

TEST(VELHLSVersion, TextHoldsNoDateAndNoTime) {
    EXPECT_THAT(versionText, Not(ContainsRegex("(19|20)[0-9][0-9]")));
    EXPECT_THAT(versionText, Not(ContainsRegex("[0-9]:[0-9]")));
    EXPECT_THAT(versionText, Not(ContainsRegex("Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec")));
}

}  // namespace
