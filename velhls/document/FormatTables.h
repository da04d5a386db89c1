// Internal to the library, not installed: the two tables that hold the format of playlists. To know one more tag or
// attribute is one more row here.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "velhls/common/Names.h"
#include "velhls/document/VELHLSAttributeDefinition.h"
#include "velhls/document/VELHLSTagDefinition.h"

namespace velhls {

// All fields of a row have defaults but the name: these set the others in turn, so that a row says what is special of it.

constexpr VELHLSTagDefinition tagRow(std::string_view name, std::string_view section,
                                     VELHLSTagDefinition::Playlist playlist, VELHLSTagDefinition::Form form,
                                     VELHLSTagDefinition::Reach reach = VELHLSTagDefinition::Itself) {
    VELHLSTagDefinition row;
    row.name = name;
    row.section = section;
    row.playlist = playlist;
    row.form = form;
    row.reach = reach;
    return row;
}

template <std::size_t count>
constexpr VELHLSTagDefinition listRow(std::string_view name, std::string_view section,
                                      VELHLSTagDefinition::Playlist playlist,
                                      const std::array<VELHLSAttributeDefinition, count>& attributes,
                                      VELHLSTagDefinition::Reach reach = VELHLSTagDefinition::Itself) {
    VELHLSTagDefinition row = tagRow(name, section, playlist, VELHLSTagDefinition::AttributeList, reach);
    row.attributes = {attributes.data(), count};
    return row;
}

constexpr VELHLSTagDefinition once(VELHLSTagDefinition row) {
    row.once = true;
    return row;
}

template <typename Row>
constexpr Row values(std::string_view words, Row row) {
    row.values = words;
    return row;
}

constexpr VELHLSAttributeDefinition later(std::string_view words, VELHLSAttributeDefinition row) {
    row.laterValues = words;
    return row;
}

template <typename Row>
constexpr Row since(std::uint8_t version, Row row) {
    row.firstVersion = version;
    return row;
}

template <typename Row>
constexpr Row removedIn(std::uint8_t version, Row row) {
    row.removedVersion = version;
    return row;
}

template <typename Row>
constexpr Row bis(Row row) {
    row.profile = VELHLSProfile::rfc8216bis;
    return row;
}

template <typename Row>
constexpr Row vendor(Row row) {
    row.profile = VELHLSProfile::vendor;
    return row;
}

constexpr VELHLSAttributeDefinition attributeRow(std::string_view name,
                                                 VELHLSAttributeDefinition::Type type) {
    VELHLSAttributeDefinition row;
    row.name = name;
    row.type = type;
    return row;
}

/// A quoted-string.
constexpr VELHLSAttributeDefinition quotedString(
    std::string_view name, VELHLSAttributeDefinition::Content content = VELHLSAttributeDefinition::Text) {
    VELHLSAttributeDefinition row = attributeRow(name, VELHLSAttributeDefinition::QuotedString);
    row.content = content;
    return row;
}

/// An enumerated-string.
constexpr VELHLSAttributeDefinition oneOf(std::string_view words, std::string_view name) {
    return values(words, attributeRow(name, VELHLSAttributeDefinition::EnumeratedString));
}

constexpr VELHLSAttributeDefinition required(VELHLSAttributeDefinition row) {
    row.required = true;
    return row;
}

inline constexpr std::array keyAttributes = [] {
    using Attribute = VELHLSAttributeDefinition;
    return std::array{
        required(later("SAMPLE-AES-CTR", oneOf("NONE,AES-128,SAMPLE-AES", attribute::method))),
        quotedString(attribute::uri, Attribute::Uri),
        since(2, attributeRow(attribute::iv, Attribute::HexadecimalSequence)),
        since(5, quotedString(attribute::keyFormat)),
        since(5, quotedString(attribute::keyFormatVersions)),
    };
}();

/// Those of EXT-X-KEY, but for NONE, and with a URI.
inline constexpr std::array sessionKeyAttributes = [] {
    auto rows = keyAttributes;
    rows[0].values = "AES-128,SAMPLE-AES";
    rows[1].required = true;
    return rows;
}();

inline constexpr std::array mapAttributes = [] {
    using Attribute = VELHLSAttributeDefinition;
    return std::array{
        required(quotedString(attribute::uri, Attribute::Uri)),
        quotedString(attribute::byteRange, Attribute::ByteRange),
    };
}();

inline constexpr std::array dateRangeAttributes = [] {
    using Attribute = VELHLSAttributeDefinition;
    return std::array{
        required(quotedString("ID")),
        quotedString("CLASS"),
        required(quotedString("START-DATE", Attribute::DateTime)),
        quotedString("END-DATE", Attribute::DateTime),
        attributeRow("DURATION", Attribute::DecimalFloatingPoint),
        attributeRow("PLANNED-DURATION", Attribute::DecimalFloatingPoint),
        attributeRow("SCTE35-CMD", Attribute::HexadecimalSequence),
        attributeRow("SCTE35-OUT", Attribute::HexadecimalSequence),
        attributeRow("SCTE35-IN", Attribute::HexadecimalSequence),
        oneOf("YES", "END-ON-NEXT"),
        bis(quotedString("CUE", Attribute::List)),
        // Interstitials: what plays in between.
        bis(quotedString("X-ASSET-URI", Attribute::Uri)),
        bis(quotedString("X-ASSET-LIST", Attribute::Uri)),
        bis(attributeRow("X-RESUME-OFFSET", Attribute::SignedDecimalFloatingPoint)),
        bis(attributeRow("X-PLAYOUT-LIMIT", Attribute::DecimalFloatingPoint)),
        bis(quotedString("X-SNAP", Attribute::List)),
        bis(quotedString("X-RESTRICT", Attribute::List)),
        attributeRow("X-*", Attribute::ClientValue),
    };
}();

inline constexpr std::array partAttributes = [] {
    using Attribute = VELHLSAttributeDefinition;
    return std::array{
        bis(required(quotedString(attribute::uri, Attribute::Uri))),
        bis(required(attributeRow("DURATION", Attribute::DecimalFloatingPoint))),
        bis(oneOf("YES", "INDEPENDENT")),
        bis(quotedString(attribute::byteRange, Attribute::ByteRange)),
        bis(oneOf("YES", "GAP")),
    };
}();

inline constexpr std::array partInfAttributes = {
    bis(required(attributeRow("PART-TARGET", VELHLSAttributeDefinition::DecimalFloatingPoint))),
};

inline constexpr std::array serverControlAttributes = [] {
    using Attribute = VELHLSAttributeDefinition;
    return std::array{
        bis(attributeRow("CAN-SKIP-UNTIL", Attribute::DecimalFloatingPoint)),
        bis(oneOf("YES", "CAN-SKIP-DATERANGES")),
        bis(attributeRow("HOLD-BACK", Attribute::DecimalFloatingPoint)),
        bis(attributeRow("PART-HOLD-BACK", Attribute::DecimalFloatingPoint)),
        bis(oneOf("YES", "CAN-BLOCK-RELOAD")),
    };
}();

inline constexpr std::array skipAttributes = {
    bis(required(attributeRow("SKIPPED-SEGMENTS", VELHLSAttributeDefinition::DecimalInteger))),
    // A list whose separator is a tab.
    since(10, bis(quotedString("RECENTLY-REMOVED-DATERANGES"))),
};

inline constexpr std::array preloadHintAttributes = [] {
    using Attribute = VELHLSAttributeDefinition;
    return std::array{
        bis(required(oneOf("PART,MAP", attribute::type))),
        bis(required(quotedString(attribute::uri, Attribute::Uri))),
        bis(attributeRow("BYTERANGE-START", Attribute::DecimalInteger)),
        bis(attributeRow("BYTERANGE-LENGTH", Attribute::DecimalInteger)),
    };
}();

inline constexpr std::array renditionReportAttributes = [] {
    using Attribute = VELHLSAttributeDefinition;
    return std::array{
        bis(required(quotedString(attribute::uri, Attribute::Uri))),
        bis(attributeRow("LAST-MSN", Attribute::DecimalInteger)),
        bis(attributeRow("LAST-PART", Attribute::DecimalInteger)),
    };
}();

inline constexpr std::array mediaAttributes = [] {
    using Attribute = VELHLSAttributeDefinition;
    return std::array{
        required(oneOf("AUDIO,VIDEO,SUBTITLES,CLOSED-CAPTIONS", attribute::type)),
        required(quotedString(attribute::groupId)),
        required(quotedString(attribute::name)),
        quotedString(attribute::language, Attribute::Language),
        oneOf("YES,NO", attribute::autoSelect),
        oneOf("YES,NO", attribute::defaultFlag),
        quotedString(attribute::uri, Attribute::Uri),
        quotedString("CHANNELS"),
        quotedString(attribute::assocLanguage, Attribute::Language),
        oneOf("YES,NO", attribute::forced),
        quotedString(attribute::instreamId),
        quotedString(attribute::characteristics, Attribute::List),
        bis(quotedString("STABLE-RENDITION-ID")),
        bis(attributeRow("BIT-DEPTH", Attribute::DecimalInteger)),
        bis(attributeRow("SAMPLE-RATE", Attribute::DecimalInteger)),
        vendor(quotedString(attribute::audioTrackType)),
    };
}();

/// Those that the tags of variants and of I-frame variants share.
inline constexpr std::array variantAttributes = [] {
    using Attribute = VELHLSAttributeDefinition;
    return std::array{
        required(attributeRow(attribute::bandwidth, Attribute::DecimalInteger)),
        attributeRow(attribute::averageBandwidth, Attribute::DecimalInteger),
        quotedString(attribute::codecs, Attribute::List),
        attributeRow(attribute::resolution, Attribute::DecimalResolution),
        later("TYPE-1", oneOf("TYPE-0,NONE", "HDCP-LEVEL")),
        quotedString(attribute::video),
        bis(oneOf("SDR,HLG,PQ", "VIDEO-RANGE")),
        bis(attributeRow("SCORE", Attribute::DecimalFloatingPoint)),
        bis(quotedString("SUPPLEMENTAL-CODECS", Attribute::List)),
        bis(quotedString("ALLOWED-CPC", Attribute::List)),
        bis(quotedString("STABLE-VARIANT-ID")),
        bis(quotedString("PATHWAY-ID")),
        since(12, bis(quotedString("REQ-VIDEO-LAYOUT", Attribute::List))),
        since(12, bis(quotedString("REQ-*"))),
        removedIn(6, attributeRow(attribute::programId, Attribute::DecimalInteger)),
        vendor(quotedString(attribute::name)),
    };
}();

/// The rows of both arrays.
template <std::size_t firstCount, std::size_t secondCount>
constexpr auto joined(const std::array<VELHLSAttributeDefinition, firstCount>& first,
                      const std::array<VELHLSAttributeDefinition, secondCount>& second) {
    std::array<VELHLSAttributeDefinition, firstCount + secondCount> all = {};
    for (std::size_t place = 0; place < firstCount; ++place)
        all[place] = first[place];
    for (std::size_t place = 0; place < secondCount; ++place)
        all[firstCount + place] = second[place];
    return all;
}

inline constexpr auto streamInfAttributes = [] {
    using Attribute = VELHLSAttributeDefinition;
    return joined(variantAttributes,
                  std::array{
                      attributeRow("FRAME-RATE", Attribute::DecimalFloatingPoint),
                      quotedString(attribute::audio),
                      quotedString(attribute::subtitles),
                      values("NONE", attributeRow(attribute::closedCaptions, Attribute::QuotedOrEnumerated)),
                  });
}();

inline constexpr auto iFrameStreamInfAttributes = joined(
    variantAttributes, std::array{required(quotedString(attribute::uri, VELHLSAttributeDefinition::Uri))});

inline constexpr std::array sessionDataAttributes = [] {
    using Attribute = VELHLSAttributeDefinition;
    return std::array{
        required(quotedString(attribute::dataId)),
        quotedString(attribute::value),
        quotedString(attribute::uri, Attribute::Uri),
        quotedString(attribute::language, Attribute::Language),
        bis(oneOf("JSON,RAW", "FORMAT")),
    };
}();

inline constexpr std::array contentSteeringAttributes = {
    bis(required(quotedString("SERVER-URI", VELHLSAttributeDefinition::Uri))),
    bis(quotedString("PATHWAY-ID")),
};

inline constexpr std::array startAttributes = {
    required(attributeRow(attribute::timeOffset, VELHLSAttributeDefinition::SignedDecimalFloatingPoint)),
    oneOf("YES,NO", attribute::precise),
};

inline constexpr std::array defineAttributes = {
    bis(quotedString(attribute::name)),
    bis(quotedString(attribute::value)),
    bis(quotedString("IMPORT")),
    since(11, bis(quotedString("QUERYPARAM"))),
};

/// The names are written with underscores, unlike the standard's.
inline constexpr std::array zorStreamInfAttributes = {
    vendor(attributeRow(attribute::nominalVideoBitrate, VELHLSAttributeDefinition::DecimalInteger)),
    vendor(attributeRow(attribute::nominalAudioBitrate, VELHLSAttributeDefinition::DecimalInteger)),
};

inline constexpr std::array tagTable = [] {
    using Tag = VELHLSTagDefinition;
    return std::array{
        // Basic tags.
        once(tagRow(tag::extM3U, "4.3.1.1", Tag::Either, Tag::Nothing)),
        once(tagRow(tag::version, "4.3.1.2", Tag::Either, Tag::DecimalInteger)),

        // Media segment tags.
        once(tagRow(tag::extInf, "4.3.2.1", Tag::Media, Tag::Duration, Tag::Segment)),
        since(4, once(tagRow(tag::byteRange, "4.3.2.2", Tag::Media, Tag::ByteRange, Tag::Segment))),
        tagRow(tag::discontinuity, "4.3.2.3", Tag::Media, Tag::Nothing, Tag::FromSegment),
        listRow(tag::key, "4.3.2.4", Tag::Media, keyAttributes, Tag::FromSegment),
        // Without EXT-X-I-FRAMES-ONLY it needs version 6.
        since(5, listRow(tag::map, "4.3.2.5", Tag::Media, mapAttributes, Tag::FromSegment)),
        once(tagRow(tag::programDateTime, "4.3.2.6", Tag::Media, Tag::DateTime, Tag::Segment)),
        listRow("EXT-X-DATERANGE", "4.3.2.7", Tag::Media, dateRangeAttributes),
        bis(once(tagRow("EXT-X-GAP", "4.4.4.7", Tag::Media, Tag::Nothing, Tag::Segment))),
        bis(tagRow("EXT-X-BITRATE", "4.4.4.8", Tag::Media, Tag::DecimalInteger, Tag::FromSegment)),
        bis(listRow("EXT-X-PART", "4.4.4.9", Tag::Media, partAttributes, Tag::Segment)),

        // Media playlist tags.
        once(tagRow(tag::targetDuration, "4.3.3.1", Tag::Media, Tag::DecimalInteger)),
        once(tagRow(tag::mediaSequence, "4.3.3.2", Tag::Media, Tag::DecimalInteger)),
        once(tagRow(tag::discontinuitySequence, "4.3.3.3", Tag::Media, Tag::DecimalInteger)),
        once(tagRow(tag::endList, "4.3.3.4", Tag::Media, Tag::Nothing)),
        once(values("EVENT,VOD", tagRow(tag::playlistType, "4.3.3.5", Tag::Media, Tag::Word))),
        since(4, once(tagRow(tag::iFramesOnly, "4.3.3.6", Tag::Media, Tag::Nothing))),
        bis(once(listRow("EXT-X-PART-INF", "4.4.3.7", Tag::Media, partInfAttributes))),
        bis(once(listRow("EXT-X-SERVER-CONTROL", "4.4.3.8", Tag::Media, serverControlAttributes))),
        since(9, bis(once(listRow("EXT-X-SKIP", "4.4.5.2", Tag::Media, skipAttributes)))),
        bis(listRow("EXT-X-PRELOAD-HINT", "4.4.5.3", Tag::Media, preloadHintAttributes)),
        bis(listRow("EXT-X-RENDITION-REPORT", "4.4.5.4", Tag::Media, renditionReportAttributes)),

        // Master playlist tags.
        listRow(tag::media, "4.3.4.1", Tag::Master, mediaAttributes),
        listRow(tag::streamInf, "4.3.4.2", Tag::Master, streamInfAttributes, Tag::Variant),
        listRow(tag::iFrameStreamInf, "4.3.4.3", Tag::Master, iFrameStreamInfAttributes),
        listRow(tag::sessionData, "4.3.4.4", Tag::Master, sessionDataAttributes),
        listRow(tag::sessionKey, "4.3.4.5", Tag::Master, sessionKeyAttributes),
        bis(once(listRow("EXT-X-CONTENT-STEERING", "4.4.6.6", Tag::Master, contentSteeringAttributes))),

        // Tags of both kinds of playlist.
        once(tagRow(tag::independentSegments, "4.3.5.1", Tag::Either, Tag::Nothing)),
        once(listRow(tag::start, "4.3.5.2", Tag::Either, startAttributes)),
        since(8, bis(listRow(tag::define, "4.4.2.3", Tag::Either, defineAttributes))),
        // Of older versions of the format; section 7 names it.
        removedIn(7, values("YES,NO", once(tagRow("EXT-X-ALLOW-CACHE", "7", Tag::Either, Tag::Word)))),

        // What vendors write.
        vendor(tagRow(tag::cueIn, "", Tag::Media, Tag::Anything, Tag::Segment)),
        vendor(tagRow(tag::cueOut, "", Tag::Media, Tag::Anything, Tag::Segment)),
        vendor(tagRow(tag::cueOutCont, "", Tag::Media, Tag::Anything, Tag::Segment)),
        vendor(tagRow("EXT-X-CUE", "", Tag::Media, Tag::Anything, Tag::Segment)),
        vendor(tagRow("EXT-X-SCTE35", "", Tag::Media, Tag::Anything, Tag::Segment)),
        vendor(tagRow("EXT-OATCLS-SCTE35", "", Tag::Media, Tag::Anything, Tag::Segment)),
        vendor(tagRow("EXT-X-ASSET", "", Tag::Media, Tag::Anything, Tag::Segment)),
        vendor(listRow(tag::zorStreamInf, "", Tag::Master, zorStreamInfAttributes)),
        vendor(tagRow(tag::zorPatternStart, "", Tag::Media, Tag::Anything)),
        vendor(tagRow(tag::zorPatternEnd, "", Tag::Media, Tag::Anything)),
        vendor(tagRow(tag::zorPatternRepeat, "", Tag::Media, Tag::Anything)),
        vendor(tagRow(tag::zorDefineIncrement, "", Tag::Media, Tag::Anything)),
    };
}();

/// The tag's place in the table, found by the compiler: a name that is not there does not compile.
constexpr std::size_t tagIndex(std::string_view name) {
    std::size_t index = 0;
    while (tagTable.at(index).name != name)
        ++index;
    return index;
}

/// The same of a name of Names.h: a constant wherever it stands.
template <const std::string_view& name>
inline constexpr std::size_t tagIndexOf = tagIndex(name);

}  // namespace velhls
