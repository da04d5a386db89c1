#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "velhls/common/Names.h"
#include "velhls/common/TextScan.h"
#include "velhls/standard/CheckedPlaylist.h"

namespace velhls {
namespace {

/// An EXT-X-MEDIA.
struct Rendition {
    std::string_view type;
    std::string_view group;
    std::string_view name;
    std::uint32_t line;
};

std::vector<Rendition> renditionsOf(const CheckedPlaylist& playlist) {
    std::vector<Rendition> renditions;
    if (!playlist.isMaster()) return renditions;
    for (const std::uint32_t number : playlist.lines(tagIndexOf<tag::media>)) {
        const VELHLSLine line = playlist.document().line(number);
        const auto name = playlist.valueOf(line, attribute::name);
        // Without them it belongs nowhere, which is another rule's.
        if (!name || !playlist.valueOf(line, attribute::groupId)) continue;
        renditions.push_back({playlist.valueOf(line, attribute::type).value_or(""),
                              *playlist.valueOf(line, attribute::groupId), *name, number});
    }
    return renditions;
}

/// Tells of each after the first with one key.
template <typename Key, typename KeyOf>
void findRepeated(const CheckedPlaylist& playlist, const Tell& tell, KeyOf keyOf) {
    std::map<Key, std::uint32_t> first;
    for (const Rendition& rendition : renditionsOf(playlist)) {
        const VELHLSLine line = playlist.document().line(rendition.line);
        const auto key = keyOf(rendition, line);
        if (!key) continue;
        const auto [place, isFirst] = first.emplace(*key, rendition.line);
        if (isFirst) continue;
        const std::string seen = "the same as in line " + std::to_string(place->second);
        tell(line, line.name, {{}, seen, {}});
    }
}

void findRepeatedName(const CheckedPlaylist& playlist, const Tell& tell) {
    using Key = std::tuple<std::string_view, std::string_view, std::string_view>;
    findRepeated<Key>(playlist, tell, [](const Rendition& rendition, const VELHLSLine&) {
        return std::optional<Key>(Key(rendition.type, rendition.group, rendition.name));
    });
}

void findRepeatedDefault(const CheckedPlaylist& playlist, const Tell& tell) {
    using Key = std::pair<std::string_view, std::string_view>;
    findRepeated<Key>(playlist, tell, [&playlist](const Rendition& rendition, const VELHLSLine& line) {
        if (playlist.valueOf(line, attribute::defaultFlag) != fixed::yes) return std::optional<Key>();
        return std::optional<Key>(Key(rendition.type, rendition.group));
    });
}

void findIndistinct(const CheckedPlaylist& playlist, const Tell& tell) {
    using Key = std::tuple<std::string_view, std::string_view, std::string_view, std::string_view,
                           std::string_view, std::string_view>;
    findRepeated<Key>(playlist, tell, [&playlist](const Rendition& rendition, const VELHLSLine& line) {
        if (playlist.valueOf(line, attribute::autoSelect) != fixed::yes) return std::optional<Key>();
        return std::optional<Key>(Key(rendition.type, rendition.group,
                                      playlist.valueOf(line, attribute::language).value_or(""),
                                      playlist.valueOf(line, attribute::assocLanguage).value_or(""),
                                      playlist.valueOf(line, attribute::forced).value_or(fixed::no),
                                      playlist.valueOf(line, attribute::characteristics).value_or("")));
    });
}

/// The groups of one type, in the order of the file; of each its members by their names.
struct Groups {
    std::vector<std::string_view> names;
    std::map<std::string_view, std::map<std::string_view, std::uint32_t>> members;
};

std::map<std::string_view, Groups> groupsOf(const CheckedPlaylist& playlist) {
    std::map<std::string_view, Groups> types;
    for (const Rendition& rendition : renditionsOf(playlist)) {
        Groups& groups = types[rendition.type];
        auto& members = groups.members[rendition.group];
        if (members.empty()) groups.names.push_back(rendition.group);
        members.emplace(rendition.name, rendition.line);
    }
    return types;
}

/// The groups, and the first one of the file, that they are compared with.
template <typename Visit>
void forEachGroup(const CheckedPlaylist& playlist, Visit visit) {
    for (const auto& [type, groups] : groupsOf(playlist)) {
        const auto& first = groups.members.at(groups.names.front());
        for (std::size_t place = 1; place < groups.names.size(); ++place)
            visit(groups.names.front(), first, groups.names[place], groups.members.at(groups.names[place]));
    }
}

using Members = std::map<std::string_view, std::uint32_t>;

std::string shortened(std::string_view text) {
    constexpr std::size_t longest = 60;
    return "\"" + std::string(text.substr(0, longest)) + (text.size() > longest ? "...\"" : "\"");
}

/// One finding a group names the first member that is there too little, or too much.
void findOtherMembers(const CheckedPlaylist& playlist, const Tell& tell) {
    forEachGroup(playlist, [&](std::string_view firstName, const Members& first, std::string_view name,
                               const Members& members) {
        const auto missing = std::find_if(
            first.begin(), first.end(), [&](const auto& member) { return members.count(member.first) == 0; });
        const auto extra = std::find_if(members.begin(), members.end(),
                                        [&](const auto& member) { return first.count(member.first) == 0; });
        if (missing == first.end() && extra == members.end()) return;
        const std::uint32_t number = extra != members.end() ? extra->second : members.begin()->second;
        const VELHLSLine line = playlist.document().line(number);
        const std::string expected = "in group " + shortened(name) + " the same members as in group " +
                                     shortened(firstName) + " of line " +
                                     std::to_string(first.begin()->second);
        const std::string seen = extra != members.end() ? shortened(extra->first) + ", which is not there"
                                                        : "none named " + shortened(missing->first);
        tell(line, line.name, {expected, seen, {}});
    });
}

/// What members of two groups must have alike; of what stands for nothing else its default.
struct Compared {
    std::string_view name;
    std::string_view whenMissing;
};

constexpr Compared compared[] = {
    {attribute::language, ""},        {attribute::assocLanguage, ""}, {attribute::defaultFlag, "NO"},
    {attribute::autoSelect, "NO"},    {attribute::forced, "NO"},      {attribute::instreamId, ""},
    {attribute::characteristics, ""},
};

/// Each group is walked over with the first one, whose lines are scanned once for each group and member.
void findOtherAttributes(const CheckedPlaylist& playlist, const Tell& tell) {
    std::map<std::uint32_t, std::vector<std::string_view>> ofFirst;
    const auto valuesOf = [&playlist](std::uint32_t number) {
        std::vector<std::string_view> values;
        const VELHLSLine line = playlist.document().line(number);
        for (const Compared& each : compared)
            values.push_back(playlist.valueOf(line, each.name).value_or(each.whenMissing));
        return values;
    };
    forEachGroup(playlist, [&](std::string_view, const Members& first, std::string_view,
                               const Members& members) {
        for (const auto& [name, number] : members) {
            const auto member = first.find(name);
            if (member == first.end()) continue;
            auto known = ofFirst.find(member->second);
            if (known == ofFirst.end())
                known = ofFirst.emplace(member->second, valuesOf(member->second)).first;
            const std::vector<std::string_view> values = valuesOf(number);
            for (std::size_t place = 0; place < values.size(); ++place) {
                if (values[place] == known->second[place]) continue;
                const VELHLSLine line = playlist.document().line(number);
                const auto attribute = line.attributes().find(compared[place].name);
                const std::string expected = std::string(compared[place].name) + " as in line " +
                                             std::to_string(member->second) +
                                             ", the same member of another group";
                tell(line, attribute ? attribute->text : line.name, {expected, attribute ? "" : "none", {}});
            }
        }
    });
}

/// Renditions that differ in their channels, as far as CHANNELS tells: those without it are at fault.
void findChannelsNotTold(const CheckedPlaylist& playlist, const Tell& tell) {
    std::size_t told = 0;
    std::vector<std::uint32_t> lacking;
    for (const Rendition& rendition : renditionsOf(playlist)) {
        if (rendition.type != attribute::audio) continue;
        const bool hasChannels =
            playlist.valueOf(playlist.document().line(rendition.line), "CHANNELS").has_value();
        if (hasChannels)
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
