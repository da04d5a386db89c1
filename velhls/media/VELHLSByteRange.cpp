#include "velhls/media/VELHLSByteRange.h"

#include <array>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string_view>

#include "velhls/common/NumberReading.h"
#include "velhls/common/NumberWriting.h"
#include "velhls/common/TextBuffer.h"
#include "velhls/common/TextScan.h"
#include "velhls/media/RangeText.h"

namespace {

/// The number of bytes from the first to the last, both inclusive and none negative; the largest number that
/// is one where the true one is larger by one.
std::int64_t lengthFromTo(std::int64_t first, std::int64_t last) {
    const std::int64_t distance = last - first;
    return distance == std::numeric_limits<std::int64_t>::max() ? distance : distance + 1;
}

/// The one or two numbers of a range's text.
struct Bounds {
    std::int64_t first = 0;
    std::optional<std::int64_t> second;
};

/// Reads a text that is nothing but plain numbers, as most are, in one walk. Nothing for all others.
std::optional<Bounds> plainBounds(std::string_view text, char separator) {
    const velhls::LeadingNumber<std::int64_t> first = velhls::leadingInteger(text);
    if (first.length == 0) return std::nullopt;
    if (first.isAllOf(text)) return Bounds{first.number, std::nullopt};
    const std::string_view rest = velhls::withoutFirst(text, first.length + 1);
    const velhls::LeadingNumber<std::int64_t> second = velhls::leadingInteger(rest);
    const bool isAll = text[first.length] == separator && second.isAllOf(rest);
    if (!isAll) return std::nullopt;
    return Bounds{first.number, second.number};
}

void setRange(VELHLSByteRange& range, const Bounds& bounds, bool inclusiveRange) {
    if (inclusiveRange && bounds.second) {
        range.length = lengthFromTo(bounds.first, *bounds.second);
        range.offset = bounds.first;
    } else {
        range.length = bounds.first;
        range.offset = bounds.second.value_or(-1);
    }
}

[[noreturn]] void throwTooShort(std::string_view uri) {
    throw std::out_of_range(
        "segment URI \"" + std::string(uri) +
        "\" has fewer than 6 characters and no EXT-X-BYTERANGE: write a longer one (\"./0.ts\" "
        "for \"0.ts\"), or give the byte range");
}

}  // namespace

namespace velhls {

bool readRange(std::string_view text, char separator, bool inclusiveRange, VELHLSByteRange& range,
               Reason& why) {
    if (const std::optional<Bounds> plain = plainBounds(text, separator)) {
        setRange(range, *plain, inclusiveRange);
        return true;
    }
    const std::size_t separatorPosition = text.find(separator);
    const bool hasSeparator = separatorPosition != std::string_view::npos;
    const std::string_view before = text.substr(0, separatorPosition);
    const std::string_view after = hasSeparator ? text.substr(separatorPosition + 1) : std::string_view();
    if (before.empty() || !holdsOnly(before, digits)) return false;
    if (hasSeparator && (after.empty() || !holdsOnly(after, digits))) return false;

    Bounds bounds{toInt64(before, why), std::nullopt};
    if (hasSeparator) bounds.second = toInt64(after, why);
    setRange(range, bounds, inclusiveRange);
    return true;
}

char* writeRange(char* to, const VELHLSByteRange& range) {
    char* end = writeDecimal(to, range.length);
    if (range.offset < 0) return end;
    end = writeText(end, '@');
    return writeDecimal(end, range.offset);
}

bool readRangeInUri(std::string_view uri, VELHLSByteRange& range, Reason& why) {
    if (uri.empty() || !mayHoldRange(uri)) return false;
    if (uri.size() < shortestUriWithoutRange) {
        why(Rule::segmentUriTooShort, uri);
        throwTooShort(uri);
    }
    const std::size_t start = startOfRangeInUri(uri);
    if (!readRange(uri.substr(start), '-', true, range, why)) return false;
    if (range.length < 0) why(Rule::byteRangeNegative, uri.substr(start));
    return true;
}

}  // namespace velhls

std::int32_t VELHLSByteRange::parse(const std::string& text, char separator, bool inclusiveRange) {
    velhls::Reason ignored;
    return velhls::readRange(text, separator, inclusiveRange, *this, ignored) ? 0 : -1;
}

std::int32_t VELHLSByteRange::render(std::string& out) const {
    if (length < 0) return -1;
    std::array<char, velhls::mostRangeBytes> text;
    out.append(text.data(), velhls::writeRange(text.data(), *this));
    return 0;
}

std::shared_ptr<VELHLSByteRange> getByteRangeFromUri(std::string uri) {
    VELHLSByteRange range;
    velhls::Reason ignored;
    if (!velhls::readRangeInUri(uri, range, ignored)) return nullptr;
    return std::make_shared<VELHLSByteRange>(range);
}
