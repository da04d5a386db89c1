// A real packager: ffmpeg writes live playlists, whose versions are recorded while it runs.
#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/comparison/Updates.h"
#include "tests/support/PlaylistText.h"
#include "tests/support/RunCommand.h"

namespace comparison_test {
namespace {

/// Runs ffmpeg so many times, each one going on with the playlist of the one before, and records every version that is there.
std::vector<std::string> recorded(int runs, const std::string& seconds, const std::string& options) {
    const command::TemporaryFolder folder;
    const std::string script =
        "cd " + folder.path() +
        " && mkdir versions\n"
        "(for run in $(seq " +
        std::to_string(runs) +
        "); do\n"
        "  ffmpeg -nostdin -v error -readrate 4 -f lavfi -i testsrc2=size=64x36:rate=10 -t " +
        seconds + " -c:v mpeg2video -g 10 -f hls -hls_time 1 -hls_list_size 5 " + options +
        " live.m3u8\n"
        "done; touch stop) &\n"
        "number=1000\n"
        "record() {\n"
        "  if [ -e live.m3u8 ] && ! cmp -s live.m3u8 last; then\n"
        "    cp live.m3u8 last && cp last versions/$number && number=$((number + 1))\n"
        "  fi\n"
        "}\n"
        "while [ ! -e stop ]; do\n"
        "  record\n"
        "  sleep 0.03\n"
        "done\n"
        "wait\n"
        "record\n";
    const command::Outcome outcome = command::run({"/bin/sh", "-c", script});
    EXPECT_EQ(outcome.errors, "");
    std::vector<std::string> paths;
    for (const auto& entry : std::filesystem::directory_iterator(folder.file("versions")))
        paths.push_back(entry.path().string());
    std::sort(paths.begin(), paths.end());
    std::vector<std::string> versions;
    for (const std::string& path : paths)
        versions.push_back(playlist::contentOf(path));
    return versions;
}

bool hasPackager() {
    return command::run({"/bin/sh", "-c", "ffmpeg -version"}).exitStatus == 0;
}

/// The rules of all findings between a version and the next, and between it and the one after that.
std::string rulesIn(const std::vector<std::string>& versions) {
    std::vector<VELHLSFinding> all;
    for (std::size_t index = 1; index < versions.size(); ++index) {
        for (const std::size_t step : {std::size_t{1}, std::min<std::size_t>(index, 2)}) {
            const auto findings = compared({versions[index - step], versions[index]}).findings;
            all.insert(all.end(), findings.begin(), findings.end());
        }
    }
    return comparison_test::rulesIn(all);
}

TEST(RecordedPackager, LiveVersionsAreNotFoundToDoWrong) {
    if (!hasPackager()) GTEST_SKIP() << "ffmpeg is not on PATH";
    const auto versions = recorded(1, "12", "-hls_flags delete_segments+program_date_time+temp_file");
    EXPECT_GE(versions.size(), 6U);
    EXPECT_NE(versions.back().find("#EXT-X-ENDLIST"), std::string::npos);
    EXPECT_NE(versions.back().find("#EXT-X-MEDIA-SEQUENCE:7"), std::string::npos) << versions.back();
    EXPECT_EQ(rulesIn(versions), "");
}

/// ffmpeg begins each run with a discontinuity, and writes no EXT-X-DISCONTINUITY-SEQUENCE, which RFC 8216 wants: that is found, and
/// nothing else.
TEST(RecordedPackager, LiveVersionsWithDiscontinuitiesAreFoundToLackTheirNumber) {
    if (!hasPackager()) GTEST_SKIP() << "ffmpeg is not on PATH";
    auto versions = recorded(
        3, "5", "-hls_flags delete_segments+append_list+omit_endlist+temp_file -hls_segment_type mpegts");
    ASSERT_GE(versions.size(), 6U);
    EXPECT_EQ(rulesIn(versions), "discontinuity-sequence-missing-after-removal");
    const std::string discontinuity = "#EXT-X-DISCONTINUITY\n";
    EXPECT_NE(versions.back().find(discontinuity), std::string::npos) << versions.back();
}

TEST(RecordedPackager, AnEventIsNotFoundToDoWrong) {
    if (!hasPackager()) GTEST_SKIP() << "ffmpeg is not on PATH";
    const auto versions =
        recorded(1, "6", "-hls_playlist_type event -hls_flags temp_file -hls_segment_type fmp4 -strict -2");
    ASSERT_GE(versions.size(), 3U);
    EXPECT_NE(versions.back().find("#EXT-X-PLAYLIST-TYPE:EVENT"), std::string::npos);
    EXPECT_EQ(rulesIn(versions), "");
}

}  // namespace
}  // namespace comparison_test
