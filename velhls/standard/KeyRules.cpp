#include <algorithm>
#include <iterator>
#include <set>
#include <string>

#include "velhls/common/Names.h"
#include "velhls/common/TextScan.h"
#include "velhls/document/VELHLSSyntax.h"
#include "velhls/standard/CheckedPlaylist.h"

namespace velhls {
namespace {

bool isKey(const CheckedLine& checked) {
    return checked.is(tagIndexOf<tag::key>);
}

bool hasMethod(const CheckedLine& checked, std::string_view name) {
    const VELHLSAttribute* const method = checked.find(attribute::method);
    return method != nullptr && method->value == name;
}

void findAttributesOfNone(const CheckedLine& checked, const Tell& tell) {
    if (!isKey(checked) || !hasMethod(checked, fixed::none)) return;
    for (const VELHLSAttribute& attribute : checked.attributes) {
        if (!attribute.name.empty() && attribute.name != attribute::method)
            tell(checked.line, attribute.name);
    }
}

void findUriMissing(const CheckedLine& checked, const Tell& tell) {
    if (isKey(checked) && !checked.value.empty() && !hasMethod(checked, fixed::none) &&
        checked.find(attribute::uri) == nullptr)
        tell(checked.line, checked.line.name, {{}, "none", {}});
}

// Of 128 bits.
constexpr std::size_t digitsOfIv = 32;

/// The digits of IV; empty where it is none.
std::string_view ivDigits(const CheckedLine& checked) {
    const VELHLSAttribute* const iv = checked.find(attribute::iv);
    if (iv == nullptr || iv->quoted) return {};
    return VELHLSSyntax::readHexadecimalSequence(iv->value).value_or(std::string_view());
}

void findLongIv(const CheckedLine& checked, const Tell& tell) {
    const std::string_view digits = ivDigits(checked);
    if (digits.size() <= digitsOfIv) return;
    const std::string seen = std::to_string(digits.size()) + " digits";
    tell(checked.line, digits, {{}, seen, {}});
}

void findShortIv(const CheckedLine& checked, const Tell& tell) {
    const std::string_view digits = ivDigits(checked);
    if (digits.empty() || digits.size() >= digitsOfIv) return;
    const std::string seen = std::to_string(digits.size()) + " digits";
    tell(checked.line, digits, {{}, seen, {}});
}

void findOddVersions(const CheckedLine& checked, const Tell& tell) {
    const VELHLSAttribute* const versions = checked.find(attribute::keyFormatVersions);
    if (versions == nullptr || !versions->quoted) return;
    bool isOdd = false;
    forEachPart(versions->value, '/', [&isOdd](std::string_view version) {
        isOdd = isOdd || VELHLSSyntax::readDecimalInteger(version).value_or(0) == 0;
    });
    if (isOdd) tell(checked.line, versions->value);
}

/// The key's line is at fault: once, however many maps it applies to, and each key is looked at once.
void findIvMissing(const CheckedPlaylist& playlist, const Tell& tell) {
    std::set<std::uint32_t> seenKeys;
    for (const std::uint32_t number : playlist.lines(tagIndexOf<tag::map>)) {
        for (const std::uint32_t key : playlist.structure().inForceAt(number).keyLines) {
            if (!seenKeys.insert(key).second) continue;
            const VELHLSLine line = playlist.document().line(key);
            if (valueOf(line, attribute::method) != fixed::aes128 || valueOf(line, attribute::iv)) continue;
            const std::string seen = "none, and EXT-X-MAP in line " + std::to_string(number);
            tell(line, line.name, {{}, seen, {}});
        }
    }
}

/// What a segment is encrypted with.
struct Encryption {
    std::string_view method;
    std::string_view iv;
};

Encryption encryptionOf(const VELHLSLine& line) {
    Encryption encryption;
    for (const VELHLSAttribute& attribute : line.attributes()) {
        if (attribute.name == attribute::method) encryption.method = attribute.value;
        if (attribute.name == attribute::iv)
            encryption.iv = attribute.value.substr(std::min<std::size_t>(2, attribute.value.size()));
    }
    return encryption;
}

/// Goes through the keys in order, each scanned once, and tells of one that applies together with another one.
void findDisagreement(const CheckedPlaylist& playlist, const Tell& tell) {
    if (!playlist.isMedia()) return;
    std::size_t before = 0;
    Encryption encryptionBefore;
    for (const std::uint32_t number : playlist.lines(tagIndexOf<tag::key>)) {
        const VELHLSLine line = playlist.document().line(number);
        const Encryption encryption = encryptionOf(line);
        const auto keys = playlist.structure().inForceAt(number).keyLines;
        const bool appliesWithIt = std::find(keys.begin(), keys.end(), before) != keys.end() &&
                                   std::find(keys.begin(), keys.end(), number) != keys.end();
        const bool isOfOneSegment =
            playlist.structure().segmentOf(number) == playlist.structure().segmentOf(before);
        const bool differs =
            encryption.method != encryptionBefore.method || encryption.iv != encryptionBefore.iv;
        if (before != 0 && appliesWithIt && isOfOneSegment && differs) {
            const std::string expected = "the METHOD and IV of the key in line " + std::to_string(before) +
                                         ", which applies to the same segments";
            tell(line, line.name, {expected, "others", {}});
        }
        before = number;
        encryptionBefore = encryption;
    }
}

// clang-format off
constexpr LineEntry rules[] = {
    {{{"key-none-with-attributes", error, "A key of METHOD=NONE has other attributes.",
       "no other attribute with METHOD=NONE", "RFC 8216, section 4.3.2.4", false}, "MUST NOT"}, findAttributesOfNone},
    {{{"key-without-uri", error, "A key has no URI.",
       "URI, unless METHOD is NONE", "RFC 8216, section 4.3.2.4", false}, "REQUIRED"}, findUriMissing},
    {{{"key-iv-too-long", error, "An initialization vector has more than 128 bits.",
       "32 digits", "RFC 8216, section 4.3.2.4", false}, "SYN"}, findLongIv},
    {{{"key-iv-too-short", warning, "An initialization vector has fewer than 32 digits.",
       "32 digits", "RFC 8216, section 4.3.2.4", false}, "SYN"}, findShortIv},
    {{{"key-format-versions-invalid", error, "KEYFORMATVERSIONS is not made of positive integers and slashes.",
       "positive integers with slashes between them", "RFC 8216, section 4.3.2.4", false}, "SYN"}, findOddVersions},
};

constexpr PlaylistEntry relations[] = {
    {{{"key-iv-missing-for-map", error, "A key of METHOD=AES-128 applies to EXT-X-MAP and has no IV.",
       "IV, since the key applies to EXT-X-MAP", "RFC 8216, section 4.3.2.5", false}, "REQUIRED"}, findIvMissing},
    {{{"keys-disagree", error, "Two keys apply to one segment, and have other methods or initialization vectors.",
       "keys with one METHOD and one IV", "RFC 8216, section 6.2.3", false}, "SYN"}, findDisagreement},
};
// clang-format on

}  // namespace

StandardTable<CheckedLine> keyRules() {
    return {rules, std::size(rules)};
}

StandardTable<CheckedPlaylist> keyRelationRules() {
    return {relations, std::size(relations)};
}

}  // namespace velhls
