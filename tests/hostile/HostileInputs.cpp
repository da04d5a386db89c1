#include "tests/hostile/HostileInputs.h"

#include <unordered_map>

namespace hostile {

std::string counted(std::size_t count, std::string_view text) {
    return playlist::numbered(count, text, 100000);
}

std::vector<std::string> crowdedNames(std::size_t count, std::size_t inOneBucket) {
    std::unordered_map<std::string, std::string> grown;
    for (std::size_t index = 0; index < count; ++index)
        grown[std::to_string(index)] = "";
    const std::size_t buckets = grown.bucket_count();
    std::vector<std::size_t> taken((count + inOneBucket - 1) / inOneBucket);
    std::vector<std::string> names;
    for (std::size_t candidate = 0; names.size() < count; ++candidate) {
        std::string name = std::to_string(candidate);
        const std::size_t bucket = std::hash<std::string>()(name) % buckets;
        if (bucket >= taken.size() || taken[bucket] == inOneBucket) continue;
        ++taken[bucket];
        names.push_back(std::move(name));
    }
    return names;
}

std::string definesOf(const std::vector<std::string>& names) {
    std::string all;
    for (const std::string& name : names)
        all += "#EXT-X-DEFINE:NAME=\"" + name + "\",VALUE=\"1\"\n";
    return all;
}

std::string patternOf(const std::string& body, const std::string& repeatCount) {
    return "#ZOR-PATTERN_START:p\n" + body + "#ZOR-PATTERN_REPEAT:p," + repeatCount + "\n";
}

namespace {

/// Lines of nothing but one character, as an attribute list and by themselves.
void appendLines(std::vector<Input>& inputs) {
    const std::pair<const char*, std::string> characters[] = {
        {"commas", ","},
        {"quotes", "\""},
        {"equals signs", "="},
        {"{", "{"},
        {"$", "$"},
        {"digits", "7"},
        {"spaces", " "},
        {"zero bytes", std::string(1, '\0')},
        {"carriage returns", "\r"},
        {"=\",", "=\","},
    };
    for (const auto& [name, text] : characters) {
        const std::string character = text;
        inputs.push_back({std::string("attributes of ") + name, VELHLSDiagnostics::Master, manyCharacters,
                          [character](std::size_t n) {
                              return "#EXT-X-STREAM-INF:" + times(n, character) + "\nvariant.m3u8\n";
                          }});
        inputs.push_back(
            {std::string("attributes of ") + name, VELHLSDiagnostics::Media, manyCharacters,
             [character](std::size_t n) { return "#EXT-X-KEY:" + times(n, character) + "\n" + segment; }});
        inputs.push_back({std::string("a line of ") + name, VELHLSDiagnostics::Master, manyCharacters,
                          [character](std::size_t n) { return variant + times(n, character) + "\n"; }});
        inputs.push_back({std::string("a line of ") + name, VELHLSDiagnostics::Media, manyCharacters,
                          [character](std::size_t n) { return segment + times(n, character) + "\n"; }});
        inputs.push_back(
            {std::string("EXTINF of ") + name, VELHLSDiagnostics::Media, manyCharacters,
             [character](std::size_t n) { return "#EXTINF:6" + times(n, character) + "\nsegment1.ts\n"; }});
        inputs.push_back(
            {std::string("a segment's URI of ") + name, VELHLSDiagnostics::Media, manyCharacters,
             [character](std::size_t n) { return "#EXTINF:6,\nsegment1.ts" + times(n, character) + "\n"; }});
        inputs.push_back({std::string("a pattern's URI of ") + name, VELHLSDiagnostics::Media, manyCharacters,
                          [character](std::size_t n) {
                              return patternOf("#EXTINF:6,\nsegment1.ts" + times(n, character) + "\n", "1");
                          }});
    }
}

/// One tag line with very many attributes.
void appendAttributes(std::vector<Input>& inputs) {
    const auto append = [&inputs](const char* name, std::function<std::string(std::size_t)> attributes) {
        inputs.push_back({name, VELHLSDiagnostics::Master, manyRecords, [attributes](std::size_t n) {
                              return "#EXT-X-STREAM-INF:BANDWIDTH=1," + attributes(n) + "\nvariant.m3u8\n";
                          }});
        inputs.push_back({name, VELHLSDiagnostics::Media, manyRecords, [attributes](std::size_t n) {
                              return "#EXT-X-KEY:METHOD=NONE," + attributes(n) + "\n" + segment;
                          }});
    };
    append("attributes of one name", [](std::size_t n) { return times(n, "A=1,") + "A=1"; });
    append("attributes", [](std::size_t n) { return counted(n, "A~=1,") + "B=1"; });
    append("attributes that are not closed",
           [](std::size_t n) { return counted(n, "A~=\"1\",") + "B=\"1,"; });
    append("attributes before a long one",
           [](std::size_t n) { return counted(n, "A~=1,") + "B=" + std::string(16 * n, 'b') + ","; });
    append("attributes and carriage returns", [](std::size_t n) { return counted(n, "A~=\r1,\r") + "B=1"; });
    append("attributes before carriage returns",
           [](std::size_t n) { return counted(n, "A~=1,") + "B=1" + std::string(16 * n, '\r'); });
}

/// Lines that either kind of playlist may have.
void appendTags(std::vector<Input>& inputs) {
    const auto append = [&inputs](const char* name, const std::string& line) {
        inputs.push_back({name, VELHLSDiagnostics::Master, manyRecords,
                          [line](std::size_t n) { return "#EXTM3U\n" + counted(n, line) + variant; }});
        inputs.push_back({name, VELHLSDiagnostics::Media, manyRecords,
                          [line](std::size_t n) { return "#EXTM3U\n" + counted(n, line) + segment; }});
    };
    append("empty lines", "\n");
    append("empty lines with carriage returns", "\r\n");
    append("comments", "# comment ~\n");
    append("unknown tags", "#EXT-X-UNKNOWN-~:1\n");
    append("vendor tags", "#ZOR-UNKNOWN-~:1\n");
    append("EXT-X-VERSION", "#EXT-X-VERSION:~\n");
    append("EXT-X-START", "#EXT-X-START:TIME-OFFSET=~.5,PRECISE=YES\n");
}

void appendMasters(std::vector<Input>& inputs) {
    const auto append = [&inputs](const char* name, std::function<std::string(std::size_t)> text) {
        inputs.push_back({name, VELHLSDiagnostics::Master, manyRecords, std::move(text)});
    };
    const auto appendRecords = [&append](const char* name, const std::string& record) {
        append(name, [record](std::size_t n) { return counted(n, record) + variant; });
    };
    const std::string audio = "#EXT-X-MEDIA:TYPE=AUDIO,URI=\"audio.m3u8\",";
    appendRecords("variants of one bandwidth", "#EXT-X-STREAM-INF:BANDWIDTH=7\nvariant~.m3u8\n");
    appendRecords("variants",
                  "#EXT-X-STREAM-INF:BANDWIDTH=1~,CODECS=\"avc1,mp4a\",RESOLUTION=1x1\nvariant~.m3u8\n");
    appendRecords("I-frame variants", "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=1~,URI=\"variant~.m3u8\"\n");
    appendRecords("renditions of one group", audio + "GROUP-ID=\"g\",NAME=\"n~\"\n");
    appendRecords("renditions of one name", audio + "GROUP-ID=\"g\",NAME=\"n\"\n");
    appendRecords("renditions, all DEFAULT", audio + "GROUP-ID=\"g\",NAME=\"n~\",DEFAULT=YES\n");
    appendRecords("groups", audio + "GROUP-ID=\"g~\",NAME=\"n\"\n");
    appendRecords("groups that differ", audio + "GROUP-ID=\"g~\",NAME=\"n~\"\n");
    append("groups of one rendition against one of many", [audio](std::size_t n) {
        return counted(n, audio + "GROUP-ID=\"a\",NAME=\"n~\"\n") +
               counted(n, audio + "GROUP-ID=\"g~\",NAME=\"n0\"\n") + variant;
    });
    appendRecords("groups that are missing", "#EXT-X-STREAM-INF:BANDWIDTH=1,AUDIO=\"g~\"\nvariant~.m3u8\n");
    appendRecords("session data", "#EXT-X-SESSION-DATA:X=1,DATA-ID=\"d~\",VALUE=\"v\"\n");
    appendRecords("session data of one id", "#EXT-X-SESSION-DATA:X=1,DATA-ID=\"d\",VALUE=\"v\"\n");
    append("session data of crowded ids", [](std::size_t n) {
        std::string text;
        for (const std::string& name : crowdedNames(n, 64))
            text += "#EXT-X-SESSION-DATA:X=1,DATA-ID=\"" + name + "\",VALUE=\"v\"\n";
        return text + variant;
    });
    appendRecords("session keys", "#EXT-X-SESSION-KEY:METHOD=AES-128,URI=\"key~\"\n");
    appendRecords("session keys of one URI", "#EXT-X-SESSION-KEY:METHOD=AES-128,URI=\"key\"\n");
    appendRecords("stream information without variants", "#ZOR-STREAM-INF:NOMINAL_VIDEO_BITRATE=~\n");
    append("versions of a key format", [](std::size_t n) {
        return "#EXT-X-SESSION-KEY:METHOD=AES-128,URI=\"key\",KEYFORMAT=\"f\",KEYFORMATVERSIONS=\"" +
               counted(n, "~/") + "1\"\n" + variant;
    });
    append("characteristics of a rendition", [audio](std::size_t n) {
        return audio + "GROUP-ID=\"g\",NAME=\"n\",CHARACTERISTICS=\"" + counted(n, "c~,") + "c\"\n" + variant;
    });
    append("lines that are no tags", [](std::size_t n) { return variant + counted(n, "line~\n"); });
}

void appendMedia(std::vector<Input>& inputs) {
    const auto append = [&inputs](const char* name, std::function<std::string(std::size_t)> text) {
        inputs.push_back({name, VELHLSDiagnostics::Media, manyRecords, std::move(text)});
    };
    const auto appendRecords = [&append](const char* name, const std::string& record) {
        append(name, [record](std::size_t n) {
            return "#EXT-X-TARGETDURATION:6\n" + counted(n, record) + segment;
        });
    };
    const std::string key = "#EXT-X-KEY:METHOD=AES-128,URI=\"key~\"\n";
    appendRecords("segments", segment);
    appendRecords("segments with keys", key + segment);
    appendRecords("segments with maps", "#EXT-X-MAP:URI=\"map~\"\n" + segment);
    appendRecords("segments with dates", "#EXT-X-PROGRAM-DATE-TIME:2020-01-01T10:00:05.250Z\n" + segment);
    appendRecords("segments with byte ranges", "#EXT-X-BYTERANGE:1~@1~\n" + segment);
    appendRecords("segments with cues", "#EXT-X-CUE-OUT:~\n#EXT-X-CUE-OUT-CONT:~\n#EXT-X-CUE-IN\n" + segment);
    appendRecords("segments after discontinuities", "#EXT-X-DISCONTINUITY\n" + segment);
    appendRecords("segments that are too long", "#EXTINF:77,title ~\nsegment~.ts\n");
    appendRecords("keys of one segment", key);
    appendRecords("maps of one segment", "#EXT-X-MAP:URI=\"map~\"\n");
    appendRecords("dates of one segment", "#EXT-X-PROGRAM-DATE-TIME:2020-01-01T10:00:05.250Z\n");
    appendRecords("byte ranges of one segment", "#EXT-X-BYTERANGE:1~@1~\n");
    appendRecords("EXTINF of one segment", "#EXTINF:6,title ~\n");
    append("segments that are rejected",
           [](std::size_t n) { return counted(n, "#EXTINF:0,\nsegment~.ts\n"); });
    append("byte ranges in a URI", [](std::size_t n) {
        return "#EXTINF:6,\nsegment" + counted(n, "/bytes=~-2~/range/~-2~") + ".ts\n";
    });
    append("a date of many digits", [](std::size_t n) {
        return "#EXT-X-PROGRAM-DATE-TIME:2020-01-01T10:00:05." + std::string(16 * n, '7') + "Z\n" + segment;
    });
    append("a duration of many zeros",
           [](std::size_t n) { return "#EXTINF:" + std::string(16 * n, '0') + "6,\nsegment1.ts\n"; });
}

/// What is remembered of lines and of what is in force from one segment to the next.
void appendInForce(std::vector<Input>& inputs) {
    const auto append = [&inputs](const char* name, std::function<std::string(std::size_t)> text) {
        inputs.push_back({name, VELHLSDiagnostics::Media, manyRecords, std::move(text)});
    };
    const std::string key = "#EXT-X-KEY:METHOD=SAMPLE-AES,URI=\"key\",KEYFORMAT=";
    append("keys of many formats", [key](std::size_t n) { return counted(n, key + "\"f~\"\n" + segment); });
    append("keys of formats that replace each other", [key](std::size_t n) {
        std::string formats;
        for (const char format : std::string("abcdefghijklmnopqrst"))
            formats += key + "\"" + format + "\"\n" + segment;
        return times(n / 16, formats);
    });
    // So many that the findings that are listed, which are bounded, weigh little beside them.
    append("URIs of one character", [](std::size_t n) { return times(16 * n, "a\n"); });
    append("byte ranges that follow each other",
           [](std::size_t n) { return times(n, "#EXT-X-BYTERANGE:1\n" + segment); });
    append("a segment of many lines that are not its own",
           [](std::size_t n) { return "#EXTINF:6,\n" + counted(n, "#EXT-X-VERSION:~\n") + "segment1.ts\n"; });
    append("keys and maps by turns", [key](std::size_t n) {
        const std::string map = "#EXT-X-MAP:URI=\"init1.mp4\"\n";
        return times(n / 2, key + "\"a\"\n" + map + segment + key + "\"b\"\n" + map + segment);
    });
    append("many short lines, and a long one",
           [](std::size_t n) { return times(n, "\n") + segment + std::string(64 * n, 'a') + "\n"; });
}

void appendVariables(std::vector<Input>& inputs) {
    const auto append = [&inputs](const char* name, std::function<std::string(std::size_t)> text) {
        inputs.push_back({name, VELHLSDiagnostics::Media, manyRecords, std::move(text)});
    };
    const std::string x = "#EXT-X-DEFINE:NAME=\"x\",VALUE=\"1\"\n";
    append("variables", [](std::size_t n) { return counted(n, "#EXT-X-DEFINE:NAME=\"x~\",VALUE=\"1\"\n"); });
    append("variables of one name", [x](std::size_t n) { return times(n, x); });
    append("variables that crowd", [](std::size_t n) { return definesOf(crowdedNames(n, 64)); });
    append("variables that crowd one place", [](std::size_t n) {
        // Finding them takes the square of their number.
        return definesOf(crowdedNames(n / 4, n / 4));
    });
    append("variables in each other", [](std::size_t n) {
        std::string text = "#EXT-X-DEFINE:NAME=\"x0\",VALUE=\"1\"\n";
        for (std::size_t index = 1; index < n; ++index) {
            text += "#EXT-X-DEFINE:NAME=\"x" + std::to_string(index) + "\",VALUE=\"{$x" +
                    std::to_string(index - 1) + "}\"\n";
        }
        return text + patternOf("#EXTINF:6,\nsegment{$x" + std::to_string(n - 1) + "}.ts\n", "0");
    });
    append("references in a URI", [x](std::size_t n) {
        return x + patternOf("#EXTINF:6,\nsegment" + times(n, "{$x}") + ".ts\n", "1");
    });
    append("references to references in a URI", [x](std::size_t n) {
        return x + "#EXT-X-DEFINE:NAME=\"y\",VALUE=\"{$x}\"\n" +
               patternOf("#EXTINF:6,\nsegment" + times(n, "{$y}") + ".ts\n", "1");
    });
    append("references without an end", [x](std::size_t n) {
        return x + patternOf("#EXTINF:6,\nsegment" + times(n, "{$x") + ".ts\n", "1");
    });
    append("references that are none in a URI",
           [](std::size_t n) { return "#EXTINF:6,\nsegment" + times(16 * n, "{$x.") + ".ts\n"; });
    append("patterns", [x](std::size_t n) {
        return x + times(n, patternOf("#EXTINF:6,\nsegment{$x}.ts\n#ZOR-DEFINE_INCREMENT:x,1\n", "1"));
    });
    append("patterns that are rejected",
           [](std::size_t n) { return times(n, patternOf("#EXTINF:6,\nsegment{$unknown}.ts\n", "1")); });
    append("a pattern's lines", [x](std::size_t n) {
        return x + patternOf(times(n, "#EXTINF:6,\nsegment{$x}.ts\n#ZOR-DEFINE_INCREMENT:x,1\n"), "0");
    });
    append("a pattern's passes", [x](std::size_t n) {
        return x + patternOf("#EXTINF:6,\nsegment{$x}.ts\n#ZOR-DEFINE_INCREMENT:x,1\n", std::to_string(n));
    });
    append("a pattern without an end",
           [](std::size_t n) { return "#ZOR-PATTERN_START:p\n" + times(n, segment); });
    append("lines before a pattern", [](std::size_t n) {
        return "#EXTINF:6,\n" + counted(n, "# comment ~\n") + patternOf("segment1.ts\n", "1");
    });
    for (const char* count :
         {"-9223372036854775808", "-1", "0", "00000000000000000001", "9223372036854775807"}) {
        inputs.push_back({std::string("a pattern's lines, repeat count ") + count, VELHLSDiagnostics::Media,
                          manyRecords,
                          [count](std::size_t n) { return patternOf(times(n, segment), count); }});
    }
}

}  // namespace

std::vector<Input> inputs() {
    std::vector<Input> all;
    appendLines(all);
    appendAttributes(all);
    appendTags(all);
    appendMasters(all);
    appendMedia(all);
    appendInForce(all);
    appendVariables(all);
    return all;
}

}  // namespace hostile
