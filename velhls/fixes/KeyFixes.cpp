// Keys.
#include <iterator>

#include "velhls/common/Names.h"
#include "velhls/common/ReasonText.h"
#include "velhls/common/TextScan.h"
#include "velhls/fixes/FaultyText.h"

namespace velhls {
namespace {

bool isSessionKey(const Fault& fault) {
    return fault.line.name == tag::sessionKey;
}

void fixMethodMissing(const Fault& fault) {
    const bool hasUri = fault.line.attributes().find(attribute::uri).has_value();
    const std::string method(hasUri ? fixed::aes128 : fixed::none);
    if (hasUri || !isSessionKey(fault))
        fault.guess("gives the key METHOD=" + method, fault.setAttribute(attribute::method, method));
    if (isSessionKey(fault)) fault.removeLine("the key is lost until a media playlist names it");
}

/// In another case, or a kind of SAMPLE-AES that has a name of its own.
void fixMethodUnknown(const Fault& fault) {
    const auto method = fault.line.attributes().find(attribute::method);
    if (!method) return;
    const std::string upper = inUpperCase(method->value);
    std::string known;
    if (upper == fixed::none || upper == fixed::aes128) known = upper;
    if (startsWith(upper, fixed::sampleAes)) known = fixed::sampleAes;
    if (!known.empty())
        fault.guess("writes METHOD=" + known + " for " + quoted(method->value),
                    fault.setAttribute(attribute::method, known));
    if (isSessionKey(fault)) fault.removeLine("the key is lost until a media playlist names it");
}

void fixUriMissing(const Fault& fault) {
    if (isSessionKey(fault)) return fault.removeLine("it names no key");
    fault.guess("says that nothing is encrypted from here on",
                replaceValue(fault.document(), fault.line.number, "METHOD=NONE"));
}

/// A number of 128 bits however many digits it has: "0x" and 32 of them; empty where it is none.
std::string wholeIv(std::string_view written) {
    constexpr std::size_t length = 32;
    written.remove_prefix(2);
    while (written.size() > length && written.front() == '0')
        written.remove_prefix(1);
    if (written.size() > length) return {};
    return "0x" + std::string(length - written.size(), '0') + std::string(written);
}

void fixIv(const Fault& fault) {
    const auto iv = fault.line.attributes().find(attribute::iv);
    if (!iv) return;
    const std::string_view value = bare(iv->value);
    const bool hasPrefix = startsWith(value, "0x") || startsWith(value, "0X");
    const std::string_view written = hasPrefix ? value.substr(2) : value;
    if (!written.empty() && holdsOnly(written, hexadecimalDigits)) {
        const std::string whole = wholeIv("0x" + std::string(written));
        const std::vector<VELHLSEdit> edits = {fault.replace(iv->value, whole)};
        if (!whole.empty() && hasPrefix) return fault.safe("writes " + whole + ", the same number", edits);
        if (!whole.empty()) fault.guess("writes " + whole, edits);
    }
    fault.removeAttribute(attribute::iv);
}

/// What METHOD=NONE makes of all others.
void fixAttributesOfNone(const Fault& fault) {
    fault.safe("removes the attributes that mean nothing with METHOD=NONE",
               replaceValue(fault.document(), fault.line.number, "METHOD=NONE"));
}

void fixVersions(const Fault& fault) {
    fault.removeAttribute(attribute::keyFormatVersions);
}

void fixNoSessionKey(const Fault& fault) {
    fault.removeLine("it names no key");
}

void fixRepeatedKey(const Fault& fault) {
    const std::size_t first = fault.text.firstLike(fault.line);
    if (first != 0 && first < fault.line.number)
        return fault.safe("removes the tag, which repeats another one",
                          {fault.document().removeLine(fault.line.number)});
    fault.removeLine("another one names the same key");
}

// clang-format off
constexpr FixEntry entries[] = {
    {"key-method-missing", fixMethodMissing,
     "guess: says AES-128 where there is a URI, and NONE where there is none; lossy: removes EXT-X-SESSION-KEY"},
    {"key-method-unknown", fixMethodUnknown,
     "guess: writes the method in upper case, and SAMPLE-AES for what begins so; lossy: removes EXT-X-SESSION-KEY"},
    {"key-uri-missing", fixUriMissing, "guess: says METHOD=NONE; lossy: removes EXT-X-SESSION-KEY"},
    {"key-iv-malformed", fixIv,
     "safe: writes the same number with 0x and 32 digits; guess: puts 0x before digits that lack it; lossy: removes the IV"},
    {"key-format-versions-malformed", fixVersions, "lossy: removes KEYFORMATVERSIONS"},
    {"session-key-method-none", fixNoSessionKey, "lossy: removes the tag"},
    {"key-iv-too-short", fixIv, "safe: writes the same number with 32 digits"},
    {"key-iv-too-long", fixIv, "safe: removes zeros before the number; lossy: removes the IV"},
    {"key-without-uri", fixUriMissing, "guess: says METHOD=NONE; lossy: removes EXT-X-SESSION-KEY"},
    {"key-none-with-attributes", fixAttributesOfNone, "safe: removes the other attributes, which mean nothing"},
    {"session-key-of-none", fixNoSessionKey, "lossy: removes the tag"},
    {"session-key-twice", fixRepeatedKey, "safe: removes a tag that is the same; lossy: removes one that says the same of the key"},
    {"session-key-repeated", fixRepeatedKey, "safe: removes a tag that is the same; lossy: removes one that says the same of the key"},
};
// clang-format on

}  // namespace

FixTable keyFixes() {
    return {entries, std::size(entries)};
}

}  // namespace velhls
