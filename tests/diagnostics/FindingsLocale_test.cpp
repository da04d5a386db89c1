// What findings say is the same in every country.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/VELHLSCheck.h"

#include "tests/support/LocaleTest.h"

namespace {

const char* const shortMedia =
    "#EXTM3U\n#EXT-X-TARGETDURATION:4\n#EXT-X-START:TIME-OFFSET=12.5\n#EXTINF:2.25,\n0.ts\n#EXTINF:3,\n1."
    "ts\n";

std::string messageOf(const std::vector<VELHLSFinding>& findings, const std::string& ruleId) {
    for (const VELHLSFinding& finding : findings) {
        if (finding.ruleId == ruleId) return finding.message;
    }
    return "no finding of " + ruleId;
}

std::vector<VELHLSFinding> findingsOf(const char* text, VELHLSDiagnostics::Profile profile) {
    VELHLSDiagnostics::Options options;
    options.profiles = {profile};
    return VELHLSDiagnostics::check(std::string_view(text), options).findings;
}

TEST_F(LocaleTest, FindingsShowSecondsWithADecimalPointInALocaleWithADecimalComma) {
    if (setLocaleWithDecimalComma().empty()) GTEST_SKIP() << "no locale with a decimal comma is installed";
    using Profile = VELHLSDiagnostics::Profile;
    EXPECT_EQ(messageOf(findingsOf(shortMedia, Profile::rfc8216), "start-beyond-playlist"),
              "EXT-X-START: TIME-OFFSET: expected no more than the playlist's duration, 5.25 seconds, seen "
              "\"12.5\"");
    EXPECT_EQ(messageOf(findingsOf(shortMedia, Profile::apple), "authoring-segment-durations"),
              "EXTINF: expected segments of about 6 seconds, seen 2.25 seconds on average");
    EXPECT_EQ(
        messageOf(findingsOf("#EXTM3U\n#EXTINF:2.250s,\nfirst.ts\n", Profile::library), "number-not-decimal"),
        "EXTINF: expected a decimal number and nothing else, seen \"2.250s\", read as 2.25");

    VELHLSComparison::Options options;
    options.elapsedSeconds = 60.5;
    const std::string grown = std::string(shortMedia) + "#EXTINF:4,\n2.ts\n";
    const auto compared =
        VELHLSComparison::compare(VELHLSDocument(shortMedia), VELHLSDocument(grown), options);
    ASSERT_TRUE(compared);
    EXPECT_EQ(messageOf(compared->findings, "new-version-late"),
              "EXT-X-TARGETDURATION: expected a new version no later than 1.5 target durations after the "
              "last, seen 1 "
              "new segment in 60.5 seconds");
}

}  // namespace
