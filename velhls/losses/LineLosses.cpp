#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "velhls/common/Names.h"
#include "velhls/common/NumberReading.h"
#include "velhls/common/ReasonText.h"
#include "velhls/common/StartTag.h"
#include "velhls/common/TextScan.h"
#include "velhls/document/SecondsText.h"
#include "velhls/document/TagSpelling.h"
#include "velhls/document/VELHLSAttribute.h"
#include "velhls/losses/Loss.h"

namespace velhls {
namespace {

constexpr bool lost = true;
constexpr bool kept = false;

/// The models read session data from the tag's colon on, which another rule tells.
std::string_view nameWithoutColon(const Attribute& attribute) {
    return attribute.name.substr(startsWith(attribute.name, ":") ? 1 : 0);
}

/// Whether the grammar reads the attribute as the models do, and both take all of its text.
bool isReadAlike(const Attribute& attribute, const VELHLSAttribute& strict) {
    const std::string_view name = nameWithoutColon(attribute);
    const std::size_t quotes = attribute.isQuoted ? 2 : 0;
    return name == strict.name && attribute.value == strict.value && attribute.isQuoted == strict.quoted &&
           name.size() + 1 + attribute.value.size() + quotes == strict.text.size();
}

/// An attribute that the models read otherwise than the grammar of RFC 8216, section 4.2, has it, up to its `end`.
void tellOfOtherReading(const LossLine& line, const Attribute& attribute, const char* end,
                        const TellLoss& tell) {
    const std::string_view name = nameWithoutColon(attribute);
    const bool hasBlanks = !name.empty() && (blanks.holds(name.front()) || blanks.holds(name.back()));
    if (hasBlanks) return tell(line, name, quoted(name) + ", read with its white space");
    const char* const start = name.data() + name.size() + 1;
    const std::string_view written(start, static_cast<std::size_t>(end - start));
    tell(line, written,
         quoted(written) + (written == attribute.value ? ", read with its white space"
                                                       : ", read as " + quoted(attribute.value)));
}

/// Compares the list that the models read with the one that the grammar has.
void findOtherReading(const LossLine& line, const TellLoss& tell) {
    if (line.attributes == nullptr) return;
    const VELHLSAttributes list(line.tag.value);
    VELHLSAttributes::Iterator strict = list.begin();
    const std::vector<Attribute>& all = line.attributes->all;
    for (std::size_t index = 0; index < all.size(); ++index) {
        const char* const start = nameWithoutColon(all[index]).data();
        // Of a value with a comma in its quotes the grammar may have made several.
        while (strict != list.end() && strict->text.data() < start)
            ++strict;
        if (strict != list.end() && isReadAlike(all[index], *strict)) continue;
        const bool isLast = index + 1 == all.size();
        const char* const end =
            isLast ? line.tag.value.data() + line.tag.value.size() : all[index + 1].name.data() - 1;
        tellOfOtherReading(line, all[index], end, tell);
    }
}

void findRepeatedAttribute(const LossLine& line, const TellLoss& tell) {
    if (line.attributes == nullptr) return;
    for (std::size_t index = 0; index < line.attributes->all.size(); ++index) {
        if (line.attributes->areRepeated[index]) tell(line, line.attributes->all[index].name);
    }
}

/// The attributes that the model of a tag has a field for.
struct KeptAttributes {
    std::string_view tag;
    std::array<std::string_view, 12> names;
};

constexpr std::array<std::string_view, 12> keptOfVariant = {attribute::bandwidth, attribute::averageBandwidth,
                                                            attribute::codecs,    attribute::resolution,
                                                            attribute::programId, attribute::uri,
                                                            attribute::audio,     attribute::video,
                                                            attribute::subtitles, attribute::closedCaptions};
constexpr std::array<std::string_view, 12> keptOfKey = {attribute::method, attribute::uri, attribute::iv,
                                                        attribute::keyFormat, attribute::keyFormatVersions};

constexpr KeptAttributes keptAttributes[] = {
    {tag::streamInf, keptOfVariant},
    {tag::iFrameStreamInf, keptOfVariant},
    {tag::media,
     {attribute::type, attribute::defaultFlag, attribute::autoSelect, attribute::forced, attribute::uri,
      attribute::groupId, attribute::language, attribute::assocLanguage, attribute::name,
      attribute::instreamId, attribute::audioTrackType, attribute::characteristics}},
    {tag::sessionData, {attribute::dataId, attribute::value, attribute::uri, attribute::language}},
    {tag::sessionKey, keptOfKey},
    {tag::key, keptOfKey},
    {tag::map, {attribute::uri, attribute::byteRange}},
};

bool endsEncryption(const LossLine& line) {
    const Attribute* const method = line.find(attribute::method);
    return line.isTagNamed(tag::key) && method != nullptr && method->value == fixed::none;
}

void findIgnoredAttribute(const LossLine& line, const TellLoss& tell) {
    // The first attribute of session data is lost with the tag's colon, and has a rule of its own, as have those of a
    // key that ends encryption.
    if (line.attributes == nullptr || endsEncryption(line)) return;
    const auto known =
        std::find_if(std::begin(keptAttributes), std::end(keptAttributes),
                     [&line](const KeptAttributes& kept) { return kept.tag == line.tag.name; });
    if (known == std::end(keptAttributes)) return;
    line.forEachAttribute([&](const Attribute& attribute) {
        const bool isKnown =
            std::find(known->names.begin(), known->names.end(), attribute.name) != known->names.end();
        if (isKnown || startsWith(attribute.name, ":")) return;
        const bool isInWhiteSpace = !attribute.name.empty() && (blanks.holds(attribute.name.front()) ||
                                                                blanks.holds(attribute.name.back()));
        tell(line, attribute.name,
             isInWhiteSpace ? quoted(attribute.name) + ", a name with white space" : "");
    });
}

void findComment(const LossLine& line, const TellLoss& tell) {
    const bool isComment = isTagOrComment(line.text) && !line.isTag;
    const bool isLost = line.role != LineRole::variantUri && line.role != LineRole::rejected;
    if (!isComment || !isLost) return;
    const TagLine tagLine(line.text);
    tell(line, line.text, quoted(line.text) + didYouMean(tagLine.name));
}

/// EXT-X-START that the models read, and the seconds of its offset; nothing for any other line.
std::optional<double> startOffset(const LossLine& line) {
    if (!line.isTagNamed(tag::start) || !line.tag.hasColon) return std::nullopt;
    double offset = 0.0;
    bool precise = false;
    Reason ignored;
    try {
        if (readStartTag(line.tag, offset, precise, ignored)) return offset;
    } catch (const std::logic_error&) {
        // Rejected.
    }
    return std::nullopt;
}

/// What a number may be made of, by RFC 8216, section 4.2.
enum class NumberForm { integer, decimal, signedDecimal };

bool hasForm(std::string_view number, NumberForm form) {
    if (form == NumberForm::signedDecimal && startsWith(number, "-")) number.remove_prefix(1);
    if (form == NumberForm::integer) return !number.empty() && holdsOnly(number, digits);
    return !number.empty() && holdsOnly(number, digitsAndPoint) &&
           std::count(number.begin(), number.end(), '.') <= 1;
}

/// What the models read; nothing when they read nothing.
std::optional<std::string> textAsRead(std::string_view number, NumberForm form) {
    try {
        if (form != NumberForm::integer) return secondsText(toDouble(number));
        return std::to_string(toInt64(number));
    } catch (const std::logic_error&) {
        // A number that cannot be converted is a reason to reject, and no loss.
        return std::nullopt;
    }
}

enum class Kind { master, media, both };

/// Where a number stands that the models read.
struct NumberPlace {
    std::string_view tag;
    /// Empty for the start of the tag's value.
    std::string_view attribute;
    NumberForm form;
    Kind kind;
};

constexpr NumberPlace numberPlaces[] = {
    {tag::extInf, {}, NumberForm::decimal, Kind::media},
    {tag::version, {}, NumberForm::integer, Kind::both},
    {tag::zorPatternRepeat, {}, NumberForm::integer, Kind::media},
    {tag::targetDuration, {}, NumberForm::decimal, Kind::media},
    {tag::start, attribute::timeOffset, NumberForm::signedDecimal, Kind::both},
    {tag::streamInf, attribute::bandwidth, NumberForm::integer, Kind::master},
    {tag::streamInf, attribute::averageBandwidth, NumberForm::integer, Kind::master},
    {tag::streamInf, attribute::programId, NumberForm::integer, Kind::master},
    {tag::iFrameStreamInf, attribute::bandwidth, NumberForm::integer, Kind::master},
    {tag::iFrameStreamInf, attribute::averageBandwidth, NumberForm::integer, Kind::master},
    {tag::iFrameStreamInf, attribute::programId, NumberForm::integer, Kind::master},
    {tag::zorStreamInf, attribute::nominalVideoBitrate, NumberForm::integer, Kind::master},
    {tag::zorStreamInf, attribute::nominalAudioBitrate, NumberForm::integer, Kind::master},
};

void findOtherNotation(const LossLine& line, const TellLoss& tell) {
    if (!line.isTag || !line.tag.hasColon) return;
    // What these are made of is looked at before they are read as numbers.
    const bool isHeader = line.tag.name == tag::start || line.tag.name == tag::targetDuration;
    if (isHeader && line.role == LineRole::rejected) return;
    for (const NumberPlace& place : numberPlaces) {
        const bool isOther = place.kind == (line.playlist->isMaster ? Kind::media : Kind::master);
        if (line.tag.name != place.tag || isOther) continue;
        const Attribute* const attribute = line.find(place.attribute);
        if (attribute == nullptr && !place.attribute.empty()) continue;
        std::string_view number = line.tag.value;
        if (attribute != nullptr) number = attribute->value;
        if (line.tag.name == tag::extInf) number = number.substr(0, number.find(','));
        if (line.tag.name == tag::zorPatternRepeat) number = number.substr(number.find(',') + 1);
        if (hasForm(number, place.form)) continue;
        const std::optional<std::string> read = textAsRead(number, place.form);
        if (read) tell(line, number, quoted(number) + ", read as " + *read);
    }
}

void findInvalidPrecise(const LossLine& line, const TellLoss& tell) {
    const Attribute* const precise = startOffset(line) ? line.find(attribute::precise) : nullptr;
    if (precise == nullptr || precise->value == fixed::yes || precise->value == fixed::no) return;
    tell(line, precise->value);
}

void findPreciseKept(const LossLine& line, const TellLoss& tell) {
    if (!startOffset(line) || !line.playlist->startIsPrecise) return;
    const Attribute* const precise = line.find(attribute::precise);
    if (precise == nullptr || precise->value != fixed::yes) tell(line, line.tag.name);
}

void findStartOfZero(const LossLine& line, const TellLoss& tell) {
    if (startOffset(line) == 0.0) tell(line, line.find(attribute::timeOffset)->value);
}

void findRoundedStart(const LossLine& line, const TellLoss& tell) {
    const std::optional<double> offset = startOffset(line);
    if (!offset || *offset == 0.0) return;
    const std::string_view text = line.find(attribute::timeOffset)->value;
    const std::string written = startOffsetText(std::ostringstream(), *offset);
    if (toDouble(written) == *offset && holdsOnly(written, digitsPointAndSigns)) return;
    tell(line, text, quoted(text) + ", written as " + written);
}

// clang-format off
constexpr LineLoss losses[] = {
    {{"comment-not-written", VELHLSFinding::Note, "A comment is not written back.",
      "a line that is written back", libraryBehaviour, lost},
     findComment},
    {{"number-not-decimal", VELHLSFinding::Warning, "A number holds more than RFC 8216 allows, and is read in part or in another notation.",
      "a decimal number and nothing else", libraryBehaviour, kept},
     findOtherNotation},
    {{"attribute-read-otherwise", VELHLSFinding::Warning, "An attribute is read otherwise than the grammar of attribute lists has it.",
      "NAME=value or NAME=\"value\", and nothing else before the comma or the end", libraryBehaviour, lost},
     findOtherReading},
    {{"attribute-repeated", VELHLSFinding::Warning, "An attribute stands a second time, and is dropped.",
      "the attribute once", libraryBehaviour, lost},
     findRepeatedAttribute},
    {{"attribute-ignored", VELHLSFinding::Warning, "An attribute that the model has no field for is dropped.",
      "an attribute that the library keeps", libraryBehaviour, lost},
     findIgnoredAttribute},
    {{"start-precise-invalid", VELHLSFinding::Warning, "PRECISE is neither YES nor NO.",
      "YES or NO", libraryBehaviour, kept},
     findInvalidPrecise},
    {{"start-precise-kept", VELHLSFinding::Warning, "A later EXT-X-START does not take PRECISE=YES back.",
      "PRECISE=YES, which an earlier EXT-X-START has set", libraryBehaviour, kept},
     findPreciseKept},
    {{"start-zero-not-written", VELHLSFinding::Warning, "An EXT-X-START with an offset of 0 is not written back.",
      "an offset other than 0", libraryBehaviour, lost},
     findStartOfZero},
    {{"start-offset-rounded", VELHLSFinding::Warning, "The offset of EXT-X-START is written with six significant digits.",
      "at most six significant digits", libraryBehaviour, kept},
     findRoundedStart},
};
// clang-format on

}  // namespace

LossTable<LineLoss> lineLosses() {
    return {losses, std::size(losses)};
}

}  // namespace velhls
