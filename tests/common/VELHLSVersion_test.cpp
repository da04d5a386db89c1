#include "velhls/common/VELHLSVersion.h"

#include <regex>
#include <string>

#include <gtest/gtest.h>

namespace {

const std::string versionText = ZORHLSManifestLibVersionString;

bool textHolds(const std::string& pattern) {
    return std::regex_search(versionText, std::regex(pattern));
}

TEST(VELHLSVersion, NumberIsOne) {
    EXPECT_EQ(ZORHLSManifestLibVersionNumber, 1.0);
}

TEST(VELHLSVersion, TextBeginsWithTheLibrarysNameAndSemanticVersion) {
    EXPECT_TRUE(textHolds(R"(^velhls (0|[1-9][0-9]*)\.(0|[1-9][0-9]*)\.(0|[1-9][0-9]*) )")) << versionText;
}

TEST(VELHLSVersion, TextNamesCompilerAndBuildType) {
    EXPECT_TRUE(textHolds(R"( \((GNU|Clang) [0-9]+\.[0-9]+\.[0-9]+, [A-Za-z ]+\)$)")) << versionText;
}

// A build must not tell where it was made: two machines build the same text.
TEST(VELHLSVersion, TextHoldsNoPath) {
    EXPECT_EQ(versionText.find_first_of("/\\~@"), std::string::npos) << versionText;
}

TEST(VELHLSVersion, TextHoldsNoDateAndNoTime) {
    EXPECT_FALSE(textHolds("(19|20)[0-9][0-9]")) << versionText;
    EXPECT_FALSE(textHolds("[0-9]:[0-9]")) << versionText;
    EXPECT_FALSE(textHolds("Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec")) << versionText;
}

}  // namespace
