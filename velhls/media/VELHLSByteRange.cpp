#include "velhls/media/VELHLSByteRange.h"

#include <limits>
#include <stdexcept>
#include <string_view>

#include "velhls/common/Numbers.h"
#include "velhls/common/TextScan.h"

namespace {

/// The number of bytes from the first to the last, both inclusive and none negative; the largest number that
/// is one where the true one is larger by one.
std::int64_t lengthFromTo(std::int64_t first, std::int64_t last) {
    const std::int64_t distance = last - first;
    return distance == std::numeric_limits<std::int64_t>::max() ? distance : distance + 1;
}

/// Where the range in a URI would start. "Not found" plus the length of the marker wraps around to 6, one
/// less than that length. Kept as it is: which URIs are read as ranges is part of the interface.
std::size_t rangeStart(std::string_view uri) {
    constexpr std::string_view marker = "/range/";
    return uri.rfind(marker) + marker.size();
}

[[noreturn]] void throwTooShort(const std::string& uri) {
    throw std::out_of_range(
        "segment URI \"" + uri +
        "\" has fewer than 6 characters and no EXT-X-BYTERANGE: write a longer one (\"./0.ts\" "
        "for \"0.ts\"), or give the byte range");
}

}  // namespace

std::int32_t VELHLSByteRange::parse(const std::string& text, char separator, bool inclusiveRange) {
    const std::string_view range = text;
    const std::size_t separatorPosition = range.find(separator);
    const bool hasSeparator = separatorPosition != std::string_view::npos;
    const std::string_view before = range.substr(0, separatorPosition);
    const std::string_view after = hasSeparator ? range.substr(separatorPosition + 1) : std::string_view();
    if (before.empty() || !velhls::holdsOnly(before, velhls::digits)) return -1;
    if (hasSeparator && (after.empty() || !velhls::holdsOnly(after, velhls::digits))) return -1;

    if (!hasSeparator) {
        length = velhls::toInt64(before);
        offset = -1;
        return 0;
    }
    const std::int64_t first = velhls::toInt64(before);
    const std::int64_t second = velhls::toInt64(after);
    length = inclusiveRange ? lengthFromTo(first, second) : first;
    offset = inclusiveRange ? first : second;
    return 0;
}

std::int32_t VELHLSByteRange::render(std::string& out) const {
    if (length < 0) return -1;
    velhls::appendDecimal(out, length);
    if (offset >= 0) {
        out += '@';
        velhls::appendDecimal(out, offset);
    }
    return 0;
}

std::shared_ptr<VELHLSByteRange> getByteRangeFromUri(std::string uri) {
    if (uri.empty()) return nullptr;
    const std::size_t start = rangeStart(uri);
    if (start > uri.size()) throwTooShort(uri);
    auto range = std::make_shared<VELHLSByteRange>();
    return range->parse(uri.substr(start), '-', true) == 0 ? range : nullptr;
}
