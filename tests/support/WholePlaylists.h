#pragma once

#include <string>
#include <vector>

/// Playlists that together hold every tag, for tests that ask the same of all that can be read and written. Their
/// names and values are too long to be kept inside of a std::string, which would hide what copying them takes.
namespace whole {

inline const std::string master =
    "#EXTM3U\n"
    "#EXT-X-VERSION:6\n"
    "#EXT-X-INDEPENDENT-SEGMENTS\n"
    "#EXT-X-START:TIME-OFFSET=4.5,PRECISE=YES\n"
    "# a comment that nobody needs, long enough to be a block of its own\n"
    "#EXT-X-UNKNOWN-TO-THIS-LIBRARY:VALUE=\"a value of a tag that is ignored\"\n"
    "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"audio-in-stereo-aac\",NAME=\"English, as it was "
    "recorded\",LANGUAGE=\"en\","
    "DEFAULT=YES,AUTOSELECT=YES,CHANNELS=\"2\",CHARACTERISTICS=\"public.accessibility.describes-video\","
    "URI=\"audio/stereo/index.m3u8\"\n"
    "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"audio-in-surround-ac3\",NAME=\"English, as it was "
    "recorded\",LANGUAGE=\"en\","
    "DEFAULT=YES,AUTOSELECT=YES,CHANNELS=\"2\",CHARACTERISTICS=\"public.accessibility.describes-video\","
    "URI=\"audio/surround/index.m3u8\"\n"
    "#EXT-X-MEDIA:TYPE=SUBTITLES,GROUP-ID=\"subtitles-of-all-kinds\",NAME=\"Deutsch, nur "
    "Schilder\",LANGUAGE=\"de\","
    "ASSOC-LANGUAGE=\"de-AT\",AUTOSELECT=YES,FORCED=YES,URI=\"text/de/index.m3u8\"\n"
    "#EXT-X-MEDIA:TYPE=CLOSED-CAPTIONS,GROUP-ID=\"captions-in-the-video\",NAME=\"English captions, CEA-608\","
    "LANGUAGE=\"en\",INSTREAM-ID=\"CC1\"\n"
    "#EXT-X-MEDIA:TYPE=VIDEO,GROUP-ID=\"video-from-the-goal\",NAME=\"The camera after the "
    "goal\",DEFAULT=YES,"
    "URI=\"video/goal/index.m3u8\"\n"
    "#ZOR-STREAM-INF:NOMINAL_VIDEO_BITRATE=6200000,NOMINAL_AUDIO_BITRATE=128000\n"
    "#EXT-X-STREAM-INF:BANDWIDTH=8188000,AVERAGE-BANDWIDTH=6328000,CODECS=\"avc1.640028,mp4a.40.2\","
    "RESOLUTION=1920x1080,FRAME-RATE=50.000,HDCP-LEVEL=NONE,AUDIO=\"audio-in-stereo-aac\","
    "VIDEO=\"video-from-the-goal\",SUBTITLES=\"subtitles-of-all-kinds\",CLOSED-CAPTIONS=\"captions-in-the-"
    "video\"\n"
    "video/1080p/with/stereo/index.m3u8\n"
    "#ZOR-STREAM-INF:NOMINAL_VIDEO_BITRATE=3400000,NOMINAL_AUDIO_BITRATE=384000\n"
    "#EXT-X-STREAM-INF:BANDWIDTH=4548000,CODECS=\"avc1.64001f,ac-3\",AUDIO=\"audio-in-surround-ac3\","
    "CLOSED-CAPTIONS=NONE\n"
    "video/720p/with/surround/index.m3u8\n"
    "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=283333,CODECS=\"avc1.64001f\",URI=\"video/720p/iframes/"
    "index.m3u8\"\n"
    "#EXT-X-SESSION-DATA:LANGUAGE=\"en\",DATA-ID=\"com.example.programme.title\",VALUE=\"The programme's "
    "title\"\n"
    "#EXT-X-SESSION-DATA:LANGUAGE=\"en\",DATA-ID=\"com.example.programme.credits\",URI=\"meta/credits/"
    "index.json\"\n"
    "#EXT-X-SESSION-KEY:METHOD=SAMPLE-AES,URI=\"skd://key.example.com/7f3a/0001\","
    "IV=0x0123456789abcdef0123456789abcdef,KEYFORMAT=\"com.example.streaming.key\",KEYFORMATVERSIONS=\"1/2/"
    "5\"\n";

inline const std::string media =
    "#EXTM3U\n"
    "#EXT-X-VERSION:7\n"
    "#EXT-X-TARGETDURATION:6.5\n"
    "#EXT-X-PLAYLIST-TYPE:EVENT\n"
    "#EXT-X-MEDIA-SEQUENCE:100\n"
    "#EXT-X-DISCONTINUITY-SEQUENCE:3\n"
    "#EXT-X-INDEPENDENT-SEGMENTS\n"
    "#EXT-X-I-FRAMES-ONLY\n"
    "#EXT-X-START:TIME-OFFSET=-12.5,PRECISE=YES\n"
    "#EXT-X-DEFINE:NAME=\"the-number-of-the-segment\",VALUE=\"1001\"\n"
    "#EXT-X-DEFINE:NAME=\"the-folder-of-the-segment\",VALUE=\"day-{$the-month-of-the-segment}\"\n"
    "#EXT-X-DEFINE:NAME=\"the-month-of-the-segment\",VALUE=\"march-of-the-year\"\n"
    "#EXT-X-UNKNOWN-TO-THIS-LIBRARY:VALUE=\"a value of a tag that is ignored\"\n"
    "#EXT-X-KEY:METHOD=AES-128,URI=\"https://keys.example.com/7f3a/"
    "0001\",IV=0x0123456789abcdef0123456789abcdef,"
    "KEYFORMAT=\"com.example.streaming.key\",KEYFORMATVERSIONS=\"1/2/5\"\n"
    "#EXT-X-MAP:URI=\"the/initialization/section.mp4\",BYTERANGE=\"812@0\"\n"
    "#EXT-X-PROGRAM-DATE-TIME:2020-01-01T10:00:05.250Z\n"
    "#EXT-X-CUE-OUT:DURATION=12,ID=\"the first break\"\n"
    "#EXTINF:6.006,The title of a programme\n"
    "#EXT-X-BYTERANGE:480000@812\n"
    "the/segments/of/the/programme.mp4\n"
    "#EXT-X-DISCONTINUITY\n"
    "#EXT-X-CUE-OUT-CONT:ElapsedTime=6,Duration=12\n"
    "# a comment that nobody needs, long enough to be a block of its own\n"
    "#EXTINF:6.006,\n"
    "the/segments/of/the/advert/bytes=1000-2999.mp4\n"
    "#EXT-X-KEY:METHOD=NONE\n"
    "#EXT-X-CUE-IN\n"
    "#EXTINF:6.006\r\n"
    "the/segments/of/the/programme/0002.mp4 \r\n"
    "#EXTINF:6,\n"
    "#ZOR-PATTERN_START:a-pattern-of-the-day\n"
    "{$the-folder-of-the-segment}/segment_{$the-number-of-the-segment}.mp4\n"
    "#EXTINF:6,\n"
    "second_{$the-number-of-the-segment}_of_{$the-number-of-the-segment}.mp4\n"
    "#ZOR-DEFINE_INCREMENT:the-number-of-the-segment,1\n"
    "#ZOR-PATTERN_END:a-pattern-of-the-day\n"
    "#ZOR-PATTERN_REPEAT:a-pattern-of-the-day,3\n"
    "#EXT-X-ENDLIST\n"
    "a line after the end of the playlist\n";

/// Playlists that are rejected, each for another reason and in another place.
inline const std::vector<std::string> rejectedMasters = {
    "",
    "no playlist at all, but a line that is quite long\n",
    master +
        "#EXT-X-STREAM-INF:BANDWIDTH=1,AUDIO=\"a group that nobody defines\"\na/variant/of/nothing.m3u8\n",
    master + "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"audio-in-surround-ac3\",NAME=\"Deutsch, in der einen\"\n",
    master +
        "#EXT-X-SESSION-DATA:LANGUAGE=\"en\",DATA-ID=\"com.example.programme.title\",VALUE=\"once more\"\n",
    master + "#EXT-X-MEDIA:TYPE=AUDIO,NAME=\"a rendition without a group of its own\"\n",
    "#EXT-X-STREAM-INF:BANDWIDTH=99999999999999999999999999999999\na/variant/of/nothing.m3u8\n",
    "#EXT-X-VERSION:a version that is no number at all\n",
    "#EXT-X-MEDIA:A=1,B=1,C=1,D=1,E=1,F=1,G=1,H=1,I=1,J=1,K=1,L=1,M=1,N=1,O=1,P=1,Q=1,R=1,A=2,B=2\n",
};

inline const std::vector<std::string> rejectedMedia = {
    "no playlist at all, but a line that is quite long\n",
    "#EXTM3U\n#EXTINF:6,\nthe/last/line/without/a/line/feed.mp4",
    "#EXTM3U\n#EXTINF:6,\n0.ts\n",
    "#EXTM3U\n#EXT-X-TARGETDURATION:6.6.6.6.6.6.6.6.6.6.6.6.6.6.6.x\n",
    "#EXTM3U\n#EXTINF:6,\n#ZOR-PATTERN_END:an end of a pattern that never began\n",
    "#EXTM3U\n#ZOR-PATTERN_START:a-pattern-of-the-day\n#EXT-X-TARGETDURATION:not in a pattern\n",
    "#EXTM3U\n#ZOR-PATTERN_START:a-pattern-of-the-day\n#EXTINF:6,\nthe/{$unknown}/segment.mp4\n"
    "#ZOR-PATTERN_REPEAT:a-pattern-of-the-day,3\n",
    "#EXTM3U\n#ZOR-PATTERN_START:a-pattern-of-the-day\n#EXTINF:6,\nthe/segments/of/the/day.mp4\n"
    "#ZOR-PATTERN_REPEAT:a-pattern-of-the-day,-1\n",
    "#EXTM3U\n#EXT-X-KEY:METHOD=AES-128,IV=\"no URI and no number "
    "either\"\n#EXTINF:6,\nthe/segment/0001.mp4\n",
    "#EXTM3U\n#EXT-X-PROGRAM-DATE-TIME:no date and no time of any kind\n#EXTINF:6,\nthe/segment/0001.mp4\n",
    "#EXTM3U\n#EXT-X-DEFINE:VALUE=\"a value of a variable without a name\"\n",
};

}  // namespace whole
