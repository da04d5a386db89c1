#include "velhls/writer/DateText.h"

#include "velhls/common/CivilTime.h"
#include "velhls/common/NumberWriting.h"
#include "velhls/common/TextBuffer.h"

namespace velhls {
namespace {

/// "2026-11-21T"
void writeDay(char* to, const CivilTime& date) {
    const auto year = static_cast<std::uint32_t>(date.year);
    to = writeTwoDigits(writeTwoDigits(to, year / 100), year % 100);
    to = writeTwoDigits(writeText(to, '-'), static_cast<std::uint32_t>(date.month));
    to = writeTwoDigits(writeText(to, '-'), static_cast<std::uint32_t>(date.day));
    static_cast<void>(writeText(to, 'T'));
}

}  // namespace

char* DateWriter::write(char* to, const Milliseconds& time) {
    if (time.second() < dayStart_ || time.second() - dayStart_ >= secondsOfDay) {
        dayStart_ = startOfDay(time.second());
        writeDay(day_.data(), dateOf(time.second()));
    }
    const auto second = static_cast<std::uint32_t>(time.second() - dayStart_);
    const auto millisecond = static_cast<std::uint32_t>(time.millisecond());
    to = writeText(to, std::string_view(day_.data(), day_.size()));
    to = writeTwoDigits(to, second / 3600);
    to = writeTwoDigits(writeText(to, ':'), second / 60 % 60);
    to = writeTwoDigits(writeText(to, ':'), second % 60);
    to = velhls::writeText(writeText(to, '.'), static_cast<char>('0' + millisecond / 100));
    to = writeTwoDigits(to, millisecond % 100);
    return writeText(to, 'Z');
}

}  // namespace velhls
