#include <iterator>
#include <map>
#include <set>
#include <string>
#include <tuple>

#include "velhls/common/Names.h"
#include "velhls/document/VELHLSSyntax.h"
#include "velhls/standard/CheckedPlaylist.h"

namespace velhls {
namespace {

bool isData(const CheckedLine& checked) {
    return checked.is(tagIndexOf<tag::sessionData>) && !checked.value.empty();
}

void findNothingSaid(const CheckedLine& checked, const Tell& tell) {
    if (isData(checked) && checked.find(attribute::value) == nullptr &&
        checked.find(attribute::uri) == nullptr)
        tell(checked.line, checked.line.name, {{}, "neither", {}});
}

void findSaidTwice(const CheckedLine& checked, const Tell& tell) {
    const VELHLSAttribute* const uri = checked.find(attribute::uri);
    if (isData(checked) && checked.find(attribute::value) != nullptr && uri != nullptr)
        tell(checked.line, uri->text, {{}, "both", {}});
}

void findPlainId(const CheckedLine& checked, const Tell& tell) {
    const VELHLSAttribute* const id = checked.find(attribute::dataId);
    if (isData(checked) && id != nullptr && id->value.find('.') == std::string_view::npos)
        tell(checked.line, id->value);
}

void findKeyOfNone(const CheckedLine& checked, const Tell& tell) {
    const VELHLSAttribute* const method = checked.find(attribute::method);
    if (checked.is(tagIndexOf<tag::sessionKey>) && method != nullptr && method->value == fixed::none)
        tell(checked.line, method->value);
}

void findRepeatedData(const CheckedPlaylist& playlist, const Tell& tell) {
    if (!playlist.isMaster()) return;
    std::map<std::pair<std::string_view, std::string_view>, std::uint32_t> first;
    for (const std::uint32_t number : playlist.lines(tagIndexOf<tag::sessionData>)) {
        const VELHLSLine line = playlist.document().line(number);
        const auto id = line.attributes().find(attribute::dataId);
        if (!id) continue;
        const auto [place, isFirst] =
            first.emplace(std::pair(id->value, valueOf(line, attribute::language).value_or("")), number);
        const std::string seen = "the same as in line " + std::to_string(place->second);
        if (!isFirst) tell(line, id->value, {{}, seen, {}});
    }
}

/// What tells one session key from another.
using Key =
    std::tuple<std::string_view, std::string_view, std::string_view, std::string_view, std::string_view>;

Key keyOf(const VELHLSLine& line, std::string_view format, std::string_view versions) {
    return {valueOf(line, attribute::method).value_or(""), valueOf(line, attribute::uri).value_or(""),
            valueOf(line, attribute::iv).value_or(""), valueOf(line, attribute::keyFormat).value_or(format),
            valueOf(line, attribute::keyFormatVersions).value_or(versions)};
}

void findRepeatedKey(const CheckedPlaylist& playlist, const Tell& tell) {
    if (!playlist.isMaster()) return;
    std::map<Key, std::uint32_t> first;
    for (const std::uint32_t number : playlist.lines(tagIndexOf<tag::sessionKey>)) {
        const VELHLSLine line = playlist.document().line(number);
        const auto [place, isFirst] = first.emplace(keyOf(line, "", ""), number);
        const std::string seen = "the same as in line " + std::to_string(place->second);
        if (!isFirst) tell(line, line.name, {{}, seen, {}});
    }
}

/// Those that are equal only since one of them leaves out what the other one says.
void findKeyRepeatedByDefault(const CheckedPlaylist& playlist, const Tell& tell) {
    if (!playlist.isMaster()) return;
    std::set<Key> asWritten;
    std::map<Key, std::uint32_t> first;
    for (const std::uint32_t number : playlist.lines(tagIndexOf<tag::sessionKey>)) {
        const VELHLSLine line = playlist.document().line(number);
        const bool isNew = asWritten.insert(keyOf(line, "", "")).second;
        const auto [place, isFirst] = first.emplace(keyOf(line, "identity", "1"), number);
        const std::string seen = "the same as in line " + std::to_string(place->second);
        if (isNew && !isFirst) tell(line, line.name, {{}, seen, {}});
    }
}

// clang-format off
constexpr LineEntry rules[] = {
    {{{"session-data-says-nothing", error, "EXT-X-SESSION-DATA has neither VALUE nor URI.",
       "VALUE or URI", "RFC 8216, section 4.3.4.4", false}, "MUST"}, findNothingSaid},
    {{{"session-data-says-two-things", error, "EXT-X-SESSION-DATA has both VALUE and URI.",
       "VALUE or URI, and not both", "RFC 8216, section 4.3.4.4", false}, "MUST"}, findSaidTwice},
    {{{"session-data-id-not-reverse-dns", note, "DATA-ID has no domain in it.",
       "a name like com.example.title", "RFC 8216, section 4.3.4.4", false}, "SHOULD"}, findPlainId},
    {{{"session-key-of-none", error, "METHOD of EXT-X-SESSION-KEY is NONE.",
       "another METHOD than NONE", "RFC 8216, section 4.3.4.5", false}, "MUST NOT"}, findKeyOfNone},
};

constexpr PlaylistEntry relations[] = {
    {{{"session-data-twice", error, "Two EXT-X-SESSION-DATA have one DATA-ID and one LANGUAGE.",
       "another DATA-ID or LANGUAGE", "RFC 8216, section 4.3.4.4", false}, "MUST NOT"}, findRepeatedData},
    {{{"session-key-twice", error, "Two EXT-X-SESSION-KEY have the same attributes.",
       "another METHOD, URI, IV, KEYFORMAT or KEYFORMATVERSIONS", "RFC 8216, section 4.3.4.5", false}, "MUST NOT"}, findRepeatedKey},
    {{{"session-key-twice-by-default", warning, "Two EXT-X-SESSION-KEY have the same attributes, since one of them leaves out a default.",
       "another METHOD, URI, IV, KEYFORMAT or KEYFORMATVERSIONS", "RFC 8216, section 4.3.4.5", false}, "MUST NOT"}, findKeyRepeatedByDefault},
};
// clang-format on

}  // namespace

StandardTable<CheckedLine> sessionRules() {
    return {rules, std::size(rules)};
}

StandardTable<CheckedPlaylist> sessionRelationRules() {
    return {relations, std::size(relations)};
}

}  // namespace velhls
