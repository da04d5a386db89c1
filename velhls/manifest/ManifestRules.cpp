#include "velhls/manifest/ManifestRules.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <set>
#include <string>
#include <string_view>

#include "velhls/common/Names.h"
#include "velhls/common/Numbers.h"
#include "velhls/manifest/RenditionTypeText.h"
#include "velhls/media/KeyFormatVersions.h"

namespace velhls {
namespace {

using Rendition = VELHLSMediaStreamRendition;
using Groups = VELHLSParsedManifest::RenditionGroups;
using Group = VELHLSParsedManifest::RenditionsByName;

/// A broken rule, at the record that breaks it. Only a caller can have put a null record there, which nobody
/// records.
void tellOfRecord(Recorder* recorder, Rule rule, const void* record, std::string_view attributeName,
                  const std::string& seen = {}) {
    if (recorder != nullptr && record != nullptr) recorder->reportRecord(rule, record, attributeName, seen);
}

bool holdsVariants(const VELHLSParsedManifest& manifest, Recorder* recorder) {
    return !manifest.variants.empty() || rejectMissing(recorder, Rule::variantsMissing, {});
}

bool holdsGroup(const VELHLSParsedManifest& manifest, Rendition::RenditionType type,
                const std::string& groupId) {
    const auto groups = manifest.renditions.find(type);
    if (groups == manifest.renditions.end()) return false;
    const auto group = groups->second.find(groupId);
    return group != groups->second.end() && !group->second.empty();
}

bool groupReferencesResolve(const VELHLSParsedManifest& manifest, Recorder* recorder) {
    bool allResolve = true;
    for (const auto& [bandwidth, variant] : manifest.variants) {
        if (variant == nullptr) return false;
        for (const auto& [type, groupId] : variant->groupIds) {
            if (holdsGroup(manifest, type, groupId)) continue;
            if (recorder == nullptr) return false;
            tellOfRecord(recorder, Rule::groupMissing, variant.get(), textOf(type).value_or(""));
            allResolve = false;
        }
    }
    return allResolve;
}

/// Whether the group has the renditions of the reference group, up to the first that it has not, and no more.
bool agreesWith(const Group& reference, const Group& group, Recorder* recorder) {
    for (const auto& [name, wanted] : reference) {
        const auto found = group.find(wanted->name);
        if (found == group.end()) {
            const void* any = group.empty() ? nullptr : group.begin()->second.get();
            tellOfRecord(recorder, Rule::groupRenditionMissing, any, attribute::groupId,
                         "no rendition " + quoted(wanted->name));
            return false;
        }
        if (!wanted->equalExceptURIAndGroupID(found->second)) {
            tellOfRecord(recorder, Rule::groupRenditionDifferent, found->second.get(), attribute::name);
            return false;
        }
    }
    if (group.size() == reference.size()) return true;
    const auto unmatched = std::find_if(group.begin(), group.end(), [&reference](const auto& rendition) {
        return reference.count(rendition.first) == 0;
    });
    if (unmatched != group.end()) {
        tellOfRecord(recorder, Rule::groupRenditionUnmatched, unmatched->second.get(), attribute::name);
    }
    return false;
}

bool hasOneDefault(const Group& group, Recorder* recorder) {
    bool defaultSeen = false;
    for (const auto& [name, rendition] : group) {
        if (rendition == nullptr) return false;
        if (rendition->isDefault && defaultSeen) {
            tellOfRecord(recorder, Rule::groupDefaultRepeated, rendition.get(), attribute::defaultFlag);
            return false;
        }
        defaultSeen = defaultSeen || rendition->isDefault;
    }
    return true;
}

/// The reference group is the one with the smallest GROUP-ID. All others are compared with it.
bool groupsAgree(const Groups& groups, Recorder* recorder) {
    if (groups.empty()) return true;
    const Group& reference = groups.begin()->second;
    bool allAgree = hasOneDefault(reference, recorder);
    if (!allAgree && recorder == nullptr) return false;
    for (auto other = std::next(groups.begin()); other != groups.end(); ++other) {
        if (agreesWith(reference, other->second, recorder)) continue;
        if (recorder == nullptr) return false;
        allAgree = false;
    }
    return allAgree;
}

bool groupsOfEachTypeAgree(const VELHLSParsedManifest& manifest, Recorder* recorder) {
    bool allAgree = true;
    for (const auto& [type, groups] : manifest.renditions) {
        if (groupsAgree(groups, recorder)) continue;
        if (recorder == nullptr) return false;
        allAgree = false;
    }
    return allAgree;
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
bool identitiesAreUnique(const Records& records, Rule rule, std::string_view attributeName,
                         Recorder* recorder) {
    std::set<std::string> identities;
    bool allAreUnique = true;
    for (const auto& record : records) {
        if (record == nullptr) return false;
        if (identities.insert(identityOf(*record)).second) continue;
        if (recorder == nullptr) return false;
        tellOfRecord(recorder, rule, record.get(), attributeName);
        allAreUnique = false;
    }
    return allAreUnique;
}

bool sessionDataIsUnique(const VELHLSParsedManifest& manifest, Recorder* recorder) {
    return identitiesAreUnique(manifest.sessionData, Rule::sessionDataRepeated, attribute::dataId, recorder);
}

bool sessionKeysAreUnique(const VELHLSParsedManifest& manifest, Recorder* recorder) {
    return identitiesAreUnique(manifest.sessionKeys, Rule::sessionKeyRepeated, attribute::uri, recorder);
}

/// As many of the ones as of the others.
bool pairsWithVariants(const VELHLSParsedManifest& manifest) {
    const auto streams = std::count_if(
        manifest.variants.begin(), manifest.variants.end(),
        [](const auto& variant) { return variant.second != nullptr && !variant.second->isIFrame; });
    return static_cast<std::size_t>(streams) == manifest.zorStreamInformation.size();
}

}  // namespace

bool keepsRules(const VELHLSParsedManifest& manifest, Recorder* recorder) {
    constexpr std::array rules = {holdsVariants, groupReferencesResolve, groupsOfEachTypeAgree,
                                  sessionDataIsUnique, sessionKeysAreUnique};
    bool keepsAll = true;
    for (const auto keepsRule : rules) {
        if (keepsRule(manifest, recorder)) continue;
        if (recorder == nullptr) return false;
        keepsAll = false;
    }
    return keepsAll;
}

void pairStreamInformation(VELHLSParsedManifest& manifest, Recorder* recorder) {
    if (manifest.zorStreamInformation.empty()) return;
    const bool pairs = pairsWithVariants(manifest);
    if (recorder != nullptr) {
        const Rule rule =
            pairs ? Rule::vendorStreamInformationNotWritten : Rule::vendorStreamInformationUnpaired;
        for (const auto& entry : manifest.zorStreamInformation) {
            tellOfRecord(recorder, rule, entry.get(), {});
        }
    }
    if (pairs) {
        manifest.hasZORStreamInformation = true;
    } else {
        manifest.zorStreamInformation.clear();
    }
}

}  // namespace velhls
