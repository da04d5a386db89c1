#include "tests/standard/Breach.h"

namespace standard_test {

std::vector<Breach> renditionBreaches() {
    const std::string english = "NAME=\"English\",LANGUAGE=\"en\",DEFAULT=YES,AUTOSELECT=YES,CHANNELS=\"6\"";
    return {
        {"captions with a URI", master, "INSTREAM-ID=\"SERVICE1\"", "INSTREAM-ID=\"SERVICE1\",URI=\"a\"",
         "rendition-uri-of-captions", 9},
        {"subtitles without a URI", master, ",URI=\"text.m3u8\"", "", "rendition-subtitles-uri-missing", 8},
        {"a default rendition that is not selected", videoMaster, "DEFAULT=YES", "DEFAULT=YES,AUTOSELECT=NO",
         "rendition-default-not-selected", 2},
        {"forced audio", master, "CHANNELS=\"6\",URI=\"de6", "CHANNELS=\"6\",FORCED=NO,URI=\"de6",
         "rendition-forced-elsewhere", 7},
        {"forced captions", master, "INSTREAM-ID=", "FORCED=YES,INSTREAM-ID=", "rendition-forced-elsewhere",
         9},
        {"captions without a channel", master, ",INSTREAM-ID=\"SERVICE1\"", "",
         "rendition-channel-missing,version-too-high", 2},
        {"channel CC5", master, "SERVICE1", "CC5", "rendition-instream-id-unknown,version-too-high", 2},
        {"service 64", master, "SERVICE1", "SERVICE64", "rendition-instream-id-unknown", 9},
        {"service 0", master, "SERVICE1", "SERVICE0", "rendition-instream-id-unknown", 9},
        {"a channel of subtitles", master, "FORCED=NO", "FORCED=NO,INSTREAM-ID=\"CC1\"",
         "rendition-instream-id-elsewhere", 8},
        {"a blank between characteristics", master, "dialog,public", "dialog, public",
         "rendition-characteristics-malformed", 8},
        {"an empty characteristic", master, "dialog,public", "dialog,,public",
         "rendition-characteristics-malformed", 8},
        {"channels without a count", master, "CHANNELS=\"6\",URI=\"de6", "CHANNELS=\"5.1\",URI=\"de6",
         "rendition-channels-malformed", 7},
        {"audio without channels", vod, vod,
         "#EXTM3U\n#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"b\"\n"
         "#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"mp4a.40.2\",AUDIO=\"a\"\nlow.m3u8\n",
         "rendition-channels-missing", 2},
        {"audio without channels beside other channels", master, "CHANNELS=\"2\",URI=\"de", "URI=\"de",
         "group-channels-not-told,rendition-channels-missing", 5},
        {"two renditions with one name", videoMaster, "NAME=\"Crowd\",URI=\"crowd-i",
         "NAME=\"Stage\",URI=\"crowd-i", "group-members-differ,group-name-repeated,i-frame-rendition-missing",
         3},
        {"two default renditions", videoMaster, "GROUP-ID=\"i-frames\",NAME=\"Crowd\"",
         "GROUP-ID=\"i-frames\",NAME=\"Crowd\",DEFAULT=YES", "group-attributes-differ,group-default-twice",
         5},
        {"two renditions to select from that are alike", videoMaster, videoMaster,
         "#EXTM3U\n#EXT-X-MEDIA:TYPE=SUBTITLES,GROUP-ID=\"a\",NAME=\"b\",LANGUAGE=\"en\",AUTOSELECT=YES,URI="
         "\"b\"\n"
         "#EXT-X-MEDIA:TYPE=SUBTITLES,GROUP-ID=\"a\",NAME=\"c\",LANGUAGE=\"en\",AUTOSELECT=YES,FORCED=NO,URI="
         "\"c\"\n"
         "#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"mp4a.40.2\",SUBTITLES=\"a\"\nlow.m3u8\n",
         "group-selection-ambiguous", 3},
        {"a member too little", videoMaster,
         "#EXT-X-MEDIA:TYPE=VIDEO,GROUP-ID=\"angles\",NAME=\"Crowd\",URI=\"crowd.m3u8\"\n", "",
         "group-members-differ", 4},
        {"another language of the same member", master, english,
         "NAME=\"English\",LANGUAGE=\"cy\",DEFAULT=YES,AUTOSELECT=YES,CHANNELS=\"6\"",
         "group-attributes-differ", 6},
        {"another default of the same member", master, english,
         "NAME=\"English\",LANGUAGE=\"en\",AUTOSELECT=YES,CHANNELS=\"6\"", "group-attributes-differ", 6},
    };
}

}  // namespace standard_test
