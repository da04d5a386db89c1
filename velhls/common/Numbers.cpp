#include "velhls/common/Numbers.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <locale.h>
#include <new>
#include <stdexcept>
#include <stdlib.h>
#include <system_error>

#include "velhls/common/TextScan.h"

namespace velhls {
namespace {

/// The start of a text that may be a megabyte long, for an exception's message.
std::string quotedStart(std::string_view text) {
    constexpr std::size_t longest = 40;
    std::string quoted = "\"";
    quoted += text.substr(0, longest);
    quoted += text.size() > longest ? "...\"" : "\"";
    return quoted;
}

[[noreturn]] void throwNoNumber(std::string_view text) {
    throw std::invalid_argument("no number at the start of " + quotedStart(text));
}

[[noreturn]] void throwOutOfRange(std::string_view text) {
    throw std::out_of_range("number out of range: " + quotedStart(text));
}

/// What std::isspace accepts in the "C" locale.
constexpr std::string_view whiteSpace = " \t\n\v\f\r";

/// The text from its number on, in the form that std::from_chars reads: it knows no "+".
std::string_view withoutSpaceAndPlus(std::string_view text) {
    const std::size_t start = text.find_first_not_of(whiteSpace);
    if (start == std::string_view::npos) return {};
    text.remove_prefix(start);
    const bool plusBeforeDigit = text.size() > 1 && text[0] == '+' && isDigit(text[1]);
    if (plusBeforeDigit) text.remove_prefix(1);
    return text;
}

template <typename Integer>
Integer toInteger(std::string_view text) {
    const std::string_view digits = withoutSpaceAndPlus(text);
    Integer number = 0;
    const std::from_chars_result result =
        std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (result.ec == std::errc::invalid_argument) throwNoNumber(text);
    if (result.ec == std::errc::result_out_of_range) throwOutOfRange(text);
    return number;
}

/// strtod under the "C" locale, whatever locale the process or the thread is in.
class ClassicLocale {
  public:
    ClassicLocale() : locale_(::newlocale(LC_ALL_MASK, "C", nullptr)) {
        if (locale_ == nullptr) throw std::bad_alloc();
    }
    ~ClassicLocale() { ::freelocale(locale_); }
    ClassicLocale(const ClassicLocale&) = delete;
    ClassicLocale& operator=(const ClassicLocale&) = delete;

    double toDouble(const char* text, char** end) const { return ::strtod_l(text, end, locale_); }

  private:
    locale_t locale_;
};

template <typename Number, typename... Format>
void appendPrinted(std::string& out, Number number, Format... format) {
    // The largest double has 309 digits before its decimal point.
    std::array<char, 512> text;
    const std::to_chars_result result =
        std::to_chars(text.data(), text.data() + text.size(), number, format...);
    out.append(text.data(), result.ptr);
}

}  // namespace

std::int32_t toInt32(std::string_view text) {
    return toInteger<std::int32_t>(text);
}

std::int64_t toInt64(std::string_view text) {
    return toInteger<std::int64_t>(text);
}

std::uint64_t toInt64AsUnsigned(std::string_view text) {
    return static_cast<std::uint64_t>(toInt64(text));
}

double toDouble(std::string_view text) {
    const std::string terminated(text);
    const ClassicLocale classic;
    char* end = nullptr;
    const int savedErrno = errno;
    errno = 0;
    const double number = classic.toDouble(terminated.c_str(), &end);
    const bool outOfRange = errno == ERANGE;
    errno = savedErrno;
    if (end == terminated.c_str()) throwNoNumber(text);
    if (outOfRange) throwOutOfRange(text);
    return number;
}

void appendDecimal(std::string& out, std::int64_t number) {
    appendPrinted(out, number);
}

void appendDecimal(std::string& out, std::uint64_t number) {
    appendPrinted(out, number);
}

void appendFixed(std::string& out, double number, int decimals) {
    appendPrinted(out, number, std::chars_format::fixed, decimals);
}

}  // namespace velhls
