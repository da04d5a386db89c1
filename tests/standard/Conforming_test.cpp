#include <string>

#include <gtest/gtest.h>

#include "tests/standard/Breach.h"

namespace standard_test {
namespace {

using StandardProfile = VELHLSStandard::Profile;

struct Conforming {
    const char* what;
    std::string text;
};

/// A media playlist of one segment and its end, with these lines after its header.
std::string ofOne(const std::string& lines) {
    return "#EXTM3U\n#EXT-X-TARGETDURATION:6\n" + lines + "#EXT-X-ENDLIST\n";
}

/// A master playlist of one variant with these attributes, and these lines before it.
std::string ofVariant(const std::string& attributes, const std::string& lines = "") {
    return "#EXTM3U\n" + lines + "#EXT-X-STREAM-INF:BANDWIDTH=1280000,CODECS=\"avc1.4d401e,mp4a.40.2\"" +
           attributes + "\nlow.m3u8\n";
}

std::vector<Conforming> conforming() {
    const std::string audio =
        "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"English\",LANGUAGE=\"en\",CHANNELS=\"2\"";
    return {
        // RFC 8216, section 8, where its examples keep its own rules, or with what they lack.
        {"8.1",
         "#EXTM3U\n#EXT-X-TARGETDURATION:10\n#EXT-X-VERSION:3\n#EXTINF:9.009,\nhttp://media.example.com/"
         "first.ts\n"
         "#EXTINF:9.009,\nhttp://media.example.com/second.ts\n#EXTINF:3.003,\nhttp://media.example.com/"
         "third.ts\n#EXT-X-ENDLIST\n"},
        {"8.3",
         "#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-MEDIA-SEQUENCE:7794\n#EXT-X-TARGETDURATION:15\n"
         "#EXT-X-KEY:METHOD=AES-128,URI=\"https://priv.example.com/key.php?r=52\"\n#EXTINF:2.833,\nhttp://"
         "media.example.com/fileSequence52-A.ts\n"
         "#EXTINF:15.0,\nhttp://media.example.com/fileSequence52-B.ts\n#EXTINF:13.333,\nhttp://"
         "media.example.com/fileSequence52-C.ts\n"
         "#EXT-X-KEY:METHOD=AES-128,URI=\"https://priv.example.com/key.php?r=53\"\n#EXTINF:15.0,\nhttp://"
         "media.example.com/fileSequence53-A.ts\n"},
        {"8.5, with codecs",
         "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1280000,CODECS=\"avc1.4d401e,mp4a.40.2\"\nlow/"
         "audio-video.m3u8\n"
         "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=86000,URI=\"low/"
         "iframe.m3u8\"\n#EXT-X-STREAM-INF:BANDWIDTH=65000,CODECS=\"mp4a.40.5\"\naudio-only.m3u8\n"},
        {"8.10, with sections that decode", dateRanges},
        // The order of tags is free.
        {"a date range after EXTINF",
         "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXT-X-PROGRAM-DATE-TIME:2026-11-21T10:00:00.000Z\n#EXTINF:6,\n"
         "#EXT-X-DATERANGE:ID=\"a\",START-DATE=\"2026-11-21T10:00:00.000Z\"\nfirst.ts\n#EXT-X-ENDLIST\n"},
        {"an unknown tag between EXTINF and the URI", ofOne("#EXTINF:6,\n#EXT-X-NEW:1\nfirst.ts\n")},
        {"unknown bare tags", ofOne("#EXTINF:6,\n#EXT-X-NEW\nfirst.ts\n#EXT-X-NEWER\n")},
        {"an unknown bare tag in a master playlist", ofVariant("", "#EXT-X-NEW\n")},
        {"comments that name tags",
         ofOne("#EXTINF:6,\nfirst.ts\n# EXTINF\n##EXTINF\n#extinf and more\n#e\n#\n")},
        {"a comment between EXTINF and the URI", ofOne("#EXTINF:6,\n# by hand\nfirst.ts\n")},
        {"a comment and a blank line before a variant's URI",
         "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"mp4a.40.2\"\n# low\n\nlow.m3u8\n"},
        {"short URIs", ofOne("#EXTINF:6,\na\n#EXTINF:6,\n0.ts\n")},
        {"no line feed after the last URI", "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXTINF:6,\nfirst.ts"},
        {"no line feed after the end",
         "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXTINF:6,\nfirst.ts\n#EXT-X-ENDLIST"},
        {"no line feed at the end of a master playlist",
         "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"mp4a.40.2\"\nlow.m3u8"},
        {"CRLF", "#EXTM3U\r\n#EXT-X-TARGETDURATION:6\r\n#EXTINF:6,\r\nfirst.ts\r\n#EXT-X-ENDLIST\r\n"},
        {"blank lines",
         "#EXTM3U\n\n#EXT-X-TARGETDURATION:6\n\n#EXTINF:6,\n\nfirst.ts\n\n\n#EXT-X-ENDLIST\n\n"},
        {"the end before the segments",
         "#EXTM3U\n#EXT-X-ENDLIST\n#EXT-X-TARGETDURATION:6\n#EXTINF:6,\nfirst.ts\n"},
        {"a version after the segments", ofOne("#EXTINF:6.0,\nfirst.ts\n#EXT-X-VERSION:3\n")},
        {"a target duration after the segments",
         "#EXTM3U\n#EXTINF:6,\nfirst.ts\n#EXT-X-TARGETDURATION:6\n#EXT-X-ENDLIST\n"},
        {"a target duration between EXTINF and the URI",
         "#EXTM3U\n#EXTINF:6,\n#EXT-X-TARGETDURATION:6\nfirst.ts\n#EXT-X-ENDLIST\n"},
        {"tags of segments before the target duration",
         "#EXTM3U\n#EXT-X-VERSION:6\n#EXT-X-PROGRAM-DATE-TIME:2026-11-21T10:00:00.000Z\n"
         "#EXT-X-KEY:METHOD=SAMPLE-AES,URI=\"k\"\n#EXT-X-MAP:URI=\"a\"\n#EXT-X-INDEPENDENT-SEGMENTS\n#EXT-X-"
         "TARGETDURATION:6\n#EXTINF:6,\nfirst.mp4\n#EXT-X-ENDLIST\n"},
        {"a discontinuity after the last segment of a live playlist",
         "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXT-X-MEDIA-SEQUENCE:8\n"
         "#EXTINF:6,\n8.ts\n#EXTINF:6,\n9.ts\n#EXTINF:6,\n10.ts\n#EXT-X-DISCONTINUITY\n"},
        {"no key after the last segment",
         ofOne("#EXT-X-KEY:METHOD=AES-128,URI=\"k\"\n#EXTINF:6,\nfirst.ts\n#EXT-X-KEY:METHOD=NONE\n")},
        {"a date with an offset",
         ofOne("#EXT-X-PROGRAM-DATE-TIME:2010-02-19T14:54:23.031+08:00\n#EXTINF:6,\nfirst.ts\n")},
        {"a date with an offset without its colon",
         ofOne("#EXT-X-PROGRAM-DATE-TIME:2010-02-19T14:54:23.031+0000\n#EXTINF:6,\nfirst.ts\n")},
        {"a date with microseconds",
         ofOne("#EXT-X-PROGRAM-DATE-TIME:2010-02-19T14:54:23.031415Z\n#EXTINF:6,\nfirst.ts\n")},
        {"titles", ofOne("#EXTINF:6,One, two,\nfirst.ts\n#EXTINF:6, Caf\xC3\xA9 \nsecond.ts\n")},
        {"two keys of two formats", fragments},
        {"a duration of nine decimals",
         "#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:6\n#EXTINF:6.006000001,\nfirst.ts\n#EXT-X-"
         "ENDLIST\n"},
        {"a duration of 0", ofOne("#EXTINF:6,\nfirst.ts\n#EXTINF:0,\nlast.ts\n")},
        {"a live playlist before its first segment",
         "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXT-X-MEDIA-SEQUENCE:8\n"},
        {"a start before the end, not precise", live},
        {"I-frames with ranges", iFrames},
        {"ranges that follow each other", ranges},
        {"a URI that looks like a range", ofOne("#EXTINF:6,\n1000@0\n#EXTINF:6,\nfirst.ts?range=0-999\n")},
        {"groups that differ in URI and CHANNELS", master},
        {"audio without a URI", ofVariant(",AUDIO=\"a\"", audio + "\n")},
        {"a session key", ofVariant("", "#EXT-X-SESSION-KEY:METHOD=AES-128,URI=\"k\"\n")},
        {"FRAME-RATE and HDCP-LEVEL", ofVariant(",FRAME-RATE=25,HDCP-LEVEL=TYPE-0")},
        {"one GROUP-ID for two types",
         ofVariant(",AUDIO=\"a\",SUBTITLES=\"a\"",
                   audio + "\n#EXT-X-MEDIA:TYPE=SUBTITLES,GROUP-ID=\"a\",NAME=\"English\",URI=\"t.m3u8\"\n")},
        {"forced and plain subtitles",
         ofVariant(",SUBTITLES=\"t\"",
                   "#EXT-X-MEDIA:TYPE=SUBTITLES,GROUP-ID=\"t\",NAME=\"English\",LANGUAGE=\"en\",AUTOSELECT="
                   "YES,URI=\"t.m3u8\"\n"
                   "#EXT-X-MEDIA:TYPE=SUBTITLES,GROUP-ID=\"t\",NAME=\"English "
                   "(forced)\",LANGUAGE=\"en\",AUTOSELECT=YES,FORCED=YES,URI=\"f.m3u8\"\n")},
        {"a redundant variant",
         ofVariant("\nhttps://one.example.com/"
                   "low.m3u8\n#EXT-X-STREAM-INF:BANDWIDTH=1280000,CODECS=\"avc1.4d401e,mp4a.40.2\"")},
        {"commas and equals signs in quotes",
         ofVariant("", "#EXT-X-SESSION-DATA:DATA-ID=\"com.example.title\",VALUE=\"a=b,c=d\"\n")},
        {"an IV with 0X",
         "#EXTM3U\n#EXT-X-VERSION:2\n#EXT-X-TARGETDURATION:6\n#EXT-X-KEY:METHOD=AES-128,URI=\"k\",IV="
         "0X000102030405060708090A0B0C0D0E0F\n#EXTINF:6,\nfirst.ts\n#EXT-X-ENDLIST\n"},
        {"a media sequence of an epoch",
         "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXT-X-MEDIA-SEQUENCE:1763719200000\n#EXTINF:6,\na\n#EXTINF:6,"
         "\nb\n#EXTINF:6,\nc\n"},
        {"a bandwidth beyond 32 bits",
         "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=9223372036854775808,CODECS=\"mp4a.40.2\"\nlow.m3u8\n"},
        {"data without another tag of master playlists before it",
         ofVariant("", "#EXT-X-SESSION-DATA:DATA-ID=\"com.example.lyrics\",URI=\"lyrics.json\"\n")},
        {"two characteristics",
         ofVariant(",SUBTITLES=\"t\"",
                   "#EXT-X-MEDIA:TYPE=SUBTITLES,GROUP-ID=\"t\",NAME=\"English\",URI=\"t.m3u8\","
                   "CHARACTERISTICS=\"public.accessibility.transcribes-spoken-dialog,public.accessibility."
                   "describes-music-and-sound\"\n")},
        {"a URI of every character",
         ofOne("#EXTINF:6,\nhttps://user@[2001:db8::1]:8080/a-._~!$&'()*+,;=:@/%20?/?#/?\n")},
        // What only the successor knows.
        {"low latency", lowLatency},
        {"a gap after EXTINF", ofOne("#EXTINF:6,\n#EXT-X-GAP\nfirst.ts\n")},
        {"a bit rate", ofOne("#EXT-X-BITRATE:800\n#EXTINF:6,\nfirst.ts\n")},
        {"an imported variable",
         "#EXTM3U\n#EXT-X-VERSION:8\n#EXT-X-TARGETDURATION:6\n#EXT-X-DEFINE:IMPORT=\"a\"\n#EXTINF:6,\n{$a}/"
         "first.ts\n#EXT-X-ENDLIST\n"},
        {"a variable of the query",
         "#EXTM3U\n#EXT-X-VERSION:11\n#EXT-X-TARGETDURATION:6\n#EXT-X-DEFINE:QUERYPARAM=\"a\"\n#EXTINF:6,"
         "\nfirst.ts?a={$a}\n#EXT-X-ENDLIST\n"},
        {"a variable of a master playlist",
         ofVariant("", "#EXT-X-VERSION:8\n#EXT-X-DEFINE:NAME=\"a\",VALUE=\"b\"\n")},
        {"content steering",
         ofVariant(",PATHWAY-ID=\"CDN-A\"",
                   "#EXT-X-CONTENT-STEERING:SERVER-URI=\"/steering\",PATHWAY-ID=\"CDN-A\"\n")},
        {"attributes of variants",
         ofVariant(
             ",VIDEO-RANGE=PQ,SCORE=2.5,SUPPLEMENTAL-CODECS=\"dvh1.08.07/db4h\",STABLE-VARIANT-ID=\"v1\","
             "ALLOWED-CPC=\"com.example.drm1:SMART-TV/PC\",HDCP-LEVEL=TYPE-1,FRAME-RATE=25.000")},
        {"a video layout", ofVariant(",REQ-VIDEO-LAYOUT=\"CH-STEREO\"", "#EXT-X-VERSION:12\n")},
        {"attributes of renditions",
         ofVariant(",AUDIO=\"a\"",
                   "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"English\",CHANNELS=\"16/JOC\","
                   "STABLE-RENDITION-ID=\"r1\",BIT-DEPTH=16,SAMPLE-RATE=48000\n")},
        {"counter mode",
         "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXT-X-KEY:METHOD=SAMPLE-AES-CTR,URI=\"k\"\n#EXTINF:6,\nfirst."
         "ts\n#EXT-X-ENDLIST\n"},
        {"raw data",
         ofVariant("", "#EXT-X-SESSION-DATA:DATA-ID=\"com.example.title\",URI=\"a\",FORMAT=RAW\n")},
        {"version 8", ofVariant("", "#EXT-X-VERSION:8\n")},
        {"version 12", ofOne("#EXT-X-VERSION:12\n#EXTINF:6.006,\nfirst.ts\n")},
        {"durations that half a second more would not be added to exactly",
         "#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:6900719925474099\n#EXTINF:6900719925474099,"
         "\nfirst.ts\n#EXTINF:0."
         "49999999999999994,\nsecond.ts\n#EXT-X-ENDLIST\n"},
    };
}

class ConformingPlaylists : public testing::TestWithParam<StandardProfile> {};

TEST_P(ConformingPlaylists, HaveNothingAboveANote) {
    for (const Conforming& playlist : conforming()) {
        const auto findings = findingsIn(playlist.text, GetParam());
        EXPECT_EQ(rulesIn(findings, VELHLSFinding::Warning), "") << playlist.what << "\n"
                                                                 << shown(findings) << playlist.text;
    }
}

INSTANTIATE_TEST_SUITE_P(ByBothStandards, ConformingPlaylists,
                         testing::Values(StandardProfile::rfc8216, StandardProfile::rfc8216bis),
                         [](const testing::TestParamInfo<StandardProfile>& profile) {
                             return std::string(VELHLSStandard::nameOf(profile.param));
                         });

TEST(DisputedPlaylists, HaveNoErrors) {
    // RFC 8216, section 8.2: the window is 23.891 seconds long, and three target durations are 24.
    const std::string window =
        "#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:8\n#EXT-X-MEDIA-SEQUENCE:2680\n"
        "#EXTINF:7.975,\nhttps://priv.example.com/fileSequence2680.ts\n#EXTINF:7.941,\nhttps://"
        "priv.example.com/fileSequence2681.ts\n"
        "#EXTINF:7.975,\nhttps://priv.example.com/fileSequence2682.ts\n";
    EXPECT_EQ(rulesIn(findingsIn(window, StandardProfile::rfc8216), VELHLSFinding::Error), "");
    EXPECT_EQ(rulesIn(findingsIn(window, StandardProfile::rfc8216), VELHLSFinding::Warning),
              "live-window-short");
}

TEST(MalformedDurations, LeaveOpenWhatAStartIsBeyond) {
    const auto rulesOf = [](const std::string& duration) {
        const std::string text =
            "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXT-X-START:TIME-OFFSET=10\n#EXTINF:" + duration +
            ",\na.ts\n#EXT-X-ENDLIST\n";
        return rulesIn(findingsIn(text, StandardProfile::rfc8216), VELHLSFinding::Warning);
    };
    EXPECT_EQ(rulesOf("6"), "start-beyond-playlist");
    EXPECT_EQ(rulesOf("0"), "start-beyond-playlist");
    EXPECT_EQ(rulesOf("six"), "extinf-duration-malformed");
}

TEST(TagsOfTheSuccessor, AreMissedInSmallLettersByItselfAlone) {
    const std::string text = ofOne("#EXTINF:6,\nfirst.ts\n#ext-x-gap\n");
    EXPECT_EQ(rulesIn(findingsIn(text, StandardProfile::rfc8216), VELHLSFinding::Note), "");
    EXPECT_EQ(rulesIn(findingsIn(text, StandardProfile::rfc8216bis), VELHLSFinding::Note), "tag-misspelled");
}

TEST(InstreamIdOfAudio, IsForbiddenByRfc8216AndAllowedByItsSuccessor) {
    const std::string text = ofVariant(",AUDIO=\"a\"",
                                       "#EXT-X-VERSION:13\n#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"b\","
                                       "CHANNELS=\"2\",INSTREAM-ID=\"1\"\n");
    EXPECT_EQ(rulesIn(findingsIn(text, StandardProfile::rfc8216), VELHLSFinding::Warning),
              "rendition-instream-id-elsewhere");
    EXPECT_EQ(rulesIn(findingsIn(text, StandardProfile::rfc8216bis), VELHLSFinding::Warning), "");
}

}  // namespace
}  // namespace standard_test
