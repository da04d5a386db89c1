// What a check answers by the profiles that are asked for.
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/VELHLS.h"
#include "velhls/VELHLSCheck.h"

#include "tests/support/Corpus.h"
#include "tests/support/PlaylistText.h"

namespace {

using playlist::lines;
using Profile = VELHLSDiagnostics::Profile;
using Report = VELHLSDiagnostics::Report;

/// "profile rule" of each finding of at least a warning, with commas between.
std::string found(const Report& report) {
    std::string list;
    for (const VELHLSFinding& finding : report.findings) {
        if (finding.severity == VELHLSFinding::Note) continue;
        list += (list.empty() ? "" : ", ") + finding.profile + " " + finding.ruleId;
    }
    return list;
}

std::string found(const std::string& text, std::vector<Profile> profiles) {
    return found(VELHLSDiagnostics::check(text, {VELHLSDiagnostics::Detect, std::move(profiles)}));
}

const std::string withoutHeader =
    lines({"#EXT-X-TARGETDURATION:6", "#EXTINF:6,", "first.ts", "#EXT-X-ENDLIST"});
const std::string withShortUri =
    lines({"#EXTM3U", "#EXT-X-TARGETDURATION:6", "#EXTINF:6,", "0.ts", "#EXT-X-ENDLIST"});

TEST(Report, IsByRfc8216UnlessAskedOtherwise) {
    EXPECT_EQ(found(VELHLSDiagnostics::check(withoutHeader)), "rfc8216 header-missing");
    EXPECT_EQ(found(withoutHeader, {Profile::rfc8216}), "rfc8216 header-missing");
}

TEST(Report, NamesTheProfileThatWasAskedFor) {
    EXPECT_EQ(found(withoutHeader, {Profile::rfc8216bis}), "rfc8216bis header-missing");
    EXPECT_EQ(found(withShortUri, {Profile::library}), "library segment-uri-too-short");
    EXPECT_EQ(found(withShortUri, {}), "");
}

TEST(Report, TellsOnceWhatBothStandardsFind) {
    EXPECT_EQ(found(withoutHeader, {Profile::rfc8216bis, Profile::rfc8216}), "rfc8216bis header-missing");
    EXPECT_EQ(found(withoutHeader, {Profile::rfc8216, Profile::rfc8216}), "rfc8216 header-missing");
}

TEST(Report, PutsTheFindingsOfSeveralProfilesInTheOrderOfTheirPlaces) {
    const Report report = VELHLSDiagnostics::check(
        lines({"#EXTM3U", "#EXT-X-TARGETDURATION:5", "#EXTINF:6,", "0.ts", "#EXT-X-VERSION: 3"}),
        {VELHLSDiagnostics::Detect, {Profile::library, Profile::rfc8216}});
    ASSERT_GE(report.findings.size(), 3U);
    for (std::size_t index = 1; index < report.findings.size(); ++index)
        EXPECT_LE(report.findings[index - 1].line, report.findings[index].line);
}

TEST(Report, SaysWhyTheModelsRejectWhateverTheProfiles) {
    for (const std::vector<Profile>& profiles : std::vector<std::vector<Profile>>{
             {}, {Profile::rfc8216}, {Profile::apple}, {Profile::library, Profile::rfc8216bis}}) {
        const Report report = VELHLSDiagnostics::check(withShortUri, {VELHLSDiagnostics::Detect, profiles});
        ASSERT_TRUE(report.rejected.has_value());
        EXPECT_EQ(report.rejected->ruleId, "segment-uri-too-short");
        EXPECT_EQ(report.rejected->line, 4U);
        EXPECT_EQ(report.kind, VELHLSDiagnostics::Media);
    }
    EXPECT_FALSE(VELHLSDiagnostics::check(withoutHeader).rejected.has_value());
}

TEST(Report, RejectsAsTheParsesDo) {
    for (const std::string& text : corpus::texts()) {
        for (const auto kind : {VELHLSDiagnostics::Master, VELHLSDiagnostics::Media}) {
            VELHLSReason reason;
            const bool isAccepted = kind == VELHLSDiagnostics::Master
                                        ? VELHLSParsedManifest::parseManifest(text, &reason) != nullptr
                                        : VELHLSMediaStream::parseMediaStream(text, &reason) != nullptr;
            const Report report = VELHLSDiagnostics::check(text, {kind, {}});
            ASSERT_EQ(report.rejected.has_value(), !isAccepted) << text;
            EXPECT_TRUE(report.findings.empty());
            if (isAccepted) continue;
            EXPECT_EQ(report.rejected->ruleId, reason.ruleId) << text;
            EXPECT_EQ(report.rejected->line, reason.line) << text;
            EXPECT_EQ(report.rejected->column, reason.column) << text;
            EXPECT_EQ(report.rejected->length, reason.length) << text;
            EXPECT_EQ(report.rejected->message, reason.message) << text;
        }
    }
}

TEST(Report, HasOneFindingOfATextThatIsNoPlaylist) {
    for (const auto& profiles : std::vector<std::vector<Profile>>{
             {Profile::rfc8216}, {Profile::apple}, {Profile::library, Profile::rfc8216}}) {
        const Report report = VELHLSDiagnostics::check("<html>\n", {VELHLSDiagnostics::Detect, profiles});
        EXPECT_EQ(report.kind, VELHLSDiagnostics::Detect);
        ASSERT_EQ(report.findings.size(), 1U);
        EXPECT_EQ(report.findings[0].ruleId, "not-a-playlist");
        ASSERT_TRUE(report.rejected.has_value());
        EXPECT_EQ(report.rejected->ruleId, "not-a-playlist");
    }
}

TEST(Report, ReadsAsTheKindThatWasAskedFor) {
    const std::string text = lines({"#EXTM3U", "#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"a\"", "low.m3u8"});
    const Report report = VELHLSDiagnostics::check(text, {VELHLSDiagnostics::Media, {Profile::rfc8216}});
    EXPECT_EQ(report.kind, VELHLSDiagnostics::Media);
    EXPECT_EQ(found(report), "rfc8216 target-duration-missing, rfc8216 tag-of-master-playlist");
}

TEST(Report, OfAStreamIsThatOfItsText) {
    std::istringstream input(withShortUri);
    const Report report = VELHLSDiagnostics::check(input);
    EXPECT_EQ(found(report), "");
    EXPECT_TRUE(report.rejected.has_value());
}

TEST(Profiles, HaveNames) {
    EXPECT_EQ(VELHLSDiagnostics::profiles().size(), 4U);
    for (const Profile profile : VELHLSDiagnostics::profiles())
        EXPECT_EQ(VELHLSDiagnostics::profileNamed(VELHLSDiagnostics::nameOf(profile)), profile);
    EXPECT_EQ(VELHLSDiagnostics::nameOf(Profile::rfc8216bis), "rfc8216bis");
    EXPECT_FALSE(VELHLSDiagnostics::profileNamed("rfc").has_value());
    EXPECT_FALSE(VELHLSDiagnostics::profileNamed("").has_value());
}

TEST(Profiles, GiveEachRuleAClauseButThoseOfTheLibrary) {
    for (const Profile profile : VELHLSDiagnostics::profiles()) {
        for (const VELHLSRule& rule : VELHLSDiagnostics::rules(profile)) {
            const bool isLibrarys = rule.profile == VELHLSDiagnostics::nameOf(Profile::library);
            EXPECT_TRUE(isLibrarys || rule.profile == VELHLSDiagnostics::nameOf(profile)) << rule.id;
            EXPECT_EQ(rule.clause.empty(), isLibrarys) << rule.id;
            EXPECT_EQ(rule.level.empty(), isLibrarys) << rule.id;
        }
    }
}

}  // namespace
