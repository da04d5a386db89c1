#include "tests/standard/Breach.h"

namespace standard_test {

std::vector<Breach> mediaPlaylistBreaches() {
    return {
        {"no target duration", vod, "#EXT-X-TARGETDURATION:6\n", "", "target-duration-missing", 1},
        {"a media sequence after a segment", vod, "#EXT-X-ENDLIST", "#EXT-X-MEDIA-SEQUENCE:0\n#EXT-X-ENDLIST",
         "sequence-after-segment", 13},
        {"a discontinuity sequence after a segment", vod, "#EXT-X-ENDLIST",
         "#EXT-X-DISCONTINUITY-SEQUENCE:0\n#EXT-X-ENDLIST", "sequence-after-segment", 13},
        {"a discontinuity sequence after a discontinuity", live, "#EXT-X-DISCONTINUITY-SEQUENCE:4",
         "#EXT-X-DISCONTINUITY\n#EXT-X-DISCONTINUITY-SEQUENCE:4", "sequence-after-discontinuity", 6},
        {"a start after the end", vod, "TIME-OFFSET=1.5", "TIME-OFFSET=15.6", "start-beyond-playlist", 6},
        {"a start before the beginning", vod, "TIME-OFFSET=1.5", "TIME-OFFSET=-15.6", "start-beyond-playlist",
         6},
        {"a start near the live end", live, "TIME-OFFSET=-18.5", "TIME-OFFSET=-17.5", "start-near-live-end",
         6},
        {"a start near the live end, from the beginning", live, "TIME-OFFSET=-18.5", "TIME-OFFSET=6.5",
         "start-near-live-end", 6},
        {"VOD without an end", vod, "#EXT-X-ENDLIST\n", "", "start-near-live-end,vod-without-end", 4},
        {"a live window that is too short", live, "DURATION:6", "DURATION:9",
         "live-window-short,start-near-live-end", 3},
        {"a live window without a discontinuity sequence", live, "#EXT-X-DISCONTINUITY-SEQUENCE:4\n", "",
         "discontinuity-sequence-missing", 11},
        {"a live window with a type", live, "#EXT-X-START", "#EXT-X-PLAYLIST-TYPE:EVENT\n#EXT-X-START",
         "live-window-with-type", 6},
    };
}

}  // namespace standard_test
