#include <iterator>
#include <optional>

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

/// The date of an EXT-X-PROGRAM-DATE-TIME that can be read, and may lack something.
std::optional<VELHLSSyntax::DateTime> unusualDate(const CheckedLine& checked) {
    if (!checked.is(tagIndexOf<tag::programDateTime>) || isUsual(checked.value)) return std::nullopt;
    const auto date = VELHLSSyntax::readDateTime(checked.value);
    return date && date->hasTime ? date : std::nullopt;
}

void findZoneMissing(const CheckedLine& checked, const Tell& tell) {
    const auto date = unusualDate(checked);
    if (date && !date->hasZone) tell(checked.line, checked.value);
}

void findMillisecondsMissing(const CheckedLine& checked, const Tell& tell) {
    constexpr std::size_t ofMilliseconds = 3;
    const auto date = unusualDate(checked);
    if (date && date->fractionDigits < ofMilliseconds) tell(checked.line, checked.value);
}

// clang-format off
constexpr LineEntry rules[] = {
    {{{"date-time-without-zone", warning, "EXT-X-PROGRAM-DATE-TIME has no time zone.",
       "Z or an offset after the time", "RFC 8216, section 4.3.2.6", false}, "SHOULD"}, findZoneMissing},
    {{{"date-time-without-milliseconds", warning, "EXT-X-PROGRAM-DATE-TIME has no milliseconds.",
       "seconds with three decimals", "RFC 8216, section 4.3.2.6", false}, "SHOULD"}, findMillisecondsMissing},
};
// clang-format on

}  // namespace

StandardTable<CheckedLine> dateRules() {
    return {rules, std::size(rules)};
}

}  // namespace velhls
