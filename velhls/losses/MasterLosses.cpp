#include <iterator>

#include "velhls/common/Names.h"
#include "velhls/common/TextScan.h"
#include "velhls/losses/Loss.h"

namespace velhls {
namespace {

constexpr bool lost = true;
constexpr bool kept = false;

bool isVariantTag(const LossLine& line) {
    return line.isTagNamed(tag::streamInf) || line.isTagNamed(tag::iFrameStreamInf);
}

bool isRecord(const LossLine& line, std::string_view tagName) {
    return line.isTagNamed(tagName) && line.role == LineRole::record;
}

void findHeaderThatEnds(const LossLine& line, const TellLoss& tell) {
    if (line.isTagNamed(tag::extM3U) && !line.tag.hasColon && line.playlist->hasHeader) {
        tell(line, line.text);
    }
}

void findTagAsUri(const LossLine& line, const TellLoss& tell) {
    const bool isUri = line.role == LineRole::variantUri && line.isKept;
    if (isUri && isTagOrComment(line.text)) tell(line, line.text);
}

void findReference(const LossLine& line, const TellLoss& tell) {
    constexpr std::string_view start = "{$";
    const auto tellOf = [&](std::string_view text) {
        const std::size_t reference = text.find(start);
        if (reference != std::string_view::npos) tell(line, text.substr(reference));
    };
    if (line.role == LineRole::rejected || !line.isKept) return;
    if (line.role == LineRole::variantUri) return tellOf(line.text);
    line.forEachAttribute([&](const Attribute& attribute) { tellOf(attribute.value); });
}

void findUriAttribute(const LossLine& line, const TellLoss& tell) {
    const Attribute* const uri = line.isTagNamed(tag::streamInf) ? line.find(attribute::uri) : nullptr;
    if (uri != nullptr) tell(line, uri->value);
}

void findCaptionsNoneAdded(const LossLine& line, const TellLoss& tell) {
    const bool isVariant = isRecord(line, tag::streamInf);
    if (isVariant && line.find(attribute::closedCaptions) == nullptr) tell(line, line.tag.name, "none");
}

/// RFC 8216, section 4.3.4.3, has no such attribute there.
void findCaptionsAddedToIFrames(const LossLine& line, const TellLoss& tell) {
    const bool isVariant = isRecord(line, tag::iFrameStreamInf);
    if (isVariant && line.find(attribute::closedCaptions) == nullptr) tell(line, line.tag.name, "none");
}

void findQuotedNone(const LossLine& line, const TellLoss& tell) {
    const Attribute* const captions = isVariantTag(line) ? line.find(attribute::closedCaptions) : nullptr;
    if (captions != nullptr && captions->isQuoted && captions->value == fixed::none) {
        tell(line, captions->value);
    }
}

bool isDefaultRendition(const LossLine& line) {
    const Attribute* const flag = line.isTagNamed(tag::media) ? line.find(attribute::defaultFlag) : nullptr;
    return flag != nullptr && flag->value == fixed::yes;
}

void findImpliedAutoSelect(const LossLine& line, const TellLoss& tell) {
    if (!isDefaultRendition(line) || line.find(attribute::autoSelect) != nullptr) return;
    tell(line, line.find(attribute::defaultFlag)->value, "none");
}

void findOverruledAutoSelect(const LossLine& line, const TellLoss& tell) {
    const Attribute* const said = isDefaultRendition(line) ? line.find(attribute::autoSelect) : nullptr;
    if (said != nullptr && said->value == fixed::no) tell(line, said->value);
}

void findAudioTrackType(const LossLine& line, const TellLoss& tell) {
    const Attribute* const type =
        line.isTagNamed(tag::media) ? line.find(attribute::audioTrackType) : nullptr;
    if (type != nullptr) tell(line, type->name);
}

/// The model holds a set of them.
void findChangedCharacteristics(const LossLine& line, const TellLoss& tell) {
    const Attribute* const list =
        line.isTagNamed(tag::media) ? line.find(attribute::characteristics) : nullptr;
    if (list == nullptr) return;
    std::string_view rest = list->value;
    std::string_view last;
    for (bool isFirst = true;; isFirst = false) {
        const std::string_view piece = rest.substr(0, rest.find(','));
        if (!isFirst && piece <= last) tell(line, piece);
        if (piece.size() == rest.size()) return;
        last = piece;
        rest.remove_prefix(piece.size() + 1);
    }
}

void findRepeatedRendition(const LossLine& line, const TellLoss& tell) {
    if (isRecord(line, tag::media) && !line.isKept) tell(line, line.find(attribute::name)->value);
}

/// The colon before its name is what the attribute is lost for.
void findLostSessionData(const LossLine& line, const TellLoss& tell) {
    if (!isRecord(line, tag::sessionData) || line.attributes == nullptr) return;
    for (const Attribute& attribute : line.attributes->all) {
        if (startsWith(attribute.name, ":")) return tell(line, attribute.name.substr(1));
    }
}

void findSessionKey(const LossLine& line, const TellLoss& tell) {
    if (isRecord(line, tag::sessionKey)) tell(line, line.tag.name);
}

void findDroppedStreamInformation(const LossLine& line, const TellLoss& tell) {
    if (!line.isTagNamed(tag::zorStreamInf) || line.role != LineRole::alone) return;
    tell(line, line.tag.hasColon ? line.tag.value : line.text);
}

void findUnpairedStreamInformation(const LossLine& line, const TellLoss& tell) {
    const bool isUnpaired = line.playlist->pairsStreamInformation == false;
    if (isRecord(line, tag::zorStreamInf) && isUnpaired) tell(line, line.tag.name);
}

void findPairedStreamInformation(const LossLine& line, const TellLoss& tell) {
    const bool isPaired = line.playlist->pairsStreamInformation == true;
    if (isRecord(line, tag::zorStreamInf) && isPaired) tell(line, line.tag.name);
}

// clang-format off
constexpr LineLoss losses[] = {
    {{"header-ends-playlist", VELHLSFinding::Warning, "A second #EXTM3U line ends a master playlist: nothing after it is read.",
      "one #EXTM3U", libraryBehaviour, lost},
     findHeaderThatEnds},
    {{"variant-uri-is-tag", VELHLSFinding::Warning, "The line after EXT-X-STREAM-INF is a tag or a comment, and is taken as the URI.",
      "a URI in the line after EXT-X-STREAM-INF", libraryBehaviour, kept},
     findTagAsUri},
    {{"variant-uri-attribute-ignored", VELHLSFinding::Warning, "EXT-X-STREAM-INF has a URI attribute, which is ignored.",
      "the URI in the line after the tag alone", libraryBehaviour, lost},
     findUriAttribute},
    {{"master-variable-not-replaced", VELHLSFinding::Warning, "A URI or a value of a master playlist refers to a variable, which is not replaced.",
      "no reference to a variable", libraryBehaviour, kept},
     findReference},
    {{"variant-captions-none-added", VELHLSFinding::Note, "A variant without CLOSED-CAPTIONS is written with CLOSED-CAPTIONS=NONE.",
      "CLOSED-CAPTIONS", libraryBehaviour, kept},
     findCaptionsNoneAdded},
    {{"i-frame-variant-captions-added", VELHLSFinding::Warning, "An I-frame variant is written with CLOSED-CAPTIONS=NONE, which it cannot have.",
      "CLOSED-CAPTIONS, which is written all the same", libraryBehaviour, kept},
     findCaptionsAddedToIFrames},
    {{"variant-captions-quoted-none", VELHLSFinding::Warning, "CLOSED-CAPTIONS=\"NONE\" in quotes is read as NONE without quotes.",
      "CLOSED-CAPTIONS=NONE without quotes, or the name of a group", libraryBehaviour, kept},
     findQuotedNone},
    {{"rendition-autoselect-implied", VELHLSFinding::Note, "DEFAULT=YES sets AUTOSELECT, which is then written as YES.",
      "AUTOSELECT=YES beside DEFAULT=YES", libraryBehaviour, kept},
     findImpliedAutoSelect},
    {{"rendition-autoselect-overruled", VELHLSFinding::Warning, "AUTOSELECT=NO beside DEFAULT=YES is read and written as YES.",
      "AUTOSELECT=YES beside DEFAULT=YES", libraryBehaviour, kept},
     findOverruledAutoSelect},
    {{"rendition-audio-track-type-not-written", VELHLSFinding::Warning, "AUDIO-TRACK-TYPE is read and never written.",
      "an attribute that is written back", vendorExtension, lost},
     findAudioTrackType},
    {{"rendition-characteristics-changed", VELHLSFinding::Note, "CHARACTERISTICS are written in ascending order, without repeats.",
      "CHARACTERISTICS in ascending order, each once", libraryBehaviour, kept},
     findChangedCharacteristics},
    {{"rendition-repeated", VELHLSFinding::Warning, "A group has two renditions with one NAME: the second is dropped.",
      "a NAME that the group does not have yet", libraryBehaviour, lost},
     findRepeatedRendition},
    {{"session-data-attribute-lost", VELHLSFinding::Warning, "The first attribute of EXT-X-SESSION-DATA is lost.",
      "an attribute that may be lost as the first one", libraryBehaviour, lost},
     findLostSessionData},
    {{"session-key-not-written", VELHLSFinding::Warning, "EXT-X-SESSION-KEY is read and not written.",
      "a tag that is written back", libraryBehaviour, lost},
     findSessionKey},
    {{"vendor-stream-information-dropped", VELHLSFinding::Warning, "A ZOR-STREAM-INF line is dropped, since it does not say any bit rate.",
      "NOMINAL_VIDEO_BITRATE or NOMINAL_AUDIO_BITRATE above 0", vendorExtension, lost},
     findDroppedStreamInformation},
    {{"vendor-stream-information-unpaired", VELHLSFinding::Warning, "All ZOR-STREAM-INF lines are dropped, since they do not pair with the variants.",
      "as many ZOR-STREAM-INF lines as EXT-X-STREAM-INF tags", vendorExtension, lost},
     findUnpairedStreamInformation},
    {{"vendor-stream-information-not-written", VELHLSFinding::Warning, "ZOR-STREAM-INF is read and not written.",
      "a tag that is written back", vendorExtension, lost},
     findPairedStreamInformation},
};
// clang-format on

}  // namespace

LossTable<LineLoss> masterLosses() {
    return {losses, std::size(losses)};
}

}  // namespace velhls
