#include <memory>

#include "tests/presentation/Presented.h"

namespace presentation_test {
namespace {

/// What a text of the presentation is replaced by as a whole.
Breach whole(const std::string& what, Texts (*presentation)(), const std::string& uri,
             const std::string& replacement, const std::string& rules, const std::string& foundIn,
             std::size_t line, const std::string& related, std::size_t relatedLine) {
    Texts texts = presentation();
    return {what,    presentation, uri,     textOf(texts, uri), replacement, rules,
            foundIn, line,         related, relatedLine};
}

/// The same for all that stands for one text in it.
Breach everywhere(const std::string& what, Texts (*presentation)(), const std::string& uri,
                  const std::string& text, const std::string& replacement, const std::string& rules,
                  const std::string& foundIn, std::size_t line, const std::string& related,
                  std::size_t relatedLine) {
    Texts texts = replacedEverywhere(presentation(), uri, text, replacement);
    return whole(what, presentation, uri, textOf(texts, uri), rules, foundIn, line, related, relatedLine);
}

const std::string master = "master.m3u8";
const std::string low = "low/video.m3u8";
const std::string mid = "mid/video.m3u8";
const std::string high = "high/video.m3u8";
const std::string english = "audio/en.m3u8";
const std::string german = "audio/de.m3u8";
const std::string iFrames = "low/i-frames.m3u8";
const std::string otherMaster = "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\nother.m3u8\n";
const std::string type = "#EXT-X-PLAYLIST-TYPE:VOD\n";
const std::string date = "#EXT-X-PROGRAM-DATE-TIME:2026-11-21T10:00:";
const std::string range =
    "#EXT-X-DATERANGE:ID=\"ad\",START-DATE=\"2026-11-21T10:00:12.012Z\",DURATION=6.006\n";
const std::string secondHalf =
    "#EXT-X-DISCONTINUITY\n" + date + "12.012Z\n#EXTINF:6.006,\n3.ts\n#EXTINF:6.006,\n4.ts\n";

}  // namespace

std::vector<Breach> breachesOfRfc8216() {
    return {
        whole("a variant that is a master playlist", onDemand, mid, otherMaster,
              "variant-names-master-playlist", master, 12, mid, 1),
        whole("a rendition that is a master playlist", onDemand, german, otherMaster,
              "rendition-names-master-playlist", master, 5, german, 1),
        {"an I-frame variant without I-frames", onDemand, iFrames, "#EXT-X-I-FRAMES-ONLY\n", "",
         "i-frame-variant-without-i-frames", iFrames, 1, master, 15},
        whole("an I-frame variant that is a master playlist", onDemand, iFrames, otherMaster,
              "i-frame-variant-without-i-frames", master, 15, "", 0),
        {"independent segments in both", onDemand, mid, type, type + "#EXT-X-INDEPENDENT-SEGMENTS\n",
         "tag-in-master-and-media", mid, 5, master, 3},
        {"the same start in both", onDemand, mid, type, type + "#EXT-X-START:TIME-OFFSET=6.0,PRECISE=NO\n",
         "tag-in-master-and-media", mid, 5, master, 2},
        {"another start in a media playlist", onDemand, mid, type, type + "#EXT-X-START:TIME-OFFSET=7\n",
         "start-differs-from-master,tag-in-master-and-media", mid, 5, master, 2},
        {"a precise start in a media playlist", onDemand, mid, type,
         type + "#EXT-X-START:TIME-OFFSET=6,PRECISE=YES\n",
         "start-differs-from-master,tag-in-master-and-media", mid, 5, master, 2},
        {"a start beyond the playlists", onDemand, master, "TIME-OFFSET=6", "TIME-OFFSET=25",
         "master-start-beyond-playlist", master, 2, low, 17},
        {"a start before the playlists", onDemand, master, "TIME-OFFSET=6", "TIME-OFFSET=-25",
         "master-start-beyond-playlist", master, 2, low, 17},
        {"a start near the live end", live, master, "TIME-OFFSET=-20", "TIME-OFFSET=-10",
         "master-start-near-live-end", master, 2, "low.m3u8", 20},
        {"a start near the live end, from the beginning", live, master, "TIME-OFFSET=-20", "TIME-OFFSET=20",
         "master-start-near-live-end", master, 2, "low.m3u8", 20},
        {"a session key of another method", onDemand, master, "KEY:METHOD=AES-128", "KEY:METHOD=SAMPLE-AES",
         "session-key-differs-from-key", master, 8, low, 5},
        {"a session key of another format", onDemand, master, "\"keys/1\"",
         "\"keys/1\",KEYFORMAT=\"com.example\"", "session-key-differs-from-key", master, 8, low, 5},
        {"a session key without the versions", onDemand, low, "\"../keys/1\"",
         "\"../keys/1\",KEYFORMATVERSIONS=\"1/2\"", "session-key-differs-from-key", master, 8, low, 5},
        {"a shared key without a session key", onDemand, master,
         "#EXT-X-SESSION-KEY:METHOD=AES-128,URI=\"keys/1\"\n", "", "session-key-missing", master, 1, low, 5},
        {"one key for two HDCP levels", onDemand, high, "keys/2", "keys/1", "hdcp-levels-share-key", master,
         13, low, 5},
        {"a BANDWIDTH below the peak", measured, master, "=2000000", "=1900000", "bandwidth-below-peak",
         master, 4, "low.m3u8", 13},
        {"a BANDWIDTH above the peak", measured, master, "=2000000", "=2300000", "bandwidth-above-peak",
         master, 4, "low.m3u8", 13},
        {"a BANDWIDTH below the peak with its audio", measured, master, "=4200000", "=4100000",
         "bandwidth-below-combination", master, 6, "high.m3u8", 13},
        {"a BANDWIDTH of I-frames below the peak", onDemand, master, "=86000", "=70000",
         "bandwidth-below-peak", master, 15, iFrames, 10},
        {"a BANDWIDTH below the peak that EXT-X-BITRATE tells", estimated, master, "=2000000", "=1700000",
         "bandwidth-below-peak", master, 2, "low.m3u8", 9},
        {"an AVERAGE-BANDWIDTH below the average", measured, master, "=1166667", "=1100000",
         "average-bandwidth-below-average", master, 4, "low.m3u8", 13},
        {"an AVERAGE-BANDWIDTH below the average with its audio", measured, master, "=2533334", "=2400000",
         "average-bandwidth-below-average", master, 6, "high.m3u8", 13},
        {"an AVERAGE-BANDWIDTH above the average", measured, master, "=1166667", "=1400000",
         "average-bandwidth-above-average", master, 4, "low.m3u8", 13},
        {"a group with E-AC-3 that CODECS does not name", onDemand, german, "1.aac", "1.ec3",
         "variant-codecs-without-format-of-group", master, 9, german, 8},
        {"a discontinuity too little", onDemand, mid, "#EXT-X-DISCONTINUITY\n", "", "discontinuities-differ",
         mid, 13, low, 15},
        {"a discontinuity too late", onDemand, mid, secondHalf,
         date + "12.012Z\n#EXTINF:6.006,\n3.ts\n#EXT-X-DISCONTINUITY\n#EXTINF:6.006,\n4.ts\n",
         "discontinuities-differ", mid, 13, low, 15},
        {"another discontinuity sequence from the start", onDemand, mid, type,
         type + "#EXT-X-DISCONTINUITY-SEQUENCE:1\n", "discontinuities-differ", mid, 9, low, 9},
        {"another discontinuity sequence of a live playlist", live, "mid.m3u8", "SEQUENCE:4", "SEQUENCE:5",
         "discontinuities-differ", "mid.m3u8", 8, "low.m3u8", 8},
        {"another discontinuity sequence without dates", liveWithoutDates, "mid.m3u8", "SEQUENCE:4",
         "SEQUENCE:5", "discontinuities-seem-to-differ", "mid.m3u8", 7, "low.m3u8", 7},
        {"a discontinuity too little in a rendition", onDemand, english, "#EXT-X-DISCONTINUITY\n", "",
         "discontinuities-differ", english, 14, low, 15},
        {"another target duration", onDemand, mid, "DURATION:6", "DURATION:8", "target-durations-differ", mid,
         3, low, 3},
        {"another target duration of audio", onDemand, english, "DURATION:6", "DURATION:7",
         "target-durations-differ", english, 3, low, 3},
        whole("another target duration of I-frames that may change", onDemand, iFrames,
              textOf(*std::make_unique<Texts>(replaced(replaced(onDemand(), iFrames, type, ""), iFrames,
                                                       "DURATION:6", "DURATION:2")),
                     iFrames),
              "playlist-type-not-everywhere,target-durations-differ", iFrames, 1, low, 4),
        {"half of the content", onDemand, mid, secondHalf, "", "content-of-one-playlist", mid, 10, low, 17},
        {"half of the content of a rendition", onDemand, german,
         "#EXT-X-DISCONTINUITY\n" + date + "12.012Z\n#EXTINF:6.016,\n3.aac\n#EXTINF:6.016,\n4.aac\n", "",
         "content-of-one-playlist", german, 10, low, 17},
        {"I-frames beyond the video", onDemand, iFrames,
         "#EXTINF:1.001,\n#EXT-X-BYTERANGE:10000@260376\nvideo.ts\n",
         "#EXTINF:12.001,\n#EXT-X-BYTERANGE:10000@260376\nvideo.ts\n", "content-of-subtitles-or-i-frames",
         iFrames, 81, low, 17},
        {"dates of two seconds apart", onDemand, mid, "DATE-TIME:2026-11-21T10:00:00",
         "DATE-TIME:2026-11-21T10:00:02", "date-times-differ", mid, 5, low, 6},
        {"no type in one", onDemand, mid, type, "", "playlist-type-not-everywhere", mid, 1, low, 4},
        {"another type in one", onDemand, mid, ":VOD", ":EVENT", "playlist-types-differ", mid, 4, low, 4},
        whole("no dates in one", onDemand, mid,
              textOf(*std::make_unique<Texts>(replaced(replaced(onDemand(), mid, date + "00.000Z\n", ""), mid,
                                                       date + "12.012Z\n", "")),
                     mid),
              "date-times-not-everywhere", mid, 1, low, 6),
        everywhere("dates an hour apart", onDemand, mid, "DATE-TIME:2026-11-21T10", "DATE-TIME:2026-11-21T11",
                   "date-times-differ", mid, 5, low, 6),
        everywhere("dates an hour apart, live", live, "mid.m3u8", "T10", "T11", "date-times-differ",
                   "mid.m3u8", 6, "low.m3u8", 6),
        {"a later date that does not fit", onDemand, mid, date + "12.012Z", date + "22.012Z",
         "date-times-differ", mid, 12, low, 13},
        {"no date range in one", onDemand, mid, range, "", "date-range-not-everywhere", mid, 1, low, 7},
        {"another duration of the date range", onDemand, mid, "DURATION=6.006", "DURATION=5",
         "date-range-attributes-differ", mid, 6, low, 7},
        {"no duration of the date range", onDemand, mid, ",DURATION=6.006", "",
         "date-range-attributes-differ", mid, 6, low, 7},
        {"no date range in subtitles", onDemand, "text.m3u8", range, "", "date-range-missing-in-rendition",
         "text.m3u8", 1, low, 7},
        {"one that goes on", onDemand, mid, "#EXT-X-ENDLIST\n", "", "ended-not-everywhere", mid, 1, low, 18},
        {"one that has ended", live, "mid.m3u8", "105.ts\n", "105.ts\n#EXT-X-ENDLIST\n",
         "ended-not-everywhere", "mid.m3u8", 21, "low.m3u8", 1},
        {"session data that is no JSON", onDemand, "lyrics.json", "true", "True", "session-data-not-json",
         master, 7, "lyrics.json", 1},
    };
}

std::vector<Breach> breachesOfAuthoringRules() {
    const std::string last = "#EXT-X-BYTERANGE:75000\nall.m4a\n#EXT-X-ENDLIST";
    return {
        {"HEVC in a transport stream", authored, "high.m3u8", "all.m4s", "all.ts",
         "authoring-hevc-in-transport-stream", master, 6, "high.m3u8", 10},
        {"an average that was not measured", authored, master, "AVERAGE-BANDWIDTH=1000000",
         "AVERAGE-BANDWIDTH=800000", "authoring-average-bandwidth-measured", master, 4, "low.m3u8", 9},
        {"a peak that was not measured", authored, master, "BANDWIDTH=1000000", "BANDWIDTH=1200000",
         "authoring-bandwidth-measured", master, 4, "low.m3u8", 9},
        {"a sum that was not measured", authored, master, "BANDWIDTH=2100000", "BANDWIDTH=2400000",
         "authoring-bandwidth-sum", master, 6, "high.m3u8", 10},
        {"audio that is too short", authored, "en.m3u8", "#EXTINF:6.000,\n" + last, "#EXT-X-ENDLIST",
         "authoring-audio-duration,authoring-audio-incomplete,authoring-vod-range", "en.m3u8", 14, "low.m3u8",
         18},
        {"audio that is too long", authored, "en.m3u8", last,
         "#EXT-X-BYTERANGE:75000\nall.m4a\n#EXTINF:6.000,\n" + last,
         "authoring-audio-duration,authoring-vod-range", "en.m3u8", 20, "low.m3u8", 18},
        {"subtitles as SubRip", authored, "text.m3u8", "0.m4s", "0.srt", "authoring-subtitle-format",
         "text.m3u8", 7, "", 0},
        {"subtitles that are too short", authored, "text.m3u8", "#EXTINF:6.000,\n3.m4s\n", "",
         "authoring-subtitles-incomplete,authoring-vod-range", "text.m3u8", 11, "low.m3u8", 18},
        {"other subtitles live", authoredLive, "text.m3u8", "DURATION:6", "DURATION:8",
         "authoring-subtitle-target-duration", "text.m3u8", 3, "low.m3u8", 3},
        {"subtitles that CODECS does not name", authored, master, ",stpp.ttml.im1t", "",
         "authoring-subtitle-codec-missing", master, 8, "text.m3u8", 7},
        everywhere("an I-frame in two seconds", authored, "i-frames.m3u8", "EXTINF:1.000", "EXTINF:2.000",
                   "authoring-bandwidth-measured,authoring-i-frame-interval,authoring-vod-range", master, 10,
                   "i-frames.m3u8", 9),
        {"an I-frame playlist without its tag", authored, "i-frames.m3u8", "#EXT-X-I-FRAMES-ONLY\n", "",
         "authoring-i-frames-only-missing", "i-frames.m3u8", 1, "", 0},
        {"other I-frames live", authoredLive, "i-frames.m3u8", "DURATION:6", "DURATION:2",
         "authoring-i-frame-target-duration", "i-frames.m3u8", 3, "low.m3u8", 3},
        {"another target duration of audio", authored, "en.m3u8", "DURATION:6", "DURATION:7",
         "authoring-audio-target-duration", "en.m3u8", 3, "low.m3u8", 3},
        {"a discontinuity in one variant", authored, "high.m3u8", "#EXTINF", "#EXT-X-DISCONTINUITY\n#EXTINF",
         "authoring-discontinuities-differ", "high.m3u8", 11, "low.m3u8", 9},
        {"other segments in one variant", authored, "text-video.m3u8", "#EXTINF:6.000,\n0.m4s\n#EXTINF:6.000",
         "#EXTINF:4.000,\n0.m4s\n#EXTINF:8.000", "authoring-segment-boundaries", "text-video.m3u8", 10,
         "low.m3u8", 12},
        {"dependent segments", authored, "low.m3u8", "#EXT-X-INDEPENDENT-SEGMENTS\n", "",
         "authoring-video-not-independent", "low.m3u8", 1, master, 1},
        {"no HDCP for HD", authored, master, ",HDCP-LEVEL=TYPE-0", "", "authoring-hdcp-level-missing", master,
         6, "high.m3u8", 6},
        {"too little HDCP above HD", authored, master, "1280x720", "3840x2160",
         "authoring-hdcp-level-missing", master, 6, "high.m3u8", 6},
    };
}

}  // namespace presentation_test
