#include "tests/standard/Breach.h"

namespace standard_test {

using namespace std::string_literals;

std::vector<Breach> textBreaches() {
    return {
        {"a title in Latin-1", vod, "Intro", "Caf\xE9", "not-utf-8", 7},
        {"UTF-16", vod, vod, "\xFF\xFE#\0E\0X\0T\0M\0003\0U\0\n\0"s, "encoded-as-utf-16", 1},
        {"a byte order mark", vod, "#EXTM3U", "\xEF\xBB\xBF#EXTM3U", "begins-with-byte-order-mark", 1},
        {"a bell in a title", vod, "Intro", "In\atro", "control-character", 7},
        {"a tab in a title", vod, "Intro", "In\ttro", "control-character", 7},
        {"a NUL in a title", vod, "Intro", "In\0tro"s, "control-character", 7},
        {"DEL in a quoted string", master, "\"English\"", "\"Eng\x7Flish\"",
         "control-character,group-members-differ", 4},
        {"a control character of Unicode's second block", vod, "Intro", "In\xC2\x85tro", "control-character",
         7},
        {"a letter and its accent apart", master, "A title",
         "Caf"
         "e\xCC\x81",
         "text-not-normalized", 10},
        {"a carriage return alone", vod, "Intro\n", "Intro\rfirst\n", "carriage-return-inside-line", 7},
        {"white space before a tag", vod, "#EXT-X-TARGET", " #EXT-X-TARGET", "white-space", 3},
        {"white space before a tag that nobody knows", vod, "#EXT-X-ENDLIST", "\t#EXT-X-NEW\n#EXT-X-ENDLIST",
         "white-space", 13},
        {"white space after a URI", vod, "first.ts", "first.ts ", "white-space", 8},
        {"white space inside a URI", vod, "first.ts", "fir st.ts", "white-space", 8},
        {"white space after a value", vod, "DURATION:6", "DURATION:6 ", "white-space", 3},
        {"white space after a colon", vod, "DURATION:6", "DURATION: 6", "white-space", 3},
        {"white space after a tag without a value", vod, "#EXT-X-ENDLIST", "#EXT-X-ENDLIST ", "white-space",
         13},
        {"white space before a URI", vod, "first.ts", " first.ts", "white-space", 8},
        {"white space after a variant's URI", master, "low.m3u8", "low.m3u8 ", "white-space", 14},
        {"white space after an attribute list", master, "AUDIO=\"surround\"\n", "AUDIO=\"surround\" \n",
         "white-space", 15},
        {"a percent sign without digits", vod, "first.ts", "fir%zzst.ts", "uri-malformed", 8},
        {"a percent sign at the end", vod, "first.ts", "first.ts%4", "uri-malformed", 8},
        {"braces in a URI", vod, "first.ts", "{first}.ts", "uri-malformed", 8},
        {"two fragments in a URI", vod, "first.ts", "first.ts#a#b", "uri-malformed", 8},
        {"white space in the URI of an attribute", master, "\"de.m3u8\"", "\"d e.m3u8\"", "uri-malformed", 5},
    };
}

}  // namespace standard_test
