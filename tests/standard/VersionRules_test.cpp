#include "tests/standard/Breach.h"

namespace standard_test {

std::vector<Breach> versionBreaches() {
    const std::string whole = "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXTINF:6,\nfirst.ts\n#EXT-X-ENDLIST\n";
    const std::string encrypted =
        "#EXTM3U\n#EXT-X-VERSION:2\n#EXT-X-TARGETDURATION:6\n"
        "#EXT-X-KEY:METHOD=AES-128,URI=\"key\",IV=0x000102030405060708090A0B0C0D0E0F\n"
        "#EXTINF:6,\nfirst.ts\n#EXT-X-ENDLIST\n";
    const std::string ranged =
        "#EXTM3U\n#EXT-X-VERSION:4\n#EXT-X-TARGETDURATION:6\n#EXTINF:6,\n#EXT-X-BYTERANGE:1@0\nfirst.ts\n#"
        "EXT-X-ENDLIST\n";
    const std::string framed =
        "#EXTM3U\n#EXT-X-VERSION:5\n#EXT-X-TARGETDURATION:6\n#EXT-X-I-FRAMES-ONLY\n#EXT-X-MAP:URI=\"a\"\n"
        "#EXTINF:6,\nfirst.ts\n#EXT-X-ENDLIST\n";
    const std::string formatted =
        "#EXTM3U\n#EXT-X-VERSION:5\n#EXT-X-TARGETDURATION:6\n#EXT-X-KEY:METHOD=AES-128,URI=\"key\",KEYFORMAT="
        "\"a\"\n"
        "#EXTINF:6,\nfirst.ts\n#EXT-X-ENDLIST\n";
    const std::string versioned =
        "#EXTM3U\n#EXT-X-VERSION:5\n#EXT-X-TARGETDURATION:6\n#EXT-X-KEY:METHOD=AES-128,URI=\"key\","
        "KEYFORMATVERSIONS=\"1\"\n"
        "#EXTINF:6,\nfirst.ts\n#EXT-X-ENDLIST\n";
    const std::string mapped =
        "#EXTM3U\n#EXT-X-VERSION:6\n#EXT-X-TARGETDURATION:6\n#EXT-X-MAP:URI=\"a\"\n#EXTINF:6,\nfirst.mp4\n#"
        "EXT-X-ENDLIST\n";
    const std::string session =
        "#EXTM3U\n#EXT-X-VERSION:5\n#EXT-X-SESSION-KEY:METHOD=AES-128,URI=\"key\",IV="
        "0x000102030405060708090A0B0C0D0E0F,KEYFORMAT=\"a\"\n"
        "#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"mp4a.40.2\"\nlow.m3u8\n";
    return {
        {"IV without a version", encrypted, "#EXT-X-VERSION:2\n", "", "version-too-low", 3},
        {"IV in version 1", encrypted, "VERSION:2", "VERSION:1", "version-too-low", 4},
        {"decimals without a version", vod, "#EXT-X-VERSION:3\n", "", "version-too-low", 6},
        {"decimals in version 2", vod, "VERSION:3", "VERSION:2", "version-too-low", 7},
        {"ranges without a version", ranged, "#EXT-X-VERSION:4\n", "", "version-too-low", 4},
        {"ranges in version 3", ranged, "VERSION:4", "VERSION:3", "version-too-low", 5},
        {"I-frames without a version", iFrames, "#EXT-X-VERSION:4\n", "", "version-too-low", 3},
        {"I-frames in version 3", iFrames, "VERSION:4", "VERSION:3", "version-too-low", 4},
        {"KEYFORMAT without a version", formatted, "#EXT-X-VERSION:5\n", "", "version-too-low", 3},
        {"KEYFORMAT in version 4", formatted, "VERSION:5", "VERSION:4", "version-too-low", 4},
        {"KEYFORMATVERSIONS without a version", versioned, "#EXT-X-VERSION:5\n", "", "version-too-low", 3},
        {"KEYFORMATVERSIONS in version 4", versioned, "VERSION:5", "VERSION:4", "version-too-low", 4},
        {"a map of I-frames without a version", framed, "#EXT-X-VERSION:5\n", "", "version-too-low", 3},
        {"a map of I-frames in version 4", framed, "VERSION:5", "VERSION:4", "version-too-low", 5},
        {"a map without a version", mapped, "#EXT-X-VERSION:6\n", "", "version-too-low", 3},
        {"a map in version 5", mapped, "VERSION:6", "VERSION:5", "version-too-low", 4},
        {"SERVICE without a version", master, "#EXT-X-VERSION:7\n", "", "version-too-low", 8},
        {"SERVICE in version 6", master, "VERSION:7", "VERSION:6", "version-too-low", 9},
        {"IV of a session key in version 1", session, "VERSION:5", "VERSION:1", "version-too-low", 3},
        {"KEYFORMAT of a session key in version 4", session, "VERSION:5", "VERSION:4", "version-too-low", 3},
        {"a higher version than a media playlist needs", vod, "VERSION:3", "VERSION:4", "version-too-high",
         2},
        {"a higher version than a master playlist needs", videoMaster, "#EXTM3U\n",
         "#EXTM3U\n#EXT-X-VERSION:5\n", "version-too-high", 2},
        {"a whole duration among others", vod, "#EXTINF:5.005,", "#EXTINF:5,", "duration-whole", 9},
        {"a whole duration in a version that is needed", ranged, "#EXTINF:6,", "#EXTINF:6,", "duration-whole",
         4},
        {"PROGRAM-ID in version 6", master, "BANDWIDTH=2560000", "PROGRAM-ID=1,BANDWIDTH=2560000",
         "removed-by-version", 15},
        {"EXT-X-ALLOW-CACHE in version 7", master, "#EXT-X-MEDIA", "#EXT-X-ALLOW-CACHE:YES\n#EXT-X-MEDIA",
         "removed-by-version", 4},
        {"whole durations where decimals are allowed", whole, "#EXT-X-TARGET",
         "#EXT-X-VERSION:3\n#EXT-X-TARGET", "durations-whole,version-too-high", 2},
    };
}

}  // namespace standard_test
