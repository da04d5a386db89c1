#include "velhls/writer/DateText.h"

#include "velhls/common/CivilTime.h"
#include "velhls/common/Numbers.h"
#include "velhls/common/TextBuffer.h"

namespace velhls {
namespace {

/// "2026-11-21T"
void putDay(char* to, const CivilTime& date) {
    const auto year = static_cast<std::uint32_t>(date.year);
    to = putTwoDigits(putTwoDigits(to, year / 100), year % 100);
    to = putTwoDigits(put(to, '-'), static_cast<std::uint32_t>(date.month));
    to = putTwoDigits(put(to, '-'), static_cast<std::uint32_t>(date.day));
    static_cast<void>(put(to, 'T'));
}

}  // namespace

char* DateWriter::put(char* to, const Milliseconds& time) {
    if (time.second() < dayStart_ || time.second() - dayStart_ >= secondsOfDay) {
        dayStart_ = startOfDay(time.second());
        putDay(day_.data(), dateOf(time.second()));
    }
    const auto second = static_cast<std::uint32_t>(time.second() - dayStart_);
    const auto millisecond = static_cast<std::uint32_t>(time.millisecond());
    to = velhls::put(to, std::string_view(day_.data(), day_.size()));
    to = putTwoDigits(to, second / 3600);
    to = putTwoDigits(velhls::put(to, ':'), second / 60 % 60);
    to = putTwoDigits(velhls::put(to, ':'), second % 60);
    to = velhls::put(velhls::put(to, '.'), static_cast<char>('0' + millisecond / 100));
    to = putTwoDigits(to, millisecond % 100);
    return velhls::put(to, 'Z');
}

}  // namespace velhls
