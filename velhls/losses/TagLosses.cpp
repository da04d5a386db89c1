#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <stdexcept>
#include <string>

#include "velhls/common/Names.h"
#include "velhls/common/NumberReading.h"
#include "velhls/common/ReasonText.h"
#include "velhls/common/Tags.h"
#include "velhls/common/TextScan.h"
#include "velhls/document/TagSpelling.h"
#include "velhls/document/VELHLSTagDefinition.h"
#include "velhls/losses/Loss.h"

namespace velhls {
namespace {

constexpr bool lost = true;
constexpr bool kept = false;

/// Readers drop them wherever they stand.
void findCarriageReturn(const LossLine& line, const TellLoss& tell) {
    const std::string_view text = withoutTrailing(line.lineOfText, lineEnds);
    const std::size_t place = text.find('\r');
    if (place != std::string_view::npos) tell(Place{line.number, place + 1, 1}, "one");
}

constexpr std::array bareTagsOfMedia = {tag::extM3U, tag::endList, tag::iFramesOnly, tag::independentSegments,
                                        tag::cueIn,  tag::cueOut};
constexpr std::array tagsOfMedia = {tag::targetDuration, tag::mediaSequence, tag::discontinuitySequence,
                                    tag::playlistType,   tag::start,         tag::define,
                                    tag::version,        tag::cueIn};
constexpr std::array tagsOfMaster = {tag::start, tag::version, tag::zorStreamInf};

template <typename Names>
bool holds(const Names& names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// Whether the models pass over the tag.
bool isIgnored(const LossLine& line) {
    const bool isVendor = isVendorTag(line.text);
    const std::string_view name = line.tag.name;
    if (line.playlist->isMaster)
        return line.role == LineRole::alone && (isVendor || line.tag.hasColon) && !holds(tagsOfMaster, name);
    if (line.role != LineRole::alone) return isVendor && line.role == LineRole::record;
    return line.tag.hasColon ? !holds(tagsOfMedia, name) : !holds(bareTagsOfMedia, name);
}

void findIgnoredTag(const LossLine& line, const TellLoss& tell) {
    if (!line.isTag || !isIgnored(line)) return;
    const bool isOfOtherKind = line.playlist->isMaster ? hasUse<ofMediaPlaylist>(line.tag.name)
                                                       : hasUse<ofMasterPlaylist>(line.tag.name);
    const std::string_view why = isOfOtherKind ? (line.playlist->isMaster ? ", a tag of media playlists"
                                                                          : ", a tag of master playlists")
                                               : "";
    tell(line, line.tag.name,
         quoted(line.tag.name).append(why).append(isOfOtherKind ? "" : didYouMean(line.tag.name)));
}

/// In a master playlist it ends the reading, which is another rule's.
void findRepeatedHeader(const LossLine& line, const TellLoss& tell) {
    const bool isHeader = line.isTagNamed(tag::extM3U) && !line.tag.hasColon;
    if (isHeader && line.playlist->hasHeader && !line.playlist->isMaster) tell(line, line.tag.name);
}

void findRepeatedTag(const LossLine& line, const TellLoss& tell) {
    if (!line.isTag || isIgnored(line)) return;
    const std::size_t index = indexOfTagWrittenOnce(line.tag.name);
    if (index < tagsWrittenOnce.size() && line.playlist->seenTags.test(index)) tell(line, line.tag.name);
}

bool isZero(std::string_view number) {
    return !number.empty() && holdsOnly(number, CharacterSet("0"));
}

/// EXT-X-VERSION as the models read it; 0 where they reject it.
std::int32_t versionIn(const LossLine& line) {
    try {
        return toInt32(line.tag.value);
    } catch (const std::logic_error&) {
        return 0;
    }
}

/// A tag whose value is what stands for its absence.
bool holdsDefault(const LossLine& line) {
    if (line.tag.name == tag::version) return versionIn(line) == 1;
    if (line.playlist->isMaster) return false;
    const bool isSequence =
        line.tag.name == tag::mediaSequence || line.tag.name == tag::discontinuitySequence;
    return isSequence && isZero(line.tag.value);
}

bool isDefaultValue(std::string_view name, std::string_view value) {
    if (name == attribute::defaultFlag || name == attribute::autoSelect || name == attribute::forced ||
        name == attribute::precise) {
        return value == fixed::no;
    }
    if (name == attribute::keyFormatVersions) return value == "1";
    const bool zeroIsAbsent = name == attribute::averageBandwidth || name == attribute::programId;
    return zeroIsAbsent && isZero(value);
}

void findDefault(const LossLine& line, const TellLoss& tell) {
    if (!line.isTag) return;
    if (line.tag.hasColon && holdsDefault(line)) tell(line, line.tag.value);
    line.forEachAttribute([&](const Attribute& attribute) {
        if (isDefaultValue(attribute.name, attribute.value))
            tell(line, attribute.name, std::string(attribute.name) + "=" + std::string(attribute.value));
    });
}

void findEmptyAttribute(const LossLine& line, const TellLoss& tell) {
    const VELHLSTagDefinition* const tag = line.isTag ? VELHLSTagDefinition::find(line.tag.name) : nullptr;
    if (tag == nullptr) return;
    line.forEachAttribute([&](const Attribute& attribute) {
        if (attribute.value.empty() && tag->findAttribute(attribute.name) != nullptr)
            tell(line, attribute.name);
    });
}

void findCutTargetDuration(const LossLine& line, const TellLoss& tell) {
    if (!line.isTagNamed(tag::targetDuration) || line.role == LineRole::rejected || line.playlist->isMaster)
        return;
    try {
        const double seconds = toDouble(line.tag.value);
        if (seconds != std::trunc(seconds)) tell(line, line.tag.value);
    } catch (const std::logic_error&) {
        // It is not read at all.
    }
}

// clang-format off
constexpr LineLoss lossesOfText[] = {
    {{"carriage-return-dropped", VELHLSFinding::Warning, "A carriage return inside a line is dropped.",
      "carriage returns before line feeds only", libraryBehaviour, kept},
     findCarriageReturn},
};

constexpr LineLoss losses[] = {
    {{"tag-ignored", VELHLSFinding::Warning, "A tag that the library does not know, or not in this kind of playlist, is ignored.",
      "a tag that the library knows", libraryBehaviour, lost},
     findIgnoredTag},
    {{"header-repeated", VELHLSFinding::Warning, "A media playlist has a second #EXTM3U line, of which one is written.",
      "one #EXTM3U", libraryBehaviour, lost},
     findRepeatedHeader},
    {{"tag-written-once", VELHLSFinding::Warning, "A tag of the playlist stands a second time, and is written once: the later one holds.",
      "the tag once", libraryBehaviour, lost},
     findRepeatedTag},
    {{"default-not-written", VELHLSFinding::Note, "A value that is the default is not written back.",
      "a value that is written back, other than the default", libraryBehaviour, lost},
     findDefault},
    {{"attribute-empty-not-written", VELHLSFinding::Note, "An attribute whose value is empty is not written back.",
      "a value that is not empty", libraryBehaviour, lost},
     findEmptyAttribute},
    {{"target-duration-cut", VELHLSFinding::Warning, "A target duration that is no whole number is cut when it is written.",
      "whole seconds", libraryBehaviour, kept},
     findCutTargetDuration},
};
// clang-format on

}  // namespace

LossTable<LineLoss> textLosses() {
    return {lossesOfText, std::size(lossesOfText)};
}

LossTable<LineLoss> tagLosses() {
    return {losses, std::size(losses)};
}

}  // namespace velhls
