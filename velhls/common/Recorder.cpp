#include "velhls/common/Recorder.h"

#include <cstddef>

namespace velhls {
namespace {

/// Where a text of UTF-8 may be cut: not inside a character.
std::size_t cutAtCharacter(std::string_view text, std::size_t length) {
    constexpr unsigned char continuationMask = 0xC0;
    constexpr unsigned char continuation = 0x80;
    constexpr std::size_t longestCharacter = 4;
    std::size_t cut = length;
    while (cut + longestCharacter > length &&
           (static_cast<unsigned char>(text[cut]) & continuationMask) == continuation)
        --cut;
    return cut;
}

}  // namespace

std::string quoted(std::string_view text) {
    constexpr std::size_t longest = 80;
    const bool isLong = text.size() > longest;
    std::string quotedText = "\"";
    quotedText += isLong ? text.substr(0, cutAtCharacter(text, longest)) : text;
    quotedText += isLong ? "...\"" : "\"";
    return quotedText;
}

void report(Recorder& recorder, Rule rule, std::string_view where) {
    recorder.report(rule, where, {});
}

void reportMissing(Recorder& recorder, Rule rule, std::string_view where) {
    recorder.report(rule, where, "none");
}

bool reject(Recorder* recorder, Rule rule, std::string_view where) {
    tell(recorder, rule, where);
    return false;
}

bool rejectMissing(Recorder* recorder, Rule rule, std::string_view where) {
    tellMissing(recorder, rule, where);
    return false;
}

}  // namespace velhls
