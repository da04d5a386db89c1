#include "fuzz/FuzzTarget.h"
#include "tests/support/PlainForms.h"

namespace {

std::string described(const VELHLSAttributeMap* map) {
    if (map == nullptr) return "malformed";
    std::string text;
    for (const auto& [name, value] : *map)
        text.append(name).append("=<").append(value).append(">\n");
    return text;
}

}  // namespace

VELHLS_FUZZ_TARGET(attributes) {
    const auto map = fuzz::bounded(text.size(), {48}, [&] { return VELHLSUtility::parseAttributeMap(text); });
    const auto plainMap = plain::attributeMap(text);
    fuzz::expectEqual(described(map.get()), described(plainMap ? &*plainMap : nullptr),
                      "the attributes as their plain form");
    const std::string longText = fuzz::prolonged(text, ",");
    static_cast<void>(
        fuzz::bounded(longText.size(), {48}, [&] { return VELHLSUtility::parseAttributeMap(longText); }));
    if (map == nullptr) return;

    std::string written;
    for (const auto& [name, value] : *map) {
        fuzz::expect(name.find_first_of("=,\"") == std::string::npos, "a name holds no separator", name);
        fuzz::expect(value.find('"') == std::string::npos, "a value holds no quote", value);
        if (!written.empty()) written += ',';
        written.append(name).append("=\"").append(value).append("\"");
    }
    fuzz::expectEqual(described(VELHLSUtility::parseAttributeMap(written).get()), described(map.get()),
                      "what the map is written as parses to an equal one");
}
