#include "tests/standard/Breach.h"

namespace standard_test {

std::vector<Breach> keyBreaches() {
    return {
        {"METHOD=NONE with URI", fragments, "METHOD=NONE", "METHOD=NONE,URI=\"key\"",
         "key-none-with-attributes", 8},
        {"METHOD=NONE with KEYFORMAT", fragments, "METHOD=NONE", "METHOD=NONE,KEYFORMAT=\"identity\"",
         "key-none-with-attributes", 8},
        {"a key without URI", fragments, "URI=\"key\",IV", "IV", "key-without-uri", 4},
        {"an IV that is too short", fragments, "0x000102", "0x0102", "key-iv-too-short", 4},
        {"an IV that is too long", fragments, "0x000102", "0xFF000102", "key-iv-too-long", 4},
        {"the IV of a session key that is too long", master, "0x000102", "0xFF000102", "key-iv-too-long", 12},
        {"key format versions with a comma", fragments, "\"1/2\"", "\"1,2\"", "key-format-versions-invalid",
         13},
        {"key format version 0", fragments, "\"1/2\"", "\"0\"", "key-format-versions-invalid", 13},
        {"an empty key format version", fragments, "\"1/2\"", "\"1//2\"", "key-format-versions-invalid", 13},
        {"AES-128 of a map without IV", fragments, ",IV=0x000102030405060708090A0B0C0D0E0F", "",
         "key-iv-missing-for-map", 4},
        {"two keys of one segment with other methods", fragments, "SAMPLE-AES,URI=\"skd", "AES-128,URI=\"skd",
         "keys-disagree", 14},
        {"two keys of one segment with other IVs", fragments, "URI=\"skd://key\"",
         "URI=\"skd://key\",IV=0x000102030405060708090A0B0C0D0E0F", "keys-disagree", 14},
    };
}

}  // namespace standard_test
