#include "tests/standard/Breach.h"

namespace standard_test {

std::vector<Breach> laterBreaches() {
    const std::string variant =
        "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"avc1.4d401e\",STABLE-VARIANT-ID=\"v1\",VIDEO-RANGE="
        "SDR\nlow.m3u8\n";
    return {
        {"a definition of nothing", lowLatency, "NAME=\"host\",", "", "define-ambiguous", 6},
        {"a definition of two things", lowLatency, "NAME=\"host\",", "NAME=\"host\",IMPORT=\"other\",",
         "define-ambiguous", 6},
        {"a definition without a value", lowLatency, ",VALUE=\"cdn.example.com\"", "", "define-without-value",
         6},
        {"a variable imported by a master playlist", variant, "#EXTM3U\n",
         "#EXTM3U\n#EXT-X-VERSION:8\n#EXT-X-DEFINE:IMPORT=\"a\"\n", "define-import-in-master", 3},
        {"a variable defined twice", lowLatency, "#EXT-X-MEDIA-SEQ",
         "#EXT-X-DEFINE:NAME=\"host\",VALUE=\"b\"\n#EXT-X-MEDIA-SEQ", "define-name-repeated", 7},
        {"an interstitial without an asset", lowLatency, "X-ASSET-URI=\"ad.m3u8\",", "",
         "interstitial-asset-ambiguous", 13},
        {"an interstitial with two assets", lowLatency, "X-ASSET-URI=\"ad.m3u8\",",
         "X-ASSET-URI=\"ad.m3u8\",X-ASSET-LIST=\"ads.json\",", "interstitial-asset-ambiguous", 13},
        {"skipped date ranges without a boundary", lowLatency, "CAN-SKIP-UNTIL=24,", "",
         "skip-date-ranges-without-boundary", 5},
        {"a boundary that is too near", lowLatency, "CAN-SKIP-UNTIL=24", "CAN-SKIP-UNTIL=23.9",
         "skip-boundary-short", 5},
        {"HOLD-BACK that is too short", lowLatency, ",HOLD-BACK=12", ",HOLD-BACK=11.9", "hold-back-short", 5},
        {"PART-HOLD-BACK that is too short", lowLatency, "PART-HOLD-BACK=1.5", "PART-HOLD-BACK=0.9",
         "part-hold-back-short", 5},
        {"a report of an absolute URI", lowLatency, "../other", "https://example.com",
         "rendition-report-absolute", 21},
        {"a stable identifier with a blank", variant, "\"v1\"", "\"v 1\"", "stable-id-malformed", 2},
        {"parts without their target", lowLatency, "#EXT-X-PART-INF:PART-TARGET=0.5\n", "",
         "parts-without-target", 13},
        {"parts without how far to hold back", lowLatency, ",PART-HOLD-BACK=1.5", "",
         "parts-without-hold-back", 4},
        {"a part that is too long", lowLatency, "PART:DURATION=0.5,URI=\"271", "PART:DURATION=0.6,URI=\"271",
         "part-too-long", 19},
        {"two hints of one type", lowLatency, "#EXT-X-RENDITION",
         "#EXT-X-PRELOAD-HINT:TYPE=PART,URI=\"271.2.ts\"\n#EXT-X-RENDITION", "preload-hint-twice", 21},
        {"a range that does not exist", variant, "VIDEO-RANGE=SDR", "VIDEO-RANGE=HDR",
         "attribute-value-unknown", 2},
        {"a skip without how many", lowLatency, "SKIPPED-SEGMENTS=3", "OTHER=3", "attribute-missing", 8},
        {"a skip in version 8", lowLatency, "VERSION:9", "VERSION:8", "version-too-low", 8},
        {"a value of a gap", lowLatency, "#EXT-X-GAP", "#EXT-X-GAP:YES", "tag-value-unexpected", 16},
    };
}

}  // namespace standard_test
