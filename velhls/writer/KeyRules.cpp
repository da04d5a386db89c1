#include "velhls/writer/KeyRules.h"

#include <algorithm>

#include "velhls/writer/SafeText.h"

namespace velhls {

std::string_view whyNoKey(const VELHLSProtectionData& key) {
    const bool hasMethod = key.method == VELHLSProtectionData::None ||
                           key.method == VELHLSProtectionData::AES128 ||
                           key.method == VELHLSProtectionData::SampleAES;
    if (!hasMethod) return "has no METHOD";
    if (key.method == VELHLSProtectionData::None) return {};
    if (key.uri.empty()) return "has no URI";
    if (!key.validate()) return "has an IV that is not \"0x\" and 32 hexadecimal digits";
    if (refersToVariable(key.uri) || refersToVariable(key.keyFormat)) {
        return "refers to a variable, and variables are not written";
    }
    if (!whyNotQuoted(key.uri).empty()) return "has a URI that holds a line end or a quote";
    if (!whyNotQuoted(key.keyFormat).empty()) return "has a KEYFORMAT that holds a line end or a quote";
    const auto& versions = key.keyFormatVersions;
    const bool hasVersions = !versions.empty() && *std::min_element(versions.begin(), versions.end()) >= 0;
    return hasVersions ? std::string_view() : "has KEYFORMATVERSIONS that are none";
}

std::int32_t versionNeededBy(const VELHLSProtectionData& key) {
    const bool isFirstVersion = key.keyFormatVersions.size() == 1 && key.keyFormatVersions.front() == 1;
    if (!key.keyFormat.empty() || !isFirstVersion) return 5;
    return key.iv.empty() ? 1 : 2;
}

}  // namespace velhls
