#include "velhls/common/LineReader.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <streambuf>

namespace velhls {
namespace {

/// Lets the get area of a stream buffer be seen and moved forward. These members are protected, and a member
/// pointer that is formed in a derived class may be applied to any stream buffer.
class GetArea : private std::streambuf {
  public:
    static const char* begin(const std::streambuf& buffer) { return (buffer.*&GetArea::gptr)(); }
    static const char* end(const std::streambuf& buffer) { return (buffer.*&GetArea::egptr)(); }
    static void moveTo(std::streambuf& buffer, const char* position) {
        char* const areaBegin = (buffer.*&GetArea::eback)();
        (buffer.*&GetArea::setg)(areaBegin, areaBegin + (position - areaBegin), (buffer.*&GetArea::egptr)());
    }
};

const char* find(const char* begin, const char* end, char wanted) {
    return static_cast<const char*>(std::memchr(begin, wanted, static_cast<std::size_t>(end - begin)));
}

}  // namespace

std::string_view LineReader::nextRaw() {
    if (const std::optional<std::string_view> line = lineInGetArea()) return *line;
    clearEnd_ = nullptr;
    getAreaEnd_ = nullptr;
    // std::getline leaves the string alone when the stream is not good on entry.
    line_.clear();
    getLine();
    return line_;
}

/// std::getline, but for memory that runs out for a long line: std::getline takes that for a stream that has become
/// bad, and the playlist would be cut off there without a word.
void LineReader::getLine() {
    const std::ios_base::iostate thrown = input_.exceptions();
    if (!input_.good() || (thrown & std::ios_base::badbit) != 0) {
        std::getline(input_, line_, lineFeed_);
        return;
    }
    input_.exceptions(thrown | std::ios_base::badbit);
    try {
        std::getline(input_, line_, lineFeed_);
    } catch (const std::bad_alloc&) {
        input_.exceptions(thrown);
        throw;
    } catch (...) {
        // Throws again what the stream was told to throw. Anything else made it bad, and is left at that.
        input_.exceptions(thrown);
        if (line_.empty()) input_.setstate(std::ios_base::failbit);
        return;
    }
    input_.exceptions(thrown);
}

std::optional<std::string_view> LineReader::lineInGetArea() {
    // A tied stream is flushed before each line is read: that is left to std::getline.
    if (!input_.good() || input_.tie() != nullptr) return std::nullopt;
    std::streambuf& buffer = *input_.rdbuf();
    const char* const begin = GetArea::begin(buffer);
    const char* const areaEnd = GetArea::end(buffer);
    if (begin == areaEnd) return std::nullopt;
    const char* const lineEnd = find(begin, areaEnd, lineFeed_);
    if (lineEnd == nullptr) return std::nullopt;
    GetArea::moveTo(buffer, lineEnd + 1);
    getAreaEnd_ = areaEnd;
    return std::string_view(begin, static_cast<std::size_t>(lineEnd - begin));
}

std::string_view LineReader::next() {
    const std::string_view line = nextRaw();
    if (!holdsCarriageReturn(line)) return line;
    if (line.data() != line_.data()) line_ = line;
    line_.erase(std::remove(line_.begin(), line_.end(), '\r'), line_.end());
    return line_;
}

bool LineReader::holdsCarriageReturn(std::string_view line) {
    constexpr std::ptrdiff_t lookAhead = 1024;
    const char* const lineEnd = line.data() + line.size();
    if (getAreaEnd_ == nullptr) return line.find('\r') != std::string_view::npos;
    if (clearEnd_ != nullptr && lineEnd <= clearEnd_) return false;
    const char* const start = clearEnd_ == nullptr ? line.data() : std::max(line.data(), clearEnd_);
    const char* const end = lineEnd + std::min(lookAhead, getAreaEnd_ - lineEnd);
    const char* const carriageReturn = find(start, end, '\r');
    clearEnd_ = carriageReturn == nullptr ? end : carriageReturn;
    return carriageReturn != nullptr && carriageReturn < lineEnd;
}

}  // namespace velhls
