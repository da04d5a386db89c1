#include "tests/standard/Breach.h"

#include <stdexcept>

namespace standard_test {

const char* const vod =
    "#EXTM3U\n"
    "#EXT-X-VERSION:3\n"
    "#EXT-X-TARGETDURATION:6\n"
    "#EXT-X-PLAYLIST-TYPE:VOD\n"
    "#EXT-X-INDEPENDENT-SEGMENTS\n"
    "#EXT-X-START:TIME-OFFSET=1.5,PRECISE=NO\n"
    "#EXTINF:6.006,Intro\n"
    "first.ts\n"
    "#EXTINF:5.005,\n"
    "second.ts\n"
    "#EXTINF:4.5,\n"
    "third.ts\n"
    "#EXT-X-ENDLIST\n";

const char* const live =
    "#EXTM3U\n"
    "#EXT-X-VERSION:3\n"
    "#EXT-X-TARGETDURATION:6\n"
    "#EXT-X-MEDIA-SEQUENCE:100\n"
    "#EXT-X-DISCONTINUITY-SEQUENCE:4\n"
    "#EXT-X-START:TIME-OFFSET=-18.5\n"
    "#EXT-X-PROGRAM-DATE-TIME:2026-11-21T10:00:00.000Z\n"
    "#EXTINF:6.006,\n"
    "100.ts\n"
    "#EXTINF:6.006,\n"
    "101.ts\n"
    "#EXT-X-DISCONTINUITY\n"
    "#EXT-X-PROGRAM-DATE-TIME:2026-11-21T10:00:12.012Z\n"
    "#EXTINF:6.006,\n"
    "102.ts\n"
    "#EXTINF:6.006,\n"
    "103.ts\n";

const char* const ranges =
    "#EXTM3U\n"
    "#EXT-X-VERSION:4\n"
    "#EXT-X-TARGETDURATION:6\n"
    "#EXTINF:6.006,\n"
    "#EXT-X-BYTERANGE:1000@0\n"
    "all.ts\n"
    "#EXTINF:6.006,\n"
    "#EXT-X-BYTERANGE:1000\n"
    "all.ts\n"
    "#EXTINF:6.006,\n"
    "#EXT-X-BYTERANGE:1000@0\n"
    "other.ts\n"
    "#EXT-X-ENDLIST\n";

const char* const fragments =
    "#EXTM3U\n"
    "#EXT-X-VERSION:6\n"
    "#EXT-X-TARGETDURATION:6\n"
    "#EXT-X-KEY:METHOD=AES-128,URI=\"key\",IV=0x000102030405060708090A0B0C0D0E0F\n"
    "#EXT-X-MAP:URI=\"init.mp4\",BYTERANGE=\"720@0\"\n"
    "#EXTINF:6.006,\n"
    "first.m4s\n"
    "#EXT-X-KEY:METHOD=NONE\n"
    "#EXT-X-DISCONTINUITY\n"
    "#EXT-X-MAP:URI=\"other.mp4\"\n"
    "#EXTINF:6.006,\n"
    "second.m4s\n"
    "#EXT-X-KEY:METHOD=SAMPLE-AES,URI=\"key\",KEYFORMAT=\"identity\",KEYFORMATVERSIONS=\"1/2\"\n"
    "#EXT-X-KEY:METHOD=SAMPLE-AES,URI=\"skd://key\",KEYFORMAT=\"com.example\",KEYFORMATVERSIONS=\"1\"\n"
    "#EXTINF:6.006,\n"
    "third.m4s\n"
    "#EXT-X-ENDLIST\n";

const char* const iFrames =
    "#EXTM3U\n"
    "#EXT-X-VERSION:4\n"
    "#EXT-X-TARGETDURATION:6\n"
    "#EXT-X-I-FRAMES-ONLY\n"
    "#EXTINF:2.002,\n"
    "#EXT-X-BYTERANGE:1000@376\n"
    "all.ts\n"
    "#EXTINF:2.002,\n"
    "#EXT-X-BYTERANGE:900@20000\n"
    "all.ts\n"
    "#EXT-X-ENDLIST\n";

const char* const dateRanges =
    "#EXTM3U\n"
    "#EXT-X-VERSION:3\n"
    "#EXT-X-TARGETDURATION:6\n"
    "#EXT-X-PROGRAM-DATE-TIME:2026-11-21T10:00:00.000Z\n"
    "#EXT-X-DATERANGE:ID=\"ad\",CLASS=\"ads\",START-DATE=\"2026-11-21T10:00:01.000Z\",PLANNED-DURATION=2.5,"
    "SCTE35-OUT=0xFC302000000000000000FFF00F05000000017FFFFE00000000000100000000ABCDEF01\n"
    "#EXTINF:6.006,\n"
    "first.ts\n"
    "#EXT-X-DATERANGE:ID=\"ad\",START-DATE=\"2026-11-21T10:00:01.000Z\",END-DATE=\"2026-11-21T10:00:03."
    "500Z\","
    "DURATION=2.5,SCTE35-IN=0xFC302000000000000000FFF00F05000000017F7FFE00000000000100000000ABCDEF01\n"
    "#EXT-X-DATERANGE:ID=\"song-1\",CLASS=\"songs\",START-DATE=\"2026-11-21T10:00:00.000Z\",END-ON-NEXT=YES,"
    "X-COM-EXAMPLE-TITLE=\"A song\"\n"
    "#EXT-X-DATERANGE:ID=\"song-2\",CLASS=\"songs\",START-DATE=\"2026-11-21T10:00:02.000Z\",DURATION=1\n"
    "#EXT-X-DATERANGE:ID=\"song-3\",CLASS=\"songs\",START-DATE=\"2026-11-21T10:00:04.000Z\"\n"
    "#EXTINF:6.006,\n"
    "second.ts\n"
    "#EXT-X-ENDLIST\n";

const char* const master =
    "#EXTM3U\n"
    "#EXT-X-VERSION:7\n"
    "#EXT-X-INDEPENDENT-SEGMENTS\n"
    "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"stereo\",NAME=\"English\",LANGUAGE=\"en\",DEFAULT=YES,AUTOSELECT=YES,"
    "CHANNELS=\"2\",URI=\"en.m3u8\"\n"
    "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"stereo\",NAME=\"Deutsch\",LANGUAGE=\"de\",AUTOSELECT=YES,CHANNELS="
    "\"2\",URI=\"de.m3u8\"\n"
    "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"surround\",NAME=\"English\",LANGUAGE=\"en\",DEFAULT=YES,AUTOSELECT="
    "YES,CHANNELS=\"6\",URI=\"en6.m3u8\"\n"
    "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"surround\",NAME=\"Deutsch\",LANGUAGE=\"de\",AUTOSELECT=YES,CHANNELS="
    "\"6\",URI=\"de6.m3u8\"\n"
    "#EXT-X-MEDIA:TYPE=SUBTITLES,GROUP-ID=\"text\",NAME=\"English\",LANGUAGE=\"en\",ASSOC-LANGUAGE=\"cy\","
    "FORCED=NO,"
    "CHARACTERISTICS=\"public.accessibility.transcribes-spoken-dialog,public.easy-to-read\",URI=\"text."
    "m3u8\"\n"
    "#EXT-X-MEDIA:TYPE=CLOSED-CAPTIONS,GROUP-ID=\"captions\",NAME=\"English\",LANGUAGE=\"en\",INSTREAM-ID="
    "\"SERVICE1\"\n"
    "#EXT-X-SESSION-DATA:DATA-ID=\"com.example.title\",VALUE=\"A title\",LANGUAGE=\"en\"\n"
    "#EXT-X-SESSION-DATA:DATA-ID=\"com.example.lyrics\",URI=\"lyrics.json\"\n"
    "#EXT-X-SESSION-KEY:METHOD=AES-128,URI=\"key\",IV=0x000102030405060708090A0B0C0D0E0F,KEYFORMAT="
    "\"identity\"\n"
    "#EXT-X-STREAM-INF:BANDWIDTH=1280000,AVERAGE-BANDWIDTH=1000000,CODECS=\"avc1.4d401e,mp4a.40.2\","
    "RESOLUTION=640x360,"
    "FRAME-RATE=29.970,HDCP-LEVEL=NONE,AUDIO=\"stereo\",SUBTITLES=\"text\",CLOSED-CAPTIONS=\"captions\"\n"
    "low.m3u8\n"
    "#EXT-X-STREAM-INF:BANDWIDTH=2560000,CODECS=\"avc1.4d401e,ac-3\",RESOLUTION=1280x720,FRAME-RATE=25,AUDIO="
    "\"surround\"\n"
    "high.m3u8\n"
    "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=86000,CODECS=\"avc1.4d401e\",RESOLUTION=640x360,URI=\"i-frames."
    "m3u8\"\n";

const char* const videoMaster =
    "#EXTM3U\n"
    "#EXT-X-MEDIA:TYPE=VIDEO,GROUP-ID=\"angles\",NAME=\"Stage\",DEFAULT=YES,URI=\"stage.m3u8\"\n"
    "#EXT-X-MEDIA:TYPE=VIDEO,GROUP-ID=\"angles\",NAME=\"Crowd\",URI=\"crowd.m3u8\"\n"
    "#EXT-X-MEDIA:TYPE=VIDEO,GROUP-ID=\"i-frames\",NAME=\"Stage\",DEFAULT=YES,URI=\"stage-i.m3u8\"\n"
    "#EXT-X-MEDIA:TYPE=VIDEO,GROUP-ID=\"i-frames\",NAME=\"Crowd\",URI=\"crowd-i.m3u8\"\n"
    "#EXT-X-STREAM-INF:BANDWIDTH=1280000,CODECS=\"avc1.4d401e\",RESOLUTION=640x360,FRAME-RATE=25,VIDEO="
    "\"angles\",CLOSED-CAPTIONS=NONE\n"
    "stage.m3u8\n"
    "#EXT-X-STREAM-INF:BANDWIDTH=1480000,CODECS=\"avc1.4d401e\",RESOLUTION=640x360,FRAME-RATE=25,VIDEO="
    "\"angles\",CLOSED-CAPTIONS=NONE\n"
    "stage-high.m3u8\n"
    "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=86000,CODECS=\"avc1.4d401e\",VIDEO=\"i-frames\",URI=\"stage-i."
    "m3u8\"\n";

const char* const lowLatency =
    "#EXTM3U\n"
    "#EXT-X-VERSION:9\n"
    "#EXT-X-TARGETDURATION:4\n"
    "#EXT-X-PART-INF:PART-TARGET=0.5\n"
    "#EXT-X-SERVER-CONTROL:CAN-BLOCK-RELOAD=YES,CAN-SKIP-UNTIL=24,CAN-SKIP-DATERANGES=YES,HOLD-BACK=12,PART-"
    "HOLD-BACK=1.5\n"
    "#EXT-X-DEFINE:NAME=\"host\",VALUE=\"cdn.example.com\"\n"
    "#EXT-X-MEDIA-SEQUENCE:266\n"
    "#EXT-X-SKIP:SKIPPED-SEGMENTS=3\n"
    "#EXT-X-BITRATE:800\n"
    "#EXTINF:4.0,\n"
    "https://{$host}/269.ts\n"
    "#EXT-X-PROGRAM-DATE-TIME:2026-11-21T10:00:00.000Z\n"
    "#EXT-X-DATERANGE:ID=\"ad\",CLASS=\"com.apple.hls.interstitial\",START-DATE=\"2026-11-21T10:00:01.000Z\","
    "X-ASSET-URI=\"ad.m3u8\",X-RESUME-OFFSET=0\n"
    "#EXT-X-PART:DURATION=0.5,URI=\"270.0.ts\",INDEPENDENT=YES\n"
    "#EXT-X-PART:DURATION=0.5,URI=\"270.1.ts\",BYTERANGE=\"100@0\"\n"
    "#EXT-X-GAP\n"
    "#EXTINF:4.0,\n"
    "270.ts\n"
    "#EXT-X-PART:DURATION=0.5,URI=\"271.0.ts\"\n"
    "#EXT-X-PRELOAD-HINT:TYPE=PART,URI=\"271.1.ts\",BYTERANGE-START=0\n"
    "#EXT-X-RENDITION-REPORT:URI=\"../other/live.m3u8\",LAST-MSN=271,LAST-PART=0\n";

const char* const authoredMaster =
    "#EXTM3U\n"
    "#EXT-X-INDEPENDENT-SEGMENTS\n"
    "#EXT-X-CONTENT-STEERING:SERVER-URI=\"/steering\",PATHWAY-ID=\"a\"\n"
    "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"aac\",NAME=\"English\",LANGUAGE=\"en\",DEFAULT=YES,AUTOSELECT=YES,"
    "CHANNELS=\"2\",URI=\"en.m3u8\"\n"
    "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"aac\",NAME=\"Described\",LANGUAGE=\"en-GB\",AUTOSELECT=YES,CHANNELS="
    "\"2\","
    "CHARACTERISTICS=\"public.accessibility.describes-video\",URI=\"described.m3u8\"\n"
    "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"surround\",NAME=\"English\",LANGUAGE=\"en\",CHANNELS=\"6\",URI=\"en6."
    "m3u8\"\n"
    "#EXT-X-MEDIA:TYPE=SUBTITLES,GROUP-ID=\"text\",NAME=\"English\",LANGUAGE=\"en\",AUTOSELECT=YES,"
    "CHARACTERISTICS=\"public.accessibility.transcribes-spoken-dialog,public.accessibility.describes-music-"
    "and-sound\",URI=\"text.m3u8\"\n"
    "#EXT-X-MEDIA:TYPE=SUBTITLES,GROUP-ID=\"text\",NAME=\"Forced\",LANGUAGE=\"en\",AUTOSELECT=YES,FORCED=YES,"
    "URI=\"forced.m3u8\"\n"
    "#EXT-X-MEDIA:TYPE=CLOSED-CAPTIONS,GROUP-ID=\"captions\",NAME=\"English\",LANGUAGE=\"en\",INSTREAM-ID="
    "\"CC1\"\n"
    "#EXT-X-STREAM-INF:BANDWIDTH=2000000,AVERAGE-BANDWIDTH=1500000,CODECS=\"avc1.64001f,mp4a.40.2\","
    "RESOLUTION=1280x720,FRAME-RATE=30,VIDEO-RANGE=SDR,SCORE=2,AUDIO=\"aac\"\n"
    "mid.m3u8\n"
    "#EXT-X-STREAM-INF:BANDWIDTH=190000,AVERAGE-BANDWIDTH=150000,CODECS=\"avc1.42e00a,mp4a.40.2\",RESOLUTION="
    "416x234,FRAME-RATE=15,VIDEO-RANGE=SDR,SCORE=1,AUDIO=\"aac\"\n"
    "low.m3u8\n"
    "#EXT-X-STREAM-INF:BANDWIDTH=5000000,AVERAGE-BANDWIDTH=4000000,CODECS=\"hvc1.2.4.L123.B0,ac-3\","
    "RESOLUTION=1920x1080,FRAME-RATE=60,VIDEO-RANGE=SDR,SCORE=3,AUDIO=\"surround\"\n"
    "high.m3u8\n"
    "#EXT-X-STREAM-INF:BANDWIDTH=6000000,AVERAGE-BANDWIDTH=5000000,CODECS=\"hvc1.2.4.L123.B0,ec-3\","
    "RESOLUTION=1920x1080,FRAME-RATE=60,VIDEO-RANGE=PQ,SCORE=4,AUDIO=\"surround\"\n"
    "highest.m3u8\n"
    "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=200000,CODECS=\"avc1.64001f\",RESOLUTION=1280x720,VIDEO-RANGE=SDR,"
    "URI=\"mid-i.m3u8\"\n"
    "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=50000,CODECS=\"hvc1.2.4.L123.B0\",RESOLUTION=416x234,VIDEO-RANGE=PQ,"
    "URI=\"low-i.m3u8\"\n"
    "#EXT-X-SESSION-KEY:METHOD=SAMPLE-AES,URI=\"skd://key\",KEYFORMAT=\"com.apple.streamingkeydelivery\"\n";

const char* const authoredVod =
    "#EXTM3U\n"
    "#EXT-X-VERSION:6\n"
    "#EXT-X-TARGETDURATION:6\n"
    "#EXT-X-PLAYLIST-TYPE:VOD\n"
    "#EXT-X-MAP:URI=\"init.mp4\"\n"
    "#EXTINF:6.006,\n"
    "https://example.com/first.m4s\n"
    "#EXTINF:6.006,\n"
    "second.m4s\n"
    "#EXT-X-ENDLIST\n";

const std::string authoredLive = [] {
    std::string text =
        "#EXTM3U\n"
        "#EXT-X-VERSION:3\n"
        "#EXT-X-TARGETDURATION:6\n"
        "#EXT-X-PART-INF:PART-TARGET=1\n"
        "#EXT-X-SERVER-CONTROL:CAN-SKIP-UNTIL=36,PART-HOLD-BACK=3\n"
        "#EXT-X-DISCONTINUITY-SEQUENCE:0\n"
        "#EXT-X-PROGRAM-DATE-TIME:2026-11-21T10:00:00.000Z\n"
        "#EXT-X-DISCONTINUITY\n";
    constexpr int segments = 150;
    for (int segment = 0; segment < segments; ++segment)
        text += "#EXTINF:6.006,\n" + std::to_string(segment) + ".ts\n";
    return text;
}();

std::string Breach::broken() const {
    std::string result = playlist;
    const std::size_t place = result.find(text);
    if (place == std::string::npos) throw std::logic_error(what + ": the text is not there");
    return result.replace(place, text.size(), replacement);
}

std::vector<Breach> breachesOfRfc8216() {
    std::vector<Breach> all;
    for (const auto& table :
         {textBreaches(), tagBreaches(), attributeBreaches(), versionBreaches(), segmentBreaches(),
          keyBreaches(), dateBreaches(), dateRangeBreaches(), mediaPlaylistBreaches(), variantBreaches(),
          renditionBreaches(), sessionBreaches()})
        all.insert(all.end(), table.begin(), table.end());
    return all;
}

std::vector<VELHLSFinding> findingsIn(const std::string& text, VELHLSStandard::Profile profile) {
    return VELHLSStandard::check(VELHLSDocument(text), profile);
}

std::string shown(const std::vector<VELHLSFinding>& findings) {
    std::string text;
    for (const VELHLSFinding& finding : findings)
        text += std::to_string(finding.line) + ":" + std::to_string(finding.column) + " " + finding.ruleId +
                ": " + finding.message + "\n";
    return text;
}

}  // namespace standard_test
