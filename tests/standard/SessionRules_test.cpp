#include "tests/standard/Breach.h"

namespace standard_test {

std::vector<Breach> sessionBreaches() {
    const std::string key =
        "#EXT-X-SESSION-KEY:METHOD=AES-128,URI=\"key\",IV=0x000102030405060708090A0B0C0D0E0F,KEYFORMAT="
        "\"identity\"\n";
    return {
        {"data without a value", master, ",URI=\"lyrics.json\"", "", "session-data-says-nothing", 11},
        {"data with a value and a URI", master, ",URI=\"lyrics.json\"", ",VALUE=\"la\",URI=\"lyrics.json\"",
         "session-data-says-two-things", 11},
        {"an ID without a domain", master, "com.example.lyrics", "lyrics", "session-data-id-not-reverse-dns",
         11},
        {"two data of one ID and language", master, "com.example.lyrics\"",
         "com.example.title\",LANGUAGE=\"en\"", "session-data-twice", 11},
        {"two data of one ID without a language", master, "#EXT-X-SESSION-KEY",
         "#EXT-X-SESSION-DATA:DATA-ID=\"com.example.lyrics\",VALUE=\"la\"\n#EXT-X-SESSION-KEY",
         "session-data-twice", 12},
        {"a session key of NONE", master, "METHOD=AES-128", "METHOD=NONE", "session-key-of-none", 12},
        {"two equal session keys", master, key, key + key, "session-key-twice", 13},
        {"two session keys that are equal by default", master, key,
         key + "#EXT-X-SESSION-KEY:METHOD=AES-128,URI=\"key\",IV=0x000102030405060708090A0B0C0D0E0F\n",
         "session-key-twice-by-default", 13},
    };
}

}  // namespace standard_test
