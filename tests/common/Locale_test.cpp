// Playlists are the same bytes in every country: neither the C library's locale nor the C++ one may change
// what is read or written.

#include <locale>
#include <sstream>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "velhls/VELHLS.h"

#include "tests/support/LocaleTest.h"
#include "tests/support/PlaylistText.h"

namespace {

const std::string manifestText = playlist::lines({
    "#EXTM3U",
    "#EXT-X-VERSION:1234567",
    "#EXT-X-START:TIME-OFFSET=-1234.5,PRECISE=YES",
    "#EXT-X-STREAM-INF:BANDWIDTH=12345678,AVERAGE-BANDWIDTH=1234567,CLOSED-CAPTIONS=NONE",
    "low.m3u8",
});

const std::string mediaText = playlist::lines({
    "#EXTM3U",
    "#EXT-X-VERSION:1234567",
    "#EXT-X-TARGETDURATION:1234.75",
    "#EXT-X-MEDIA-SEQUENCE:7654321",
    "#EXT-X-DISCONTINUITY-SEQUENCE:4321",
    "#EXT-X-START:TIME-OFFSET=2.25",
    "#EXT-X-PROGRAM-DATE-TIME:2020-01-01T10:00:15.250+00:00",
    "#EXTINF:6.006,",
    "#EXT-X-BYTERANGE:123456@7654321",
    "segment1.ts",
    "#EXTINF:1234.5",
    "segment2.ts",
    "#EXT-X-ENDLIST",
});

const std::string mediaTextWritten = playlist::lines({
    "#EXTM3U",
    "#EXT-X-VERSION:1234567",
    "#EXT-X-TARGETDURATION:1234",
    "#EXT-X-MEDIA-SEQUENCE:7654321",
    "#EXT-X-DISCONTINUITY-SEQUENCE:4321",
    "#EXT-X-START:TIME-OFFSET=2.25",
    "#EXT-X-PROGRAM-DATE-TIME:2020-01-01T10:00:15.250+00:00",
    "#EXTINF:6.006000,,",
    "#EXT-X-BYTERANGE:123456@7654321",
    "segment1.ts",
    "#EXT-X-PROGRAM-DATE-TIME:2020-01-01T10:00:21.256+00:00",
    "#EXTINF:1234.500000",
    "segment2.ts",
    "#EXT-X-ENDLIST",
});

template <typename Playlist>
std::string written(const Playlist& playlist) {
    // Made here, so that it takes on the process' locale.
    std::ostringstream out;
    EXPECT_EQ(playlist.render(out), 0);
    return out.str();
}

/// What every test here demands of the locale that it has set.
void expectPlaylistsAreReadAndWrittenAsEver() {
    std::istringstream manifestInput(manifestText);
    const auto manifest = VELHLSParsedManifest::parseManifest(manifestInput, nullptr);
    ASSERT_NE(manifest, nullptr);
    EXPECT_EQ(manifest->version, 1234567);
    EXPECT_EQ(manifest->startTimeOffset, -1234.5);
    EXPECT_EQ(written(*manifest), manifestText);

    std::istringstream mediaInput(mediaText);
    const auto stream = VELHLSMediaStream::parseMediaStream(mediaInput, nullptr);
    ASSERT_NE(stream, nullptr);
    ASSERT_EQ(stream->segments.size(), 2U);
    EXPECT_EQ(stream->targetDuration, 1234.75);
    EXPECT_EQ(stream->startTimeOffset, 2.25);
    EXPECT_EQ(stream->segments[0]->duration, 6.006);
    EXPECT_EQ(stream->segments[0]->programDateTime, 1577872815.25);
    EXPECT_EQ(stream->segments[1]->duration, 1234.5);
    EXPECT_EQ(written(*stream), mediaTextWritten);

    EXPECT_EQ(VELHLSUtility::parseTimestamp("2020-01-01T10:00:05.250Z"), 1577872805.25);
    std::string timestamp;
    VELHLSUtility::renderTimestamp(1577872805.25, timestamp);
    EXPECT_EQ(timestamp, "2020-01-01T10:00:5.250+00:00");
}

TEST_F(LocaleTest, PlaylistsAreReadAndWrittenInTheClassicLocale) {
    expectPlaylistsAreReadAndWrittenAsEver();
}

TEST_F(LocaleTest, PlaylistsAreTheSameInALocaleWithADecimalComma) {
    const std::string name = setLocaleWithDecimalComma();
    if (name.empty()) GTEST_SKIP() << "no locale with a decimal comma is installed";
    expectPlaylistsAreReadAndWrittenAsEver();

    try {
        std::locale::global(std::locale(name));
    } catch (const std::runtime_error&) {
        GTEST_SKIP() << "the standard library knows no locale but \"C\"";
    }
    std::ostringstream number;
    number << 1234.5;
    ASSERT_NE(number.str(), "1234.5");
    expectPlaylistsAreReadAndWrittenAsEver();
}

class CommaAndGroups : public std::numpunct<char> {
  protected:
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST_F(LocaleTest, PlaylistsAreTheSameInAStreamLocaleWithDecimalCommaAndDigitGroups) {
    std::locale::global(std::locale(std::locale::classic(), new CommaAndGroups));
    std::ostringstream number;
    number << 1234.5;
    ASSERT_EQ(number.str(), "1.234,5");
    expectPlaylistsAreReadAndWrittenAsEver();
}

}  // namespace
