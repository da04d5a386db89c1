#include "velhls/media/PatternExpander.h"

#include <algorithm>
#include <cstdint>
#include <istream>
#include <streambuf>
#include <utility>

#include "velhls/common/LineReader.h"
#include "velhls/common/Names.h"
#include "velhls/common/Numbers.h"
#include "velhls/common/Substitution.h"
#include "velhls/common/TextScan.h"

namespace velhls {
namespace {

/// A stream over a text that is not copied.
class TextStream : private std::streambuf, public std::istream {
  public:
    explicit TextStream(const std::string& text) : std::istream(static_cast<std::streambuf*>(this)) {
        // A get area is declared as text that may be changed; nothing in it ever is.
        char* const begin = const_cast<char*>(text.data());
        setg(begin, begin, begin + text.size());
    }
};

}  // namespace

bool PatternExpander::expand() {
    if (pattern_.body.empty()) return true;
    if (!fits()) return false;
    for (std::uint64_t pass = 0; pass <= pattern_.repeatCount; ++pass) {
        if (!expandOnce()) return false;
    }
    return true;
}

/// Known before anything is made: each pass reads the whole body, and makes at least a byte of each of its
/// lines.
bool PatternExpander::fits() const {
    return pattern_.repeatCount < allowance_.left() / pattern_.body.size();
}

bool PatternExpander::expandOnce() {
    std::string_view rest = pattern_.body;
    while (!rest.empty()) {
        const std::size_t end = rest.find('\n');
        const std::string_view line = rest.substr(0, end);
        if (!allowance_.spend(line.size() + 1)) return false;
        if (!expandLine(line)) return false;
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    }
    return true;
}

bool PatternExpander::expandLine(std::string_view line) {
    if (!isTagOrComment(line)) return expandUri(line);
    if (isVendorTag(line)) return expandVendorTag(line);
    append(line);
    return true;
}

bool PatternExpander::expandUri(std::string_view line) {
    const std::string_view uri = withoutTrailing(line, blanks);
    if (defines_ == nullptr) {
        append(uri);
        return !uri.empty();
    }
    const Substitution substitution = substitute(uri, *defines_);
    if (!allowance_.spend(substitution.insertedBytes)) return false;
    append(substitution.text);
    return !substitution.text.empty();
}

bool PatternExpander::expandVendorTag(std::string_view line) {
    const TagLine tagLine(line);
    if (tagLine.hasColon) return tagLine.name == tag::zorDefineIncrement && increment(tagLine);
    append(line);
    return true;
}

bool PatternExpander::increment(const TagLine& tagLine) {
    const std::size_t comma = tagLine.value.find(',');
    if (comma == std::string_view::npos || defines_ == nullptr) return false;
    const auto define = defines_->find(std::string(tagLine.value.substr(0, comma)));
    if (define == defines_->end()) return false;
    // Two 32-bit numbers: their sum fits 64 bits.
    const std::int64_t current = toInt32(define->second);
    const std::int64_t amount = toInt32(tagLine.value.substr(comma + 1));
    define->second.clear();
    appendDecimal(define->second, current + amount);
    return true;
}

void PatternExpander::append(std::string_view line) {
    text_ += line;
    text_ += '\n';
}

std::shared_ptr<std::vector<std::shared_ptr<VELHLSMediaSegment>>> createSegments(
    const VELHLSMediaPattern& pattern, const SegmentOrigin& origin,
    const std::shared_ptr<VELHLSDefineMap>& defines, SegmentMaker& maker, ExpansionAllowance& allowance) {
    PatternExpander expander(pattern, defines.get(), allowance);
    if (!expander.expand()) return nullptr;

    auto segments = std::make_shared<std::vector<std::shared_ptr<VELHLSMediaSegment>>>();
    TextStream input(expander.text());
    LineReader lines(input);
    SegmentReader reader(lines, &maker, defines, nullptr);
    SegmentOrigin next = origin;
    for (std::string_view line = lines.nextRaw(); lines.good(); line = lines.nextRaw()) {
        auto segment = reader.read(line, next);
        if (segment == nullptr || !allowance.spendSegment()) return nullptr;
        next.previous = segment.get();
        segments->push_back(std::move(segment));
    }
    return segments;
}

}  // namespace velhls
