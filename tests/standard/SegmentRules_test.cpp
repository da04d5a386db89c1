#include "tests/standard/Breach.h"

namespace standard_test {

std::vector<Breach> segmentBreaches() {
    return {
        {"a first segment without EXTINF", vod, "#EXTINF:6.006,Intro\n", "", "extinf-missing", 7},
        {"a second segment without EXTINF", vod, "#EXTINF:5.005,\n", "", "extinf-missing", 9},
        {"a segment with other tags, and without EXTINF", live, "#EXTINF:6.006,\n100", "100",
         "extinf-missing", 8},
        {"EXTINF without a URI at the end", vod, "#EXT-X-ENDLIST", "#EXTINF:4.5,\n#EXT-X-ENDLIST",
         "segment-without-uri", 13},
        {"a segment longer than the target duration", vod, "6.006", "6.5", "target-duration-too-small", 7},
        {"no offset, and no segment before", ranges, "1000@0", "1000", "byte-range-offset-missing", 5},
        {"no offset after a range of another resource", ranges, "1000@0\nother", "1000\nother",
         "byte-range-offset-missing", 11},
        {"no offset after a segment without a range", ranges, "#EXT-X-BYTERANGE:1000@0\n", "",
         "byte-range-offset-missing", 7},
        {"fragmented MP4 without a map", vod, "first.ts", "first.m4s?a=1\n#EXT-X-DISCONTINUITY",
         "map-missing", 8},
        {"another file format without a discontinuity", vod, "second.ts", "second.aac\n#EXT-X-DISCONTINUITY",
         "discontinuity-missing-where-format-changes", 10},
        {"another map without a discontinuity", fragments, "#EXT-X-DISCONTINUITY\n", "",
         "discontinuity-missing-where-map-changes", 9},
        {"a range of an I-frame with the initialization section", iFrames, "1000@376", "1000@0",
         "i-frame-range-with-initialization", 6},
        {"no date after a discontinuity", live, "#EXT-X-PROGRAM-DATE-TIME:2026-11-21T10:00:12.012Z\n", "",
         "date-time-missing-after-discontinuity", 14},
        {"one date for two segments", live, "10:00:12.012Z", "10:00:06.006Z", "date-time-ambiguous", 13},
        {"a date before that of the segment before", live, "10:00:12.012Z", "09:00:00.000Z",
         "date-time-ambiguous", 13},
    };
}

}  // namespace standard_test
