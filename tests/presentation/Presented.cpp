#include "tests/presentation/Presented.h"

#include <stdexcept>

namespace presentation_test {
namespace {

const std::string dates = "2026-11-21T10:00:";

/// Four segments with a discontinuity after the second.
std::string vodOf(const std::string& key, const std::string& suffix, const std::string& duration) {
    const std::string extInf = "#EXTINF:" + duration + ",\n";
    return "#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:6\n#EXT-X-PLAYLIST-TYPE:VOD\n" + key +
           "#EXT-X-PROGRAM-DATE-TIME:" + dates +
           "00.000Z\n"
           "#EXT-X-DATERANGE:ID=\"ad\",START-DATE=\"" +
           dates + "12.012Z\",DURATION=6.006\n" + extInf + "1." + suffix + "\n" + extInf + "2." + suffix +
           "\n#EXT-X-DISCONTINUITY\n#EXT-X-PROGRAM-DATE-TIME:" + dates + "12.012Z\n" + extInf + "3." +
           suffix + "\n" + extInf + "4." + suffix + "\n#EXT-X-ENDLIST\n";
}

std::string keyOf(const std::string& uri) {
    return "#EXT-X-KEY:METHOD=AES-128,URI=\"" + uri + "\"\n";
}

std::string iFramesOf(const std::string& type) {
    std::string text = "#EXTM3U\n#EXT-X-VERSION:4\n#EXT-X-TARGETDURATION:6\n" + type +
                       "#EXT-X-I-FRAMES-ONLY\n#EXT-X-PROGRAM-DATE-TIME:" + dates +
                       "00.000Z\n"
                       "#EXT-X-DATERANGE:ID=\"ad\",START-DATE=\"" +
                       dates + "12.012Z\",DURATION=6.006\n";
    for (int frame = 0; frame < 24; ++frame) {
        if (frame == 12) text += "#EXT-X-DISCONTINUITY\n#EXT-X-PROGRAM-DATE-TIME:" + dates + "12.012Z\n";
        text +=
            "#EXTINF:1.001,\n#EXT-X-BYTERANGE:10000@" + std::to_string(376 + 20000 * frame) + "\nvideo.ts\n";
    }
    return text + "#EXT-X-ENDLIST\n";
}

/// Six segments of so many bytes each, but for the third.
std::string rangesOf(std::size_t bytes, std::size_t ofThird) {
    std::string text = "#EXTM3U\n#EXT-X-VERSION:4\n#EXT-X-TARGETDURATION:6\n#EXT-X-PLAYLIST-TYPE:VOD\n";
    for (int segment = 0; segment < 6; ++segment) {
        text += "#EXTINF:6.000,\n#EXT-X-BYTERANGE:" + std::to_string(segment == 2 ? ofThird : bytes) +
                (segment == 0 ? "@0" : "") + "\nall.ts\n";
    }
    return text + "#EXT-X-ENDLIST\n";
}

std::string windowOf(const std::string& suffix, bool hasDates) {
    const std::string extInf = "#EXTINF:6.006,\n";
    const auto date = [hasDates](const std::string& time) {
        return hasDates ? "#EXT-X-PROGRAM-DATE-TIME:" + dates + time + "\n" : std::string();
    };
    return "#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:6\n#EXT-X-MEDIA-SEQUENCE:100\n"
           "#EXT-X-DISCONTINUITY-SEQUENCE:4\n" +
           date("00.000Z") + extInf + "100." + suffix + "\n" + extInf + "101." + suffix +
           "\n#EXT-X-DISCONTINUITY\n" + date("12.012Z") + extInf + "102." + suffix + "\n" + extInf + "103." +
           suffix + "\n" + extInf + "104." + suffix + "\n" + extInf + "105." + suffix + "\n";
}

const char* const liveMaster =
    "#EXTM3U\n"
    "#EXT-X-START:TIME-OFFSET=-20\n"
    "#EXT-X-STREAM-INF:BANDWIDTH=1000000,CODECS=\"avc1.4d401e,mp4a.40.2\",RESOLUTION=640x360,FRAME-RATE=25\n"
    "low.m3u8\n"
    "#EXT-X-STREAM-INF:BANDWIDTH=2000000,CODECS=\"avc1.4d401e,mp4a.40.2\",RESOLUTION=1280x720,FRAME-RATE=25\n"
    "mid.m3u8\n"
    "#EXT-X-STREAM-INF:BANDWIDTH=3000000,CODECS=\"avc1.4d401e,mp4a.40.2\",RESOLUTION=1280x720,FRAME-RATE=25\n"
    "high.m3u8\n";

std::string fragmentsOf(const std::string& tags, const std::string& suffix, std::size_t bytes) {
    std::string text =
        "#EXTM3U\n#EXT-X-VERSION:6\n#EXT-X-TARGETDURATION:6\n#EXT-X-PLAYLIST-TYPE:VOD\n" + tags;
    if (suffix != "vtt") text += "#EXT-X-MAP:URI=\"init.mp4\"\n";
    for (int segment = 0; segment < 4; ++segment) {
        text += "#EXTINF:6.000,\n";
        if (bytes != 0)
            text += "#EXT-X-BYTERANGE:" + std::to_string(bytes) + (segment == 0 ? "@1000" : "") + "\nall." +
                    suffix + "\n";
        else
            text += std::to_string(segment) + "." + suffix + "\n";
    }
    return text + "#EXT-X-ENDLIST\n";
}

}  // namespace

Texts onDemand() {
    return {
        {"master.m3u8",
         "#EXTM3U\n"
         "#EXT-X-START:TIME-OFFSET=6\n"
         "#EXT-X-INDEPENDENT-SEGMENTS\n"
         "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"audio\",NAME=\"English\",LANGUAGE=\"en\",DEFAULT=YES,AUTOSELECT="
         "YES,"
         "CHANNELS=\"2\",URI=\"audio/en.m3u8\"\n"
         "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"audio\",NAME=\"Deutsch\",LANGUAGE=\"de\",AUTOSELECT=YES,"
         "CHANNELS="
         "\"2\",URI=\"audio/de.m3u8\"\n"
         "#EXT-X-MEDIA:TYPE=SUBTITLES,GROUP-ID=\"text\",NAME=\"English\",LANGUAGE=\"en\",URI=\"text.m3u8\"\n"
         "#EXT-X-SESSION-DATA:DATA-ID=\"com.example.lyrics\",URI=\"lyrics.json\"\n"
         "#EXT-X-SESSION-KEY:METHOD=AES-128,URI=\"keys/1\"\n"
         "#EXT-X-STREAM-INF:BANDWIDTH=1000000,CODECS=\"avc1.4d401e,mp4a.40.2\",RESOLUTION=640x360,FRAME-RATE="
         "25,"
         "HDCP-LEVEL=NONE,AUDIO=\"audio\",SUBTITLES=\"text\"\n"
         "low/video.m3u8\n"
         "#EXT-X-STREAM-INF:BANDWIDTH=2000000,CODECS=\"avc1.4d401e,mp4a.40.2\",RESOLUTION=1280x720,FRAME-"
         "RATE=25,"
         "AUDIO=\"audio\",SUBTITLES=\"text\"\n"
         "mid/video.m3u8\n"
         "#EXT-X-STREAM-INF:BANDWIDTH=3000000,CODECS=\"avc1.4d401e,mp4a.40.2\",RESOLUTION=1280x720,FRAME-"
         "RATE=25,"
         "HDCP-LEVEL=TYPE-0,AUDIO=\"audio\",SUBTITLES=\"text\"\n"
         "high/video.m3u8\n"
         "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=86000,CODECS=\"avc1.4d401e\",RESOLUTION=640x360,"
         "URI=\"low/i-frames.m3u8\"\n"},
        {"audio/en.m3u8", vodOf(keyOf("../keys/1"), "aac", "6.016")},
        {"audio/de.m3u8", vodOf("", "aac", "6.016")},
        {"text.m3u8", vodOf("", "vtt", "6.000")},
        {"lyrics.json", "{\"lyrics\": [1, -2.5e+3, true, null, \"la \\u00e9\\n\", {}]}\n"},
        {"low/video.m3u8", vodOf(keyOf("../keys/1"), "ts", "6.006")},
        {"mid/video.m3u8", vodOf("", "ts", "6.006")},
        {"high/video.m3u8", vodOf(keyOf("../keys/2"), "ts", "6.006")},
        {"low/i-frames.m3u8", iFramesOf("#EXT-X-PLAYLIST-TYPE:VOD\n")},
    };
}

Texts measured() {
    return {
        {"master.m3u8",
         "#EXTM3U\n"
         "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"audio\",NAME=\"English\",DEFAULT=YES,AUTOSELECT=YES,CHANNELS="
         "\"2\","
         "URI=\"en.m3u8\"\n"
         "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"audio\",NAME=\"Deutsch\",CHANNELS=\"2\",URI=\"de.m3u8\"\n"
         "#EXT-X-STREAM-INF:BANDWIDTH=2000000,AVERAGE-BANDWIDTH=1166667,CODECS=\"avc1.4d401e,mp4a.40.2\","
         "RESOLUTION=640x360,FRAME-RATE=25\n"
         "low.m3u8\n"
         "#EXT-X-STREAM-INF:BANDWIDTH=4200000,AVERAGE-BANDWIDTH=2533334,CODECS=\"avc1.4d401e,mp4a.40.2\","
         "RESOLUTION=640x360,FRAME-RATE=25,AUDIO=\"audio\"\n"
         "high.m3u8\n"},
        {"en.m3u8", rangesOf(75000, 75000)},
        {"de.m3u8", rangesOf(150000, 150000)},
        {"low.m3u8", rangesOf(750000, 1500000)},
        {"high.m3u8", rangesOf(1500000, 3000000)},
    };
}

Texts estimated() {
    const std::string media =
        "#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:6\n#EXT-X-BITRATE:1000\n"
        "#EXTINF:6.000,\n1.ts\n#EXT-X-BITRATE:2000\n#EXTINF:6.000,\n2.ts\n#EXTINF:3.500,\n3.ts\n#EXT-X-"
        "ENDLIST\n";
    return {
        {"master.m3u8",
         "#EXTM3U\n"
         "#EXT-X-STREAM-INF:BANDWIDTH=2000000,AVERAGE-BANDWIDTH=1600000,CODECS=\"avc1.4d401e,mp4a.40.2\","
         "RESOLUTION=640x360,FRAME-RATE=25\n"
         "low.m3u8\n"},
        {"low.m3u8", media},
    };
}

Texts live() {
    return {{"master.m3u8", liveMaster},
            {"low.m3u8", windowOf("ts", true)},
            {"mid.m3u8", windowOf("ts", true)},
            {"high.m3u8", windowOf("ts", true)}};
}

Texts liveWithoutDates() {
    return {{"master.m3u8", liveMaster},
            {"low.m3u8", windowOf("ts", false)},
            {"mid.m3u8", windowOf("ts", false)},
            {"high.m3u8", windowOf("ts", false)}};
}

Texts authored() {
    const std::string independent = "#EXT-X-INDEPENDENT-SEGMENTS\n";
    std::string iFrames =
        "#EXTM3U\n#EXT-X-VERSION:6\n#EXT-X-TARGETDURATION:6\n#EXT-X-PLAYLIST-TYPE:VOD\n#EXT-X-I-FRAMES-ONLY\n"
        "#EXT-X-MAP:URI=\"init.mp4\"\n";
    for (int frame = 0; frame < 24; ++frame)
        iFrames +=
            "#EXTINF:1.000,\n#EXT-X-BYTERANGE:10000@" + std::to_string(1000 + 20000 * frame) + "\nall.m4s\n";
    return {
        {"master.m3u8",
         "#EXTM3U\n"
         "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"audio\",NAME=\"English\",LANGUAGE=\"en\",DEFAULT=YES,AUTOSELECT="
         "YES,"
         "CHANNELS=\"2\",URI=\"en.m3u8\"\n"
         "#EXT-X-MEDIA:TYPE=SUBTITLES,GROUP-ID=\"text\",NAME=\"English\",LANGUAGE=\"en\",URI=\"text.m3u8\"\n"
         "#EXT-X-STREAM-INF:BANDWIDTH=1000000,AVERAGE-BANDWIDTH=1000000,CODECS=\"avc1.4d401e,mp4a.40.2\","
         "RESOLUTION=640x360\n"
         "low.m3u8\n"
         "#EXT-X-STREAM-INF:BANDWIDTH=2100000,AVERAGE-BANDWIDTH=2100000,CODECS=\"hvc1.2.4.L123.B0,mp4a.40."
         "2\","
         "RESOLUTION=1280x720,HDCP-LEVEL=TYPE-0,AUDIO=\"audio\"\n"
         "high.m3u8\n"
         "#EXT-X-STREAM-INF:BANDWIDTH=2000000,CODECS=\"avc1.4d401e,mp4a.40.2,stpp.ttml.im1t\",RESOLUTION="
         "640x360,"
         "SUBTITLES=\"text\"\n"
         "text-video.m3u8\n"
         "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=80000,CODECS=\"avc1.4d401e\",RESOLUTION=640x360,"
         "URI=\"i-frames.m3u8\"\n"},
        {"en.m3u8", fragmentsOf("", "m4a", 75000)},
        {"text.m3u8", fragmentsOf("", "m4s", 0)},
        {"low.m3u8", fragmentsOf(independent, "m4s", 750000)},
        {"high.m3u8",
         fragmentsOf(independent + "#EXT-X-KEY:METHOD=SAMPLE-AES,URI=\"k\",IV=0x1\n", "m4s", 1500000)},
        {"text-video.m3u8", fragmentsOf(independent, "m4s", 0)},
        {"i-frames.m3u8", iFrames + "#EXT-X-ENDLIST\n"},
    };
}

Texts authoredLive() {
    Texts texts = live();
    texts.front().second =
        "#EXTM3U\n#EXT-X-INDEPENDENT-SEGMENTS\n"
        "#EXT-X-MEDIA:TYPE=SUBTITLES,GROUP-ID=\"text\",NAME=\"English\",LANGUAGE=\"en\",URI=\"text.m3u8\"\n"
        "#EXT-X-STREAM-INF:BANDWIDTH=1000000,CODECS=\"avc1.4d401e,mp4a.40.2\",SUBTITLES=\"text\"\n"
        "low.m3u8\n"
        "#EXT-X-STREAM-INF:BANDWIDTH=2000000,CODECS=\"avc1.4d401e,mp4a.40.2\",SUBTITLES=\"text\"\n"
        "mid.m3u8\n"
        "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=80000,CODECS=\"avc1.4d401e\",URI=\"i-frames.m3u8\"\n";
    texts.emplace_back("text.m3u8", windowOf("vtt", true));
    std::string iFrames =
        "#EXTM3U\n#EXT-X-VERSION:4\n#EXT-X-TARGETDURATION:6\n#EXT-X-MEDIA-SEQUENCE:600\n#EXT-X-I-FRAMES-"
        "ONLY\n"
        "#EXT-X-PROGRAM-DATE-TIME:" +
        dates + "00.000Z\n";
    for (int frame = 0; frame < 36; ++frame)
        iFrames += "#EXTINF:1.001,\n" + std::to_string(600 + frame) + ".ts\n";
    texts.emplace_back("i-frames.m3u8", iFrames);
    return texts;
}

std::string& textOf(Texts& texts, const std::string& uri) {
    for (auto& [name, text] : texts) {
        if (name == uri) return text;
    }
    throw std::logic_error(uri + " is not there");
}

Texts replaced(Texts texts, const std::string& uri, const std::string& text, const std::string& replacement) {
    std::string& changed = textOf(texts, uri);
    const std::size_t place = changed.find(text);
    if (place == std::string::npos) throw std::logic_error(text + " is not there");
    changed.replace(place, text.size(), replacement);
    return texts;
}

Texts replacedEverywhere(Texts texts, const std::string& uri, const std::string& text,
                         const std::string& replacement) {
    std::string& changed = textOf(texts, uri);
    if (changed.find(text) == std::string::npos) throw std::logic_error(text + " is not there");
    for (std::size_t place = changed.find(text); place != std::string::npos;
         place = changed.find(text, place + replacement.size()))
        changed.replace(place, text.size(), replacement);
    return texts;
}

Texts Breach::broken() const {
    return replaced(presentation(), uri, text, replacement);
}

std::vector<VELHLSFinding> findingsIn(const Texts& texts, VELHLSStandard::Profile profile) {
    std::deque<VELHLSDocument> documents;
    std::vector<VELHLSPresentation::Resource> resources;
    for (const auto& [uri, text] : texts) {
        documents.emplace_back(text);
        resources.push_back({uri, &documents.back()});
    }
    const VELHLSPresentation::Resource master = resources.front();
    resources.erase(resources.begin());
    return VELHLSPresentation::check(master, resources, {profile});
}

std::string shown(const std::vector<VELHLSFinding>& findings) {
    std::string text;
    for (const VELHLSFinding& finding : findings) {
        text += finding.uri + ":" + std::to_string(finding.line) + ":" + std::to_string(finding.column) +
                " " + finding.ruleId + ": " + finding.message + "\n";
        for (const VELHLSRelatedPlace& related : finding.related)
            text += "    " + related.uri + ":" + std::to_string(related.line) + ": " + related.message + "\n";
    }
    return text;
}

}  // namespace presentation_test
