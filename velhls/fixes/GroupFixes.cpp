// Groups of renditions: of one type each has the same as the first, which is that whose GROUP-ID comes first by its bytes.
#include <array>
#include <iterator>

#include "velhls/common/Names.h"
#include "velhls/common/ReasonText.h"
#include "velhls/fixes/FaultyText.h"

namespace velhls {
namespace {

using Group = FaultyText::Group;

/// Two groups of one type: what the models compare.
struct Pair {
    std::string_view type;
    std::string_view firstId;
    const Group* first = nullptr;
    std::string_view otherId;
    const Group* other = nullptr;
};

std::optional<Pair> groupsOf(const Fault& fault) {
    const auto type = fault.line.attributes().find(attribute::type);
    const auto groupId = fault.line.attributes().find(attribute::groupId);
    if (!type || !groupId) return std::nullopt;
    const auto groups = fault.text.groups().find(type->value);
    if (groups == fault.text.groups().end()) return std::nullopt;
    const auto other = groups->second.find(groupId->value);
    if (other == groups->second.end()) return std::nullopt;
    const auto& first = *groups->second.begin();
    return Pair{groups->first, first.first, &first.second, other->first, &other->second};
}

/// Attributes that are not read for the white space before them make groups differ.
bool tidyGroups(const Fault& fault, const Pair& groups) {
    std::vector<VELHLSEdit> edits;
    for (const Group* const group : {groups.first, groups.other}) {
        for (const auto& [name, line] : *group) {
            const std::vector<VELHLSEdit> own = tidyList(fault.document(), fault.document().line(line));
            edits.insert(edits.end(), own.begin(), own.end());
        }
        if (groups.first == groups.other) break;
    }
    if (edits.empty()) return false;
    fault.safe("removes white space from the attributes of the groups", std::move(edits));
    return true;
}

void fixReference(const Fault& fault) {
    const auto reference = fault.attribute();
    if (!reference) return;
    fault.lossy(
        "removes " + std::string(reference->name) + ", since no rendition is in " + quoted(reference->value),
        fault.setAttribute(reference->name, std::nullopt));
}

void fixDefault(const Fault& fault) {
    const auto groups = groupsOf(fault);
    if (groups && tidyGroups(fault, *groups)) return;
    fault.lossy("says DEFAULT=NO, since another rendition of the group is the default",
                fault.setAttribute(attribute::defaultFlag, std::string(fixed::no)));
}

/// The names of a group that another one lacks, with their lines.
std::vector<std::pair<std::string_view, std::size_t>> namesWithout(const Group& group, const Group& other) {
    std::vector<std::pair<std::string_view, std::size_t>> names;
    for (const auto& each : group) {
        if (other.count(each.first) == 0) names.emplace_back(each);
    }
    return names;
}

std::string valueIn(const VELHLSDocument& document, std::size_t line, std::string_view name) {
    const auto attribute = document.line(line).attributes().find(name);
    return attribute ? std::string(attribute->value) : std::string();
}

using Named = std::pair<std::string_view, std::size_t>;

/// A rendition that has another name in each group.
void rename(const Fault& fault, const Named& rendition, std::string_view name) {
    fault.lossy("gives the rendition " + quoted(rendition.first) + " the name " + quoted(name) +
                    " that it has in the first group",
                changeAttributes(fault.document(), rendition.second,
                                 {{std::string(attribute::name), std::string(name)}}));
}

std::size_t lastLineOf(const Group& group) {
    std::size_t last = 0;
    for (const auto& [name, line] : group)
        last = line > last ? line : last;
    return last;
}

/// Copies renditions into another group.
std::vector<VELHLSEdit> copiesOf(const VELHLSDocument& document, const std::vector<Named>& renditions,
                                 std::string_view groupId, std::size_t after) {
    std::string lines;
    for (const auto& [name, number] : renditions) {
        const std::vector<VELHLSEdit> edits =
            changeAttributes(document, number, {{std::string(attribute::groupId), std::string(groupId)}});
        if (edits.empty()) return {};
        const VELHLSLine copied = document.line(number);
        std::string text(copied.text);
        text.replace(edits[0].offset - copied.offset, edits[0].length, edits[0].replacement);
        lines += (lines.empty() ? "" : "\n") + text;
    }
    return {document.insertAfter(after, lines)};
}

std::string namesOf(const std::vector<Named>& renditions) {
    constexpr std::size_t mostNamed = 5;
    std::string names;
    for (std::size_t index = 0; index < renditions.size() && index < mostNamed; ++index)
        names += (index == 0 ? "" : ", ") + quoted(renditions[index].first);
    return renditions.size() > mostNamed ? names + ", ..." : names;
}

/// Renditions that one of two groups lacks.
void addOrRemove(const Fault& fault, const std::vector<Named>& renditions, std::string_view lackingId,
                 const Group& lacking) {
    const VELHLSDocument& document = fault.document();
    const std::string names = namesOf(renditions);
    fault.guess("copies " + names + " into the group " + quoted(lackingId),
                copiesOf(document, renditions, lackingId, lastLineOf(lacking)));
    std::vector<VELHLSEdit> edits;
    for (const auto& [name, line] : renditions) {
        const std::vector<VELHLSEdit> own = removeRendition(fault.text, document.line(line));
        edits.insert(edits.end(), own.begin(), own.end());
    }
    fault.lossy("removes " + names + ", which the group " + quoted(lackingId) + " lacks", std::move(edits));
}

/// Each rendition of the first group must be in the other, and none that is not in the first.
void fixMembers(const Fault& fault) {
    const auto groups = groupsOf(fault);
    if (!groups || groups->first == groups->other) return;
    if (!fault.text.isNewGroup(groups->type, groups->otherId) || tidyGroups(fault, *groups)) return;
    const std::vector<Named> missing = namesWithout(*groups->first, *groups->other);
    const std::vector<Named> unmatched = namesWithout(*groups->other, *groups->first);
    if (missing.size() == 1 && unmatched.size() == 1) {
        const VELHLSDocument& document = fault.document();
        const bool isSame = valueIn(document, missing[0].second, attribute::language) ==
                            valueIn(document, unmatched[0].second, attribute::language);
        if (isSame) return rename(fault, unmatched[0], missing[0].first);
    }
    if (!missing.empty()) return addOrRemove(fault, missing, groups->otherId, *groups->other);
    if (!unmatched.empty()) addOrRemove(fault, unmatched, groups->firstId, *groups->first);
}

constexpr std::array<std::string_view, 7> compared = {
    attribute::language, attribute::assocLanguage, attribute::defaultFlag,    attribute::autoSelect,
    attribute::forced,   attribute::instreamId,    attribute::characteristics};

void fixDifference(const Fault& fault) {
    const auto groups = groupsOf(fault);
    if (!groups || groups->first == groups->other) return;
    if (tidyGroups(fault, *groups)) return;
    const auto name = fault.line.attributes().find(attribute::name);
    if (!name) return;
    const auto first = groups->first->find(name->value);
    if (first == groups->first->end()) return;
    std::vector<VELHLSAttributeChange> changes;
    std::string lost;
    for (const std::string_view each : compared) {
        const auto wanted = fault.document().line(first->second).attributes().find(each);
        const auto seen = fault.line.attributes().find(each);
        if (wanted.has_value() == seen.has_value() && (!wanted || wanted->value == seen->value)) continue;
        changes.push_back(
            {std::string(each), wanted ? std::optional<std::string>(wanted->value) : std::nullopt});
        lost += (lost.empty() ? "" : ", ") + std::string(each);
    }
    if (changes.empty()) return;
    fault.lossy("writes " + lost + " as in the first group",
                changeAttributes(fault.document(), fault.line.number, changes));
}

// clang-format off
constexpr FixEntry entries[] = {
    {"group-missing", fixReference, "lossy: removes the attribute that names the group"},
    {"variant-group-undefined", fixReference, "lossy: removes the attribute that names the group"},
    {"group-default-twice", fixDefault, "lossy: says DEFAULT=NO of the later rendition"},
    {"group-default-repeated", fixDefault, "lossy: says DEFAULT=NO of the later rendition"},
    {"group-rendition-missing", fixMembers,
     "lossy: gives the one rendition of the same LANGUAGE that only one group has the name that it has in the first group; guess: "
     "copies the rendition into the group that lacks it; lossy: removes it"},
    {"group-rendition-different", fixDifference, "lossy: writes the attributes as in the first group"},
    {"group-rendition-unmatched", fixMembers,
     "guess: copies the rendition into the first group; lossy: removes it"},
};
// clang-format on

}  // namespace

FixTable groupFixes() {
    return {entries, std::size(entries)};
}

}  // namespace velhls
