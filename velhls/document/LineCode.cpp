#include "velhls/document/LineCode.h"

#include "velhls/common/TextScan.h"
#include "velhls/document/TagLookup.h"

namespace velhls {
namespace {

constexpr CharacterSet nameEnds(": \t\r\n");
constexpr CharacterSet vendorNameCharacters("ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_");
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

std::string_view withoutStart(std::string_view text, bool isFirst) {
    if (isFirst && startsWith(text, byteOrderMark)) text.remove_prefix(byteOrderMark.size());
    while (!text.empty() && blanks.holds(text.front()))
        text.remove_prefix(1);
    return text;
}

std::string_view nameIn(std::string_view text) {
    std::size_t length = 0;
    while (length < text.size() && !nameEnds.holds(text[length]))
        ++length;
    return firstOf(text, length);
}

}  // namespace

LineParts partsOf(std::string_view text, bool isFirst) {
    LineParts parts;
    parts.content = text.empty() || text.front() == '#' ? text : withoutStart(text, isFirst);
    if (parts.content.empty()) return parts;
    if (parts.content.front() != '#') {
        parts.kind = VELHLSLine::Uri;
        return parts;
    }
    parts.kind = startsWith(parts.content, "#EXT") ? VELHLSLine::Tag : VELHLSLine::Comment;
    parts.name = nameIn(withoutFirst(parts.content, 1));
    const bool hasNoName = parts.kind == VELHLSLine::Comment && !holdsOnly(parts.name, vendorNameCharacters);
    if (hasNoName) parts.name = {};
    return parts;
}

LineCode codeOf(const LineParts& parts) {
    if (parts.name.empty()) return LineCode::of(parts.kind);
    const std::size_t tag = findTag(parts.name);
    return tag == noTag ? LineCode::of(parts.kind) : LineCode::ofTag(tag);
}

}  // namespace velhls
