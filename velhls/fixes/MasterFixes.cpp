// Variants, renditions and session data.
#include <algorithm>
#include <array>
#include <iterator>

#include "velhls/common/Names.h"
#include "velhls/common/ReasonText.h"
#include "velhls/common/TextScan.h"
#include "velhls/document/VELHLSSyntax.h"
#include "velhls/fixes/FaultyText.h"

namespace velhls {
namespace {

void fixVariantUri(const Fault& fault) {
    const auto variant = fault.text.structure().variantOf(fault.line.number);
    if (!variant) return;
    const VELHLSStructure::Variant lines = fault.text.structure().variants()[*variant];
    if (lines.uriLine != 0 && !mayMoveToUri(fault.document(), lines)) return;
    if (lines.uriLine != 0)
        return fault.safe("moves EXT-X-STREAM-INF to its URI",
                          moveBefore(fault.document(), lines.tagLine, lines.uriLine));
    fault.lossy("removes EXT-X-STREAM-INF, which no URI follows: the variant is lost",
                {fault.document().removeLine(lines.tagLine)});
}

void fixVariantUriAttribute(const Fault& fault) {
    const std::size_t next = fault.line.number + 1;
    if (next <= fault.document().lineCount()) {
        const VELHLSLine line = fault.document().line(next);
        if (line.kind == VELHLSLine::Uri) {
            std::vector<VELHLSEdit> edits = fault.setAttribute(attribute::uri, std::string(line.value));
            if (!edits.empty()) {
                edits.push_back(fault.document().removeLine(next));
                fault.guess("takes the line after it for its URI", std::move(edits));
            }
        }
    }
    fault.removeLine("it names no playlist");
}

/// A number of bits per second that the variant tells otherwise; 0 for none.
std::uint64_t toldBandwidth(const VELHLSLine& line) {
    const auto average = line.attributes().find(attribute::averageBandwidth);
    const auto bits = average ? VELHLSSyntax::readDecimalInteger(average->value) : std::nullopt;
    return bits.value_or(0);
}

/// A usual number of bits per second for a picture of this size; 0 where the variant has none.
std::uint64_t usualBandwidth(const VELHLSLine& line) {
    constexpr std::uint64_t bitsOfPixel = 3;
    constexpr std::uint64_t most = 100'000;
    const auto attribute = line.attributes().find(attribute::resolution);
    const auto size = attribute ? VELHLSSyntax::readDecimalResolution(attribute->value) : std::nullopt;
    if (!size || size->width > most || size->height > most) return 0;
    return size->width * size->height * bitsOfPixel;
}

void fixRenditionType(const Fault& fault) {
    const auto type = fault.line.attributes().find(attribute::type);
    if (type) {
        const std::string upper = inUpperCase(type->value);
        const bool isKnown =
            upper == "AUDIO" || upper == "VIDEO" || upper == "SUBTITLES" || upper == "CLOSED-CAPTIONS";
        if (isKnown) fault.guess("writes TYPE=" + upper, fault.setAttribute(attribute::type, upper));
    }
    fault.removeLine("the rendition is lost");
}

void dropRendition(const Fault& fault) {
    std::vector<VELHLSEdit> edits = removeRendition(fault.text, fault.line);
    const bool endsGroup = edits.size() > 1;
    fault.lossy("removes " + quoted(fault.line.text) + ": the rendition is lost" +
                    (endsGroup ? ", and its group with it" : ""),
                std::move(edits));
}

void fixRenditionName(const Fault& fault) {
    for (const std::string_view other : {attribute::language, attribute::groupId}) {
        const auto attribute = fault.line.attributes().find(other);
        if (!attribute || attribute->value.empty()) continue;
        fault.guess("names the rendition after its " + std::string(other),
                    fault.setAttribute(attribute::name, std::string(attribute->value)));
        break;
    }
    dropRendition(fault);
}

void fixRenditionFlag(const Fault& fault) {
    const auto flag = fault.attribute();
    if (!flag) return;
    const std::string value(yesOrNo(flag->value));
    if (!value.empty())
        fault.guess("writes " + std::string(flag->name) + "=" + value, fault.setAttribute(flag->name, value));
    fault.removeAttribute(flag->name);
}

/// The first of the four channels of CEA-608 that the group does not use.
void fixInstreamId(const Fault& fault) {
    const auto groupId = fault.line.attributes().find(attribute::groupId);
    std::array<bool, 4> isUsed = {};
    constexpr std::size_t mostRenditions = 64;
    const FaultyText::Group* group = nullptr;
    if (groupId) {
        const auto type = fault.text.groups().find("CLOSED-CAPTIONS");
        if (type != fault.text.groups().end()) {
            const auto found = type->second.find(groupId->value);
            if (found != type->second.end()) group = &found->second;
        }
    }
    if (group != nullptr && group->size() <= mostRenditions) {
        for (const auto& [name, line] : *group) {
            const auto channel = fault.document().line(line).attributes().find(attribute::instreamId);
            if (channel && channel->value.size() == 3 && startsWith(channel->value, "CC") &&
                channel->value[2] >= '1' && channel->value[2] <= '4')
                isUsed[static_cast<std::size_t>(channel->value[2] - '1')] = true;
        }
        const auto free = std::find(isUsed.begin(), isUsed.end(), false);
        if (free != isUsed.end()) {
            const std::string channel = "CC" + std::to_string(free - isUsed.begin() + 1);
            fault.guess("takes the channel " + channel, fault.setAttribute(attribute::instreamId, channel));
        }
    }
    dropRendition(fault);
}

void fixUnexpectedInstreamId(const Fault& fault) {
    fault.removeAttribute(attribute::instreamId);
}

void fixUnexpectedForced(const Fault& fault) {
    fault.removeAttribute(attribute::forced);
}

void fixCaptionsUri(const Fault& fault) {
    fault.removeAttribute(attribute::uri);
}

/// The models read no attribute that stands first: one that means nothing to anybody takes its place.
void putSpareFirst(const Fault& fault, const VELHLSLine& line) {
    if (isMalformed(line)) return;
    const std::string_view list = line.value;
    fault.safe("puts the attribute X-SPARE=YES first, where the library reads none",
               {fault.replace(list.substr(0, 0), "X-SPARE=YES,")});
}

bool standsFirst(const VELHLSLine& line, std::string_view name) {
    const auto first = line.attributes().begin();
    return first != line.attributes().end() && first->name == name;
}

bool hasText(const VELHLSLine& line, std::string_view name) {
    const auto attribute = line.attributes().find(name);
    return attribute && !attribute->value.empty();
}

void fixDataId(const Fault& fault) {
    if (standsFirst(fault.line, attribute::dataId) && hasText(fault.line, attribute::dataId))
        return putSpareFirst(fault, fault.line);
    fault.removeLine("it says of what it tells to nobody");
}

void fixDataValue(const Fault& fault) {
    for (const std::string_view name : {attribute::value, attribute::uri}) {
        if (standsFirst(fault.line, name) && hasText(fault.line, name))
            return putSpareFirst(fault, fault.line);
    }
    fault.removeLine("it has no value");
}

void fixDataOfTwo(const Fault& fault) {
    fault.removeAttribute(attribute::uri);
}

/// The same in two languages, of which the models do not read one.
void fixRepeatedData(const Fault& fault) {
    const std::size_t first = fault.text.firstLike(fault.line);
    if (first != 0 && first < fault.line.number)
        return fault.safe("removes the tag, which repeats another one",
                          {fault.document().removeLine(fault.line.number)});
    if (standsFirst(fault.line, attribute::language)) return putSpareFirst(fault, fault.line);
    const std::size_t other = fault.text.dataWithLanguageFirst(fault.line);
    if (other != 0) return putSpareFirst(fault, fault.document().line(other));
    fault.removeLine("another tag says what DATA-ID and LANGUAGE stand for");
}

void removeMarkedAttribute(const Fault& fault) {
    const auto attribute = fault.attribute();
    if (attribute) fault.removeAttribute(attribute->name);
}

void selectDefault(const Fault& fault) {
    fault.lossy("says AUTOSELECT=YES, as DEFAULT=YES does",
                fault.setAttribute(attribute::autoSelect, std::string(fixed::yes)));
}

// clang-format off
constexpr FixEntry entries[] = {
    {"variant-uri-missing", fixVariantUri,
     "safe: moves EXT-X-STREAM-INF to the URI that follows it after other lines; lossy: removes it where none does"},
    {"variant-bandwidth-missing", fixBandwidth,
     "guess: writes the AVERAGE-BANDWIDTH, or 3 bits per second for each pixel, or 1000000"},
    {"variant-bandwidth-zero", fixBandwidth,
     "guess: writes the AVERAGE-BANDWIDTH, or 3 bits per second for each pixel, or 1000000"},
    {"variant-uri-attribute-missing", fixVariantUriAttribute,
     "guess: takes the line after the tag for its URI; lossy: removes the tag"},
    {"rendition-type-missing", fixRenditionType, "lossy: removes the rendition"},
    {"rendition-type-unknown", fixRenditionType, "guess: writes TYPE in upper case; lossy: removes the rendition"},
    {"rendition-group-id-missing", dropRendition, "lossy: removes the rendition"},
    {"rendition-name-missing", fixRenditionName,
     "guess: names the rendition after its LANGUAGE or its GROUP-ID; lossy: removes it, and what names its group where it is the last"},
    {"rendition-flag-invalid", fixRenditionFlag, "guess: writes YES or NO for what seems to mean it; lossy: removes the attribute"},
    {"rendition-instream-id-missing", fixInstreamId,
     "guess: takes the first of CC1 to CC4 that the group has not; lossy: removes the rendition, and what names its group where it is "
     "the last"},
    {"rendition-instream-id-unexpected", fixUnexpectedInstreamId, "lossy: removes INSTREAM-ID"},
    {"rendition-forced-unexpected", fixUnexpectedForced, "lossy: removes FORCED"},
    {"rendition-captions-uri", fixCaptionsUri, "lossy: removes the URI"},
    {"variant-without-uri", fixVariantUri, "lossy: removes EXT-X-STREAM-INF"},
    {"i-frame-variant-attribute-unexpected", removeMarkedAttribute, "lossy: removes the attribute"},
    {"rendition-uri-of-captions", fixCaptionsUri, "lossy: removes the URI"},
    {"rendition-default-not-selected", selectDefault, "lossy: says AUTOSELECT=YES"},
    {"rendition-forced-elsewhere", fixUnexpectedForced, "lossy: removes FORCED"},
    {"rendition-instream-id-elsewhere", fixUnexpectedInstreamId, "lossy: removes INSTREAM-ID"},
    {"rendition-channel-missing", fixInstreamId,
     "guess: takes the first of CC1 to CC4 that the group has not; lossy: removes the rendition, and what names its group where it is "
     "the last"},
    {"session-data-says-two-things", fixDataOfTwo, "lossy: removes the URI"},
    {"session-data-twice", fixRepeatedData, "safe: removes a tag that is the same; lossy: removes the later one"},
    {"session-data-id-missing", fixDataId,
     "safe: puts an attribute that means nothing, X-SPARE=YES, before DATA-ID; lossy: removes a tag without DATA-ID"},
    {"session-data-value-missing", fixDataValue,
     "safe: puts an attribute that means nothing, X-SPARE=YES, before VALUE or URI; lossy: removes a tag without either"},
    {"session-data-value-and-uri", fixDataOfTwo, "lossy: removes the URI"},
    {"session-data-repeated", fixRepeatedData,
     "safe: puts an attribute that means nothing, X-SPARE=YES, before LANGUAGE, or removes a tag that is the same; lossy: removes the tag"},
};
// clang-format on

}  // namespace

bool mayMoveToUri(const VELHLSDocument& document, const VELHLSStructure::Variant& variant) {
    for (std::size_t number = variant.tagLine + 1; number < variant.uriLine; ++number) {
        const VELHLSTagDefinition* const definition = document.line(number).definition;
        if (definition != nullptr && definition->playlist == VELHLSTagDefinition::Media) return false;
    }
    return variant.tagLine + 1 < variant.uriLine;
}

void fixBandwidth(const Fault& fault) {
    constexpr std::uint64_t usual = 1'000'000;
    std::uint64_t bits = toldBandwidth(fault.line);
    std::string from = ", its AVERAGE-BANDWIDTH";
    if (bits == 0) {
        bits = usualBandwidth(fault.line);
        from = ", as is usual for its RESOLUTION";
    }
    if (bits == 0) {
        bits = usual;
        from = ", since nothing tells";
    }
    const std::string number = std::to_string(bits);
    fault.guess("writes BANDWIDTH=" + number + from, fault.setAttribute(attribute::bandwidth, number));
}

FixTable masterFixes() {
    return {entries, std::size(entries)};
}

}  // namespace velhls
