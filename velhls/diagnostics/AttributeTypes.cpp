#include "velhls/diagnostics/AttributeTypes.h"

#include <algorithm>
#include <array>

#include "velhls/common/Names.h"
#include "velhls/common/TextScan.h"

namespace velhls {
namespace {

struct Row {
    std::string_view name;
    AttributeType type;
};

constexpr std::array<Row, 32> rows = {{
    {attribute::assocLanguage, AttributeType::quotedString},
    {attribute::audio, AttributeType::quotedString},
    {attribute::autoSelect, AttributeType::enumerated},
    {attribute::averageBandwidth, AttributeType::number},
    {attribute::bandwidth, AttributeType::number},
    {attribute::byteRange, AttributeType::quotedString},
    {"CHANNELS", AttributeType::quotedString},
    {attribute::characteristics, AttributeType::quotedString},
    {attribute::closedCaptions, AttributeType::quotedOrNone},
    {attribute::codecs, AttributeType::quotedString},
    {attribute::dataId, AttributeType::quotedString},
    {attribute::defaultFlag, AttributeType::enumerated},
    {attribute::forced, AttributeType::enumerated},
    {"FRAME-RATE", AttributeType::number},
    {attribute::groupId, AttributeType::quotedString},
    {"HDCP-LEVEL", AttributeType::enumerated},
    {attribute::instreamId, AttributeType::quotedString},
    {attribute::iv, AttributeType::hexadecimal},
    {attribute::keyFormat, AttributeType::quotedString},
    {attribute::keyFormatVersions, AttributeType::quotedString},
    {attribute::language, AttributeType::quotedString},
    {attribute::method, AttributeType::enumerated},
    {attribute::name, AttributeType::quotedString},
    {attribute::precise, AttributeType::enumerated},
    {attribute::programId, AttributeType::number},
    {attribute::resolution, AttributeType::resolution},
    {attribute::subtitles, AttributeType::quotedString},
    {attribute::timeOffset, AttributeType::number},
    {attribute::type, AttributeType::enumerated},
    {attribute::uri, AttributeType::quotedString},
    {attribute::value, AttributeType::quotedString},
    {attribute::video, AttributeType::quotedString},
}};

bool isResolution(std::string_view value) {
    const std::size_t cross = value.find('x');
    if (cross == 0 || cross == std::string_view::npos || cross + 1 == value.size()) return false;
    return holdsOnly(value.substr(0, cross), digits) && holdsOnly(value.substr(cross + 1), digits);
}

}  // namespace

std::optional<AttributeType> typeOfAttribute(std::string_view name) {
    const auto row =
        std::find_if(rows.begin(), rows.end(), [name](const Row& row) { return row.name == name; });
    if (row == rows.end()) return std::nullopt;
    return row->type;
}

std::string_view describe(AttributeType type) {
    switch (type) {
        case AttributeType::number:
            return "a number without quotes";
        case AttributeType::hexadecimal:
            return "a hexadecimal number without quotes";
        case AttributeType::quotedString:
            return "a text in quotes";
        case AttributeType::enumerated:
            return "a word without quotes";
        case AttributeType::resolution:
            return "width and height with x between them, without quotes";
        case AttributeType::quotedOrNone:
            return "a text in quotes, or NONE without";
    }
    return "";
}

bool hasType(std::string_view value, bool isQuoted, AttributeType type) {
    switch (type) {
        case AttributeType::quotedString:
            return isQuoted;
        case AttributeType::resolution:
            return !isQuoted && isResolution(value);
        case AttributeType::quotedOrNone:
            return isQuoted || value == fixed::none;
        case AttributeType::enumerated:
            return !isQuoted && value.find_first_of(" \t") == std::string_view::npos;
        case AttributeType::number:
        case AttributeType::hexadecimal:
            break;
    }
    return !isQuoted;
}

}  // namespace velhls
