#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "velhls/common/Names.h"
#include "velhls/comparison/Compare.h"
#include "velhls/comparison/KeyedMatch.h"
#include "velhls/comparison/Values.h"
#include "velhls/document/FormatTables.h"

namespace velhls {
namespace {

using Lines = std::vector<std::uint32_t>;
using LinesOfTags = std::array<Lines, tagTable.size()>;

/// The tags that are of the whole playlist. What makes a master playlist's lists is compared otherwise.
constexpr bool isOfPlaylist(const VELHLSTagDefinition& tag) {
    return tag.reach == VELHLSTagDefinition::Itself && tag.name != "EXT-X-DATERANGE" &&
           tag.name != tag::media && tag.name != tag::iFrameStreamInf && tag.name != tag::sessionData &&
           tag.name != tag::sessionKey;
}

Aspect aspectOf(const VELHLSTagDefinition& tag) {
    for (const std::string_view name : {tag::targetDuration, tag::mediaSequence, tag::discontinuitySequence,
                                        tag::playlistType, tag::endList}) {
        if (tag.name == name) return Aspect::numberedTag;
    }
    for (const std::string_view name : {"EXT-X-SKIP", "EXT-X-PRELOAD-HINT", "EXT-X-RENDITION-REPORT"}) {
        if (tag.name == name) return Aspect::foreignTag;
    }
    return tag.profile == VELHLSProfile::vendor ? Aspect::foreignTag : Aspect::headerTag;
}

LinesOfTags linesOf(const VELHLSDocument& document) {
    LinesOfTags lines;
    for (const VELHLSLine line : document.lines()) {
        if (line.definition == nullptr || !isOfPlaylist(*line.definition)) continue;
        lines[static_cast<std::size_t>(line.definition - tagTable.data())].push_back(
            static_cast<std::uint32_t>(line.number));
    }
    return lines;
}

/// What tells apart the tags with one name, of those that may stand more than once.
std::vector<std::string> keysOf(const VELHLSDocument& document, const Lines& lines) {
    std::vector<std::string> keys;
    for (const std::uint32_t number : lines) {
        const VELHLSLine line = document.line(number);
        std::string key;
        if (!line.definition->once && line.definition->form == VELHLSTagDefinition::AttributeList) {
            for (const std::string_view name : {"NAME", "IMPORT", "QUERYPARAM", "TYPE", "URI"}) {
                const auto value = valueOf(line, name);
                key.append(value.value_or("")).push_back('\n');
            }
        } else if (!line.definition->once) {
            key = line.value;
        }
        keys.push_back(std::move(key));
    }
    return keys;
}

/// What the line says beside its name; the name where it says nothing.
Spot spotOf(const VELHLSLine& line) {
    const std::string_view value = trimmed(line.value);
    return {line.number, value.empty() ? line.name : value};
}

void compareLines(const VELHLSLine& before, const VELHLSLine& now, Aspect aspect, Differences& differences) {
    const std::string path(now.name);
    if (now.definition->form == VELHLSTagDefinition::AttributeList)
        return compareAttributes(before, now, aspect, path, differences);
    if (isSameValue(trimmed(before.value), trimmed(now.value))) return;
    differences.add(aspect, path, {}, spotOf(before), spotOf(now), std::string(trimmed(before.value)),
                    std::string(trimmed(now.value)));
}

void addAlone(const VELHLSLine& line, bool isNow, Aspect aspect, Differences& differences) {
    const Spot spot = spotOf(line);
    const std::string text(trimmed(line.value));
    differences.add(aspect, std::string(line.name), {}, isNow ? Spot() : spot, isNow ? spot : Spot(),
                    isNow ? std::string() : text, isNow ? text : std::string());
}

}  // namespace

void compareTags(const VELHLSDocument& before, const VELHLSDocument& now, Differences& differences) {
    const LinesOfTags old = linesOf(before);
    const LinesOfTags fresh = linesOf(now);
    for (std::size_t tag = 0; tag < tagTable.size(); ++tag) {
        const Aspect aspect = aspectOf(tagTable[tag]);
        for (const KeyedPair& pair : matchByKey(keysOf(before, old[tag]), keysOf(now, fresh[tag]))) {
            if (pair.now == KeyedPair::none) {
                addAlone(before.line(old[tag][pair.before]), false, aspect, differences);
            } else if (pair.before == KeyedPair::none) {
                addAlone(now.line(fresh[tag][pair.now]), true, aspect, differences);
            } else {
                compareLines(before.line(old[tag][pair.before]), now.line(fresh[tag][pair.now]), aspect,
                             differences);
            }
        }
    }
}

}  // namespace velhls
