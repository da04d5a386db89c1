#include "velhls/writer/SafeText.h"

#include "velhls/common/TextScan.h"

namespace velhls {
namespace {

constexpr CharacterSet ofVariableNames("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_");
constexpr std::string_view isReference = "refers to a variable, and variables are not written";

}  // namespace

bool refersToVariable(std::string_view text) {
    constexpr std::string_view start = "{$";
    for (std::size_t place = text.find(start); place != std::string_view::npos;
         place = text.find(start, place)) {
        const std::size_t name = place + start.size();
        place = name;
        while (place < text.size() && ofVariableNames.holds(text[place]))
            ++place;
        if (place > name && place < text.size() && text[place] == '}') return true;
    }
    return false;
}

std::string_view whyNoOddUriLine(std::string_view text) {
    if (holdsLineEnd(text)) return "holds a line end";
    if (refersToVariable(text)) return isReference;
    const std::size_t start = text.find_first_not_of(" \t\v\f");
    if (start == std::string_view::npos) return "is blank";
    return text[start] == '#' ? "begins with \"#\"" : std::string_view();
}

std::string_view whyNotOddQuoted(std::string_view text) {
    if (holdsLineEnd(text)) return "holds a line end";
    if (text.find('"') != std::string_view::npos) return "holds a quote";
    return refersToVariable(text) ? isReference : std::string_view();
}

}  // namespace velhls
