#include "velhls/manifest/ManifestRules.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <set>
#include <utility>

#include "velhls/common/Names.h"
#include "velhls/common/NumberWriting.h"
#include "velhls/common/ReasonText.h"
#include "velhls/media/KeyAndMapTags.h"

namespace velhls {
namespace {

using Rendition = VELHLSMediaStreamRendition;
using Groups = VELHLSParsedManifest::RenditionGroups;
using Group = VELHLSParsedManifest::RenditionsByName;

void holdVariants(const VELHLSParsedManifest& manifest, BrokenRules& broken) {
    if (manifest.variants.empty()) broken.add({Rule::variantsMissing, nullptr, {}, "none"});
}

bool holdsGroup(const VELHLSParsedManifest& manifest, Rendition::RenditionType type,
                const std::string& groupId) {
    const auto groups = manifest.renditions.find(type);
    if (groups == manifest.renditions.end()) return false;
    const auto group = groups->second.find(groupId);
    return group != groups->second.end() && !group->second.empty();
}

void referToGroups(const VELHLSParsedManifest& manifest, BrokenRules& broken) {
    for (const auto& [bandwidth, variant] : manifest.variants) {
        if (variant == nullptr) return broken.addByCaller();
        for (const auto& [type, groupId] : variant->groupIds) {
            if (holdsGroup(manifest, type, groupId)) continue;
            broken.add({Rule::groupMissing, variant.get(), Rendition::textOf(type), {}});
            if (broken.areEnough()) return;
        }
    }
}

/// The first rendition of the reference group that the group has not, or has otherwise; or one that it has besides.
void agreeWith(const std::string& referenceId, const Group& reference, const Group& group,
               BrokenRules& broken) {
    for (const auto& [name, wanted] : reference) {
        if (wanted == nullptr) return broken.addByCaller();
        const auto found = group.find(wanted->name);
        if (found == group.end()) {
            const void* const any = group.empty() ? nullptr : group.begin()->second.get();
            return broken.add(
                {Rule::groupRenditionMissing, any, attribute::groupId,
                 "no rendition " + quoted(wanted->name) + ", which group " + quoted(referenceId) + " has"});
        }
        if (!wanted->equalExceptURIAndGroupID(found->second)) {
            return broken.add({Rule::groupRenditionDifferent, found->second.get(), attribute::name,
                               quoted(wanted->name) + ", which has others in group " + quoted(referenceId)});
        }
    }
    if (group.size() == reference.size()) return;
    const auto unmatched = std::find_if(group.begin(), group.end(), [&reference](const auto& rendition) {
        return reference.count(rendition.first) == 0;
    });
    if (unmatched == group.end()) return broken.addByCaller();
    broken.add({Rule::groupRenditionUnmatched, unmatched->second.get(), attribute::name,
                quoted(unmatched->first) + ", which group " + quoted(referenceId) + " lacks"});
}

void haveOneDefault(const Group& group, BrokenRules& broken) {
    bool defaultSeen = false;
    for (const auto& [name, rendition] : group) {
        if (rendition == nullptr) return broken.addByCaller();
        if (rendition->isDefault && defaultSeen) {
            return broken.add({Rule::groupDefaultRepeated, rendition.get(), attribute::defaultFlag, {}});
        }
        defaultSeen = defaultSeen || rendition->isDefault;
    }
}

/// The reference group of a type is the one with the smallest GROUP-ID. All others are compared with it.
void agreeInGroups(const VELHLSParsedManifest& manifest, BrokenRules& broken) {
    for (const auto& [type, groups] : manifest.renditions) {
        if (groups.empty()) continue;
        const auto& [referenceId, reference] = *groups.begin();
        haveOneDefault(reference, broken);
        for (auto other = std::next(groups.begin()); other != groups.end() && !broken.areEnough(); ++other)
            agreeWith(referenceId, reference, other->second, broken);
        if (broken.areEnough()) return;
    }
}

std::string identityOf(const VELHLSManifestSessionData& entry) {
    return entry.dataId + ":" + entry.language;
}

std::string identityOf(const VELHLSProtectionData& key) {
    std::string text;
    appendDecimal(text, std::int64_t{key.method});
    for (const std::string* part : {&key.uri, &key.iv, &key.keyFormat}) {
        text += ':';
        text += *part;
    }
    text += ':';
    text += keyFormatVersionsText(key.keyFormatVersions);
    return text;
}

/// The texts are kept in order and not hashed, so that no choice of texts makes the check slow.
template <typename Records>
void haveOneIdentityEach(const Records& records, Rule rule, std::string_view attributeName,
                         BrokenRules& broken) {
    std::set<std::string> identities;
    for (const auto& record : records) {
        if (record == nullptr) return broken.addByCaller();
        if (identities.insert(identityOf(*record)).second) continue;
        broken.add({rule, record.get(), attributeName, {}});
        if (broken.areEnough()) return;
    }
}

void haveUniqueSessionData(const VELHLSParsedManifest& manifest, BrokenRules& broken) {
    haveOneIdentityEach(manifest.sessionData, Rule::sessionDataRepeated, attribute::dataId, broken);
}

void haveUniqueSessionKeys(const VELHLSParsedManifest& manifest, BrokenRules& broken) {
    haveOneIdentityEach(manifest.sessionKeys, Rule::sessionKeyRepeated, attribute::uri, broken);
}

}  // namespace

BrokenRules brokenRulesOf(const VELHLSParsedManifest& manifest, BrokenRules::Wanted wanted) {
    constexpr std::array rules = {holdVariants, referToGroups, agreeInGroups, haveUniqueSessionData,
                                  haveUniqueSessionKeys};
    BrokenRules broken(wanted);
    for (const auto rule : rules) {
        rule(manifest, broken);
        if (broken.areEnough()) break;
    }
    return broken;
}

}  // namespace velhls
