#include <iterator>

#include "velhls/common/Names.h"
#include "velhls/document/VELHLSSyntax.h"
#include "velhls/standard/CheckedPlaylist.h"

namespace velhls {
namespace {

/// "2010-02-19T14:54:23.031Z": milliseconds and a zone, which is all that these rules ask for.
bool isUsual(std::string_view value) {
    constexpr std::string_view usual = "2010-02-19T14:54:23.031Z";
    return value.size() == usual.size() && value.back() == 'Z' && value[usual.find('.')] == '.';
}

/// Goes through the dates that can be read, but for those that lack nothing.
template <typename Visit>
void forEachDate(const CheckedPlaylist& playlist, Visit visit) {
    for (const std::uint32_t number : playlist.lines(tagIndexOf<tag::programDateTime>)) {
        const VELHLSLine line = playlist.document().line(number);
        const std::string_view value = trimmed(line.value);
        if (isUsual(value)) continue;
        const auto date = VELHLSSyntax::readDateTime(value);
        if (date && date->hasTime) visit(line, value, *date);
    }
}

void findZoneMissing(const CheckedPlaylist& playlist, const Tell& tell) {
    forEachDate(playlist,
                [&tell](const VELHLSLine& line, std::string_view value, const VELHLSSyntax::DateTime& date) {
                    if (!date.hasZone) tell(line, value);
                });
}

void findMillisecondsMissing(const CheckedPlaylist& playlist, const Tell& tell) {
    constexpr std::size_t ofMilliseconds = 3;
    forEachDate(playlist,
                [&tell](const VELHLSLine& line, std::string_view value, const VELHLSSyntax::DateTime& date) {
                    if (date.fractionDigits < ofMilliseconds) tell(line, value);
                });
}

// clang-format off
constexpr PlaylistEntry rules[] = {
    {{{"date-time-without-zone", warning, "EXT-X-PROGRAM-DATE-TIME has no time zone.",
       "Z or an offset after the time", "RFC 8216, section 4.3.2.6", false}, "SHOULD"}, findZoneMissing},
    {{{"date-time-without-milliseconds", warning, "EXT-X-PROGRAM-DATE-TIME has no milliseconds.",
       "seconds with three decimals", "RFC 8216, section 4.3.2.6", false}, "SHOULD"}, findMillisecondsMissing},
};
// clang-format on

}  // namespace

StandardTable<CheckedPlaylist> dateRules() {
    return {rules, std::size(rules)};
}

}  // namespace velhls
