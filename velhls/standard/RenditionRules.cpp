#include <algorithm>
#include <iterator>
#include <string>

#include "velhls/common/Names.h"
#include "velhls/common/TextScan.h"
#include "velhls/document/VELHLSSyntax.h"
#include "velhls/standard/CheckedPlaylist.h"

namespace velhls {
namespace {

std::string_view valueIn(const CheckedLine& checked, std::string_view name) {
    const VELHLSAttribute* const attribute = checked.find(name);
    return attribute == nullptr ? std::string_view() : attribute->value;
}

bool isOfType(const CheckedLine& checked, std::string_view type) {
    return valueIn(checked, attribute::type) == type;
}

bool isCaptions(const CheckedLine& checked) {
    return isOfType(checked, attribute::closedCaptions);
}

void findUriOfCaptions(const CheckedLine& checked, const Tell& tell) {
    const VELHLSAttribute* const uri = checked.find(attribute::uri);
    if (isCaptions(checked) && uri != nullptr) tell(checked.line, uri->text);
}

void findSubtitlesWithoutUri(const CheckedLine& checked, const Tell& tell) {
    if (isOfType(checked, attribute::subtitles) && checked.find(attribute::uri) == nullptr)
        tell(checked.line, checked.line.name, {{}, "none", {}});
}

void findDefaultNotSelected(const CheckedLine& checked, const Tell& tell) {
    const VELHLSAttribute* const select = checked.find(attribute::autoSelect);
    if (select != nullptr && select->value == fixed::no &&
        valueIn(checked, attribute::defaultFlag) == fixed::yes)
        tell(checked.line, select->value);
}

void findForcedElsewhere(const CheckedLine& checked, const Tell& tell) {
    const VELHLSAttribute* const forced = checked.find(attribute::forced);
    if (forced != nullptr && checked.find(attribute::type) != nullptr &&
        !isOfType(checked, attribute::subtitles))
        tell(checked.line, forced->text);
}

void findChannelMissing(const CheckedLine& checked, const Tell& tell) {
    if (isCaptions(checked) && checked.find(attribute::instreamId) == nullptr)
        tell(checked.line, checked.line.name, {{}, "none", {}});
}

bool isChannel(std::string_view text) {
    constexpr std::string_view service = "SERVICE";
    if (startsWith(text, service)) {
        constexpr std::uint64_t mostServices = 63;
        const std::string_view digits = text.substr(service.size());
        const std::uint64_t number = VELHLSSyntax::readDecimalInteger(digits).value_or(0);
        return number > 0 && number <= mostServices && digits.front() != '0';
    }
    return text.size() == 3 && startsWith(text, "CC") && text[2] >= '1' && text[2] <= '4';
}

void findChannelUnknown(const CheckedLine& checked, const Tell& tell) {
    const VELHLSAttribute* const channel = checked.find(attribute::instreamId);
    if (channel != nullptr && isCaptions(checked) && !isChannel(channel->value))
        tell(checked.line, channel->value);
}

/// The successor allows it, in version 13.
void findChannelElsewhere(const CheckedLine& checked, const Tell& tell) {
    const VELHLSAttribute* const channel = checked.find(attribute::instreamId);
    const bool isForbidden = checked.playlist.profile() == StandardProfile::rfc8216;
    if (isForbidden && channel != nullptr && checked.find(attribute::type) != nullptr && !isCaptions(checked))
        tell(checked.line, channel->text);
}

constexpr CharacterSet ofTypeIdentifiers("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789.-");

void findOddCharacteristic(const CheckedLine& checked, const Tell& tell) {
    const VELHLSAttribute* const characteristics = checked.find(attribute::characteristics);
    if (characteristics == nullptr || !characteristics->quoted) return;
    forEachPart(characteristics->value, ',', [&](std::string_view part) {
        if (part.empty() || !holdsOnly(part, ofTypeIdentifiers)) tell(checked.line, part);
    });
}

void findChannelsWithoutCount(const CheckedLine& checked, const Tell& tell) {
    const VELHLSAttribute* const channels = checked.find("CHANNELS");
    if (channels == nullptr || !channels->quoted) return;
    const std::string_view count = channels->value.substr(0, channels->value.find('/'));
    if (VELHLSSyntax::readDecimalInteger(count).value_or(0) == 0) tell(checked.line, channels->value);
}

void findChannelsMissing(const CheckedLine& checked, const Tell& tell) {
    if (isOfType(checked, attribute::audio) && checked.find("CHANNELS") == nullptr)
        tell(checked.line, checked.line.name, {{}, "none", {}});
}

// clang-format off
constexpr LineEntry rules[] = {
    {{{"rendition-uri-of-captions", error, "A rendition of closed captions has a URI.",
       "no URI with TYPE=CLOSED-CAPTIONS", "RFC 8216, section 4.3.4.1", false}, "MUST NOT"}, findUriOfCaptions},
    {{{"rendition-subtitles-uri-missing", error, "A rendition of subtitles has no URI.",
       "URI with TYPE=SUBTITLES", "RFC 8216, section 4.3.4.2.1", false}, "REQUIRED"}, findSubtitlesWithoutUri},
    {{{"rendition-default-not-selected", error, "A rendition is the default one, and must not be selected by itself.",
       "AUTOSELECT=YES with DEFAULT=YES", "RFC 8216, section 4.3.4.1", false}, "MUST"}, findDefaultNotSelected},
    {{{"rendition-forced-elsewhere", error, "FORCED stands with another type than SUBTITLES.",
       "FORCED with TYPE=SUBTITLES only", "RFC 8216, section 4.3.4.1", false}, "MUST NOT"}, findForcedElsewhere},
    {{{"rendition-channel-missing", error, "A rendition of closed captions has no INSTREAM-ID.",
       "INSTREAM-ID with TYPE=CLOSED-CAPTIONS", "RFC 8216, section 4.3.4.1", false}, "REQUIRED"}, findChannelMissing},
    {{{"rendition-instream-id-unknown", error, "INSTREAM-ID is none that RFC 8216 defines.",
       "CC1 to CC4, or SERVICE1 to SERVICE63", "RFC 8216, section 4.3.4.1", false}, "MUST"}, findChannelUnknown},
    {{{"rendition-instream-id-elsewhere", error, "INSTREAM-ID stands with another type than CLOSED-CAPTIONS.",
       "INSTREAM-ID with TYPE=CLOSED-CAPTIONS only", "RFC 8216, section 4.3.4.1", false}, "MUST NOT"}, findChannelElsewhere},
    {{{"rendition-characteristics-malformed", error, "CHARACTERISTICS holds what is no uniform type identifier.",
       "identifiers with commas between them", "RFC 8216, section 4.3.4.1", false}, "SYN"}, findOddCharacteristic},
    {{{"rendition-channels-malformed", error, "CHANNELS does not begin with a count.",
       "a count of channels", "RFC 8216, section 4.3.4.1", false}, "SYN"}, findChannelsWithoutCount},
    {{{"rendition-channels-missing", warning, "A rendition of audio has no CHANNELS.",
       "CHANNELS with TYPE=AUDIO", "RFC 8216, section 4.3.4.1", false}, "SHOULD"}, findChannelsMissing},
};
// clang-format on

}  // namespace

StandardTable<CheckedLine> renditionRules() {
    return {rules, std::size(rules)};
}

}  // namespace velhls
