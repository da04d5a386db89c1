#include <algorithm>
#include <iterator>
#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "velhls/common/Names.h"
#include "velhls/common/TextScan.h"
#include "velhls/standard/CheckedPlaylist.h"

namespace velhls {
namespace {

/// Tells of each after the first with one key.
template <typename Key, typename KeyOf>
void findRepeated(const CheckedPlaylist& playlist, const Tell& tell, KeyOf keyOf) {
    std::map<Key, std::uint32_t> first;
    for (const CheckedRendition& rendition : playlist.renditions()) {
        const auto key = keyOf(rendition);
        if (!key) continue;
        const auto [place, isFirst] = first.emplace(*key, rendition.line);
        if (isFirst) continue;
        const VELHLSLine line = playlist.document().line(rendition.line);
        const std::string seen = "the same as in line " + std::to_string(place->second);
        tell(line, line.name, {{}, seen, {}});
    }
}

void findRepeatedName(const CheckedPlaylist& playlist, const Tell& tell) {
    using Key = std::tuple<std::string_view, std::string_view, std::string_view>;
    findRepeated<Key>(playlist, tell, [](const CheckedRendition& rendition) {
        return std::optional<Key>(Key(rendition.type, rendition.group, rendition.name));
    });
}

void findRepeatedDefault(const CheckedPlaylist& playlist, const Tell& tell) {
    using Key = std::pair<std::string_view, std::string_view>;
    findRepeated<Key>(playlist, tell, [](const CheckedRendition& rendition) {
        if (rendition.value(attribute::defaultFlag) != fixed::yes) return std::optional<Key>();
        return std::optional<Key>(Key(rendition.type, rendition.group));
    });
}

void findIndistinct(const CheckedPlaylist& playlist, const Tell& tell) {
    using Key = std::tuple<std::string_view, std::string_view, std::string_view, std::string_view,
                           std::string_view, std::string_view>;
    findRepeated<Key>(playlist, tell, [](const CheckedRendition& rendition) {
        if (rendition.value(attribute::autoSelect) != fixed::yes) return std::optional<Key>();
        return std::optional<Key>(Key(rendition.type, rendition.group, rendition.value(attribute::language),
                                      rendition.value(attribute::assocLanguage),
                                      rendition.value(attribute::forced),
                                      rendition.value(attribute::characteristics)));
    });
}

/// A group of renditions, and its members by their names: of two with one name the first.
struct Group {
    std::string_view name;
    std::uint32_t firstLine;
    std::map<std::string_view, const CheckedRendition*> members;
};

/// Of each type its groups, in the order of the file.
std::map<std::string_view, std::vector<Group>> groupsOf(const CheckedPlaylist& playlist) {
    std::map<std::string_view, std::vector<Group>> types;
    std::map<std::pair<std::string_view, std::string_view>, std::size_t> places;
    for (const CheckedRendition& rendition : playlist.renditions()) {
        std::vector<Group>& groups = types[rendition.type];
        const auto [place, isFirst] =
            places.emplace(std::pair(rendition.type, rendition.group), groups.size());
        if (isFirst) groups.push_back({rendition.group, rendition.line, {}});
        groups[place->second].members.emplace(rendition.name, &rendition);
    }
    return types;
}

/// Goes through the groups, each with the first one of its type in the file, which they are compared with.
template <typename Visit>
void forEachGroup(const CheckedPlaylist& playlist, Visit visit) {
    for (const auto& [type, groups] : groupsOf(playlist)) {
        for (std::size_t place = 1; place < groups.size(); ++place)
            visit(groups.front(), groups[place]);
    }
}

std::string shortened(std::string_view text) {
    constexpr std::size_t longest = 60;
    return "\"" + std::string(text.substr(0, longest)) + (text.size() > longest ? "...\"" : "\"");
}

/// One finding a group names the first member that is there too little, or too much.
void findOtherMembers(const CheckedPlaylist& playlist, const Tell& tell) {
    forEachGroup(playlist, [&](const Group& first, const Group& group) {
        const auto isIn = [](const Group& other) {
            return [&other](const auto& member) { return other.members.count(member.first) != 0; };
        };
        const auto missing = std::find_if_not(first.members.begin(), first.members.end(), isIn(group));
        const auto extra = std::find_if_not(group.members.begin(), group.members.end(), isIn(first));
        if (missing == first.members.end() && extra == group.members.end()) return;
        const bool hasExtra = extra != group.members.end();
        const VELHLSLine line =
            playlist.document().line(hasExtra ? extra->second->line : group.members.begin()->second->line);
        const std::string expected = "in group " + shortened(group.name) + " the same members as in group " +
                                     shortened(first.name) + ", which line " +
                                     std::to_string(first.firstLine) + " begins";
        const std::string seen = hasExtra ? shortened(extra->first) + ", which is not there"
                                          : "none named " + shortened(missing->first);
        tell(line, line.name, {expected, seen, {}});
    });
}

/// What a member has otherwise than that of the first group.
void tellOfDifferences(const CheckedPlaylist& playlist, const Tell& tell, const Group& firstGroup,
                       const CheckedRendition& first, const CheckedRendition& member) {
    for (std::size_t place = 0; place < member.values.size(); ++place) {
        if (member.values[place] == first.values[place]) continue;
        const std::string_view name = CheckedRendition::compared[place];
        const VELHLSLine line = playlist.document().line(member.line);
        const auto attribute = line.attributes().find(name);
        const std::string expected = std::string(name) + " as " + shortened(member.name) +
                                     " has it in group " + shortened(firstGroup.name) + " in line " +
                                     std::to_string(first.line);
        tell(line, attribute ? attribute->text : line.name, {expected, attribute ? "" : "none", {}});
    }
}

void findOtherAttributes(const CheckedPlaylist& playlist, const Tell& tell) {
    forEachGroup(playlist, [&](const Group& first, const Group& group) {
        for (const auto& [name, member] : group.members) {
            const auto same = first.members.find(name);
            if (same != first.members.end()) tellOfDifferences(playlist, tell, first, *same->second, *member);
        }
    });
}

/// Renditions that differ in their channels, as far as CHANNELS tells: those without it are at fault.
void findChannelsNotTold(const CheckedPlaylist& playlist, const Tell& tell) {
    std::size_t told = 0;
    std::vector<std::uint32_t> lacking;
    for (const CheckedRendition& rendition : playlist.renditions()) {
        if (rendition.type != attribute::audio) continue;
        if (rendition.hasChannels)
            told = rendition.line;
        else
            lacking.push_back(rendition.line);
    }
    if (told == 0) return;
    for (const std::uint32_t number : lacking) {
        const VELHLSLine line = playlist.document().line(number);
        const std::string expected = "CHANNELS, as line " + std::to_string(told) + " has it";
        tell(line, line.name, {expected, "none", {}});
    }
}

// clang-format off
constexpr PlaylistEntry rules[] = {
    {{{"group-name-repeated", error, "Two renditions of one group have the same NAME.",
       "another NAME in the same group", "RFC 8216, section 4.3.4.1.1", false}, "MUST"}, findRepeatedName},
    {{{"group-default-twice", error, "A group has two renditions with DEFAULT=YES.",
       "DEFAULT=YES once in a group", "RFC 8216, section 4.3.4.1.1", false}, "MUST NOT"}, findRepeatedDefault},
    {{{"group-selection-ambiguous", warning, "Two renditions of a group with AUTOSELECT=YES do not differ in language, FORCED and CHARACTERISTICS.",
       "another LANGUAGE, ASSOC-LANGUAGE, FORCED or CHARACTERISTICS", "RFC 8216, section 4.3.4.1.1", false}, "SHOULD"}, findIndistinct},
    {{{"group-members-differ", error, "Two groups of one type have other members.",
       "the same members in all groups of a type", "RFC 8216, section 4.3.4.1.1", false}, "MUST"}, findOtherMembers},
    {{{"group-attributes-differ", error, "The same member of two groups has other attributes.",
       "the same attributes but URI and CHANNELS", "RFC 8216, section 4.3.4.1.1", false}, "MUST"}, findOtherAttributes},
    {{{"group-channels-not-told", warning, "A rendition of audio has no CHANNELS, and another one has.",
       "CHANNELS where renditions differ in them", "RFC 8216, section 4.3.4.1", false}, "REQUIRED"}, findChannelsNotTold},
};
// clang-format on

}  // namespace

StandardTable<CheckedPlaylist> groupRules() {
    return {rules, std::size(rules)};
}

}  // namespace velhls
