#include "velhls/manifest/ManifestRules.h"

#include <cstdint>
#include <iterator>
#include <set>
#include <string>

#include "velhls/common/Numbers.h"
#include "velhls/media/KeyFormatVersions.h"

namespace velhls {
namespace {

using Rendition = VELHLSMediaStreamRendition;
using Groups = VELHLSParsedManifest::RenditionGroups;
using Group = VELHLSParsedManifest::RenditionsByName;

bool holdsGroup(const VELHLSParsedManifest& manifest, Rendition::RenditionType type,
                const std::string& groupId) {
    const auto groups = manifest.renditions.find(type);
    if (groups == manifest.renditions.end()) return false;
    const auto group = groups->second.find(groupId);
    return group != groups->second.end() && !group->second.empty();
}

bool holdsEqualOf(const Group& group, const Rendition& wanted) {
    const auto found = group.find(wanted.name);
    return found != group.end() && wanted.equalExceptURIAndGroupID(found->second);
}

/// The reference group is the one with the smallest GROUP-ID. All others are compared with it.
bool othersHoldEqualOf(const Groups& groups, const Rendition& wanted) {
    for (auto other = std::next(groups.begin()); other != groups.end(); ++other) {
        if (!holdsEqualOf(other->second, wanted)) return false;
    }
    return true;
}

bool othersHoldAsManyAs(const Groups& groups, const Group& reference) {
    for (const auto& [groupId, group] : groups) {
        if (group.size() != reference.size()) return false;
    }
    return true;
}

bool groupsAgree(const Groups& groups) {
    if (groups.empty()) return true;
    const Group& reference = groups.begin()->second;
    bool defaultSeen = false;
    for (const auto& [name, rendition] : reference) {
        if (rendition == nullptr) return false;
        if (rendition->isDefault && defaultSeen) return false;
        defaultSeen = defaultSeen || rendition->isDefault;
        if (!othersHoldEqualOf(groups, *rendition)) return false;
    }
    return othersHoldAsManyAs(groups, reference);
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
    text += joinKeyFormatVersions(key.keyFormatVersions);
    return text;
}

/// The texts are kept in order and not hashed, so that no choice of texts makes the check slow.
template <typename Records>
bool identitiesAreUnique(const Records& records) {
    std::set<std::string> identities;
    for (const auto& record : records) {
        if (record == nullptr || !identities.insert(identityOf(*record)).second) return false;
    }
    return true;
}

}  // namespace

bool groupReferencesResolve(const VELHLSParsedManifest& manifest) {
    for (const auto& [bandwidth, variant] : manifest.variants) {
        if (variant == nullptr) return false;
        for (const auto& [type, groupId] : variant->groupIds) {
            if (!holdsGroup(manifest, type, groupId)) return false;
        }
    }
    return true;
}

bool groupsOfEachTypeAgree(const VELHLSParsedManifest& manifest) {
    for (const auto& [type, groups] : manifest.renditions) {
        if (!groupsAgree(groups)) return false;
    }
    return true;
}

bool sessionDataIsUnique(const VELHLSParsedManifest& manifest) {
    return identitiesAreUnique(manifest.sessionData);
}

bool sessionKeysAreUnique(const VELHLSParsedManifest& manifest) {
    return identitiesAreUnique(manifest.sessionKeys);
}

}  // namespace velhls
