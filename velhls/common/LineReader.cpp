#include "velhls/common/LineReader.h"

#include <algorithm>
#include <new>
#include <streambuf>

#include "velhls/common/Reading.h"

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

LineReader::LineReader(std::istream& input)
    : input_(&input), lineFeed_(input.widen('\n')), good_(input.good()) {
    borrowGetArea();
}

LineReader::LineReader(std::string_view text, Reading* reading) : reading_(reading) {
    // A view of nothing may be null, which is not to be searched.
    if (text.empty()) return;
    position_ = text.data();
    textEnd_ = text.data() + text.size();
    areaEnd_ = reading == nullptr ? textEnd_ : position_;
}

void LineReader::borrowGetArea() {
    // A tied stream is flushed before each line is read: that is left to std::getline.
    if (!good_ || input_->tie() != nullptr) return;
    const std::streambuf& buffer = *input_->rdbuf();
    if (GetArea::begin(buffer) == GetArea::end(buffer)) return;
    position_ = GetArea::begin(buffer);
    areaEnd_ = GetArea::end(buffer);
    borrowed_ = true;
}

void LineReader::returnGetArea() {
    if (!borrowed_) return;
    GetArea::moveTo(*input_->rdbuf(), position_);
    borrowed_ = false;
    position_ = "";
    areaEnd_ = position_;
    clearEnd_ = nullptr;
}

std::string_view LineReader::nextOfInput() {
    return input_ == nullptr ? nextOfText() : nextThroughStream();
}

/// The last line of a text, which has no line feed; or any one, when the lines are told to somebody.
std::string_view LineReader::nextOfText() {
    if (reading_ != nullptr && reading_->hasEnded()) good_ = false;
    // What comes after the last line is empty, and stands at its end.
    if (!good_) textEnd_ = position_;
    const char* const lineEnd = find(position_, textEnd_, lineFeed_);
    good_ = lineEnd != nullptr;
    const char* const end = good_ ? lineEnd : textEnd_;
    const std::string_view line(position_, static_cast<std::size_t>(end - position_));
    position_ = good_ ? end + 1 : textEnd_;
    areaEnd_ = position_;
    // What the last line feed ends is followed by no line.
    const bool isLine = good_ || !line.empty();
    if (reading_ != nullptr && isLine) reading_->lineRead(line);
    return line;
}

std::string_view LineReader::nextThroughStream() {
    if (keeper_ != nullptr) keeper_->viewsEnd();
    returnGetArea();
    // std::getline leaves the string alone when the stream is not good on entry.
    line_.clear();
    getLine();
    good_ = input_->good();
    borrowGetArea();
    return line_;
}

/// std::getline, but for memory that runs out for a long line: std::getline takes that for a stream that has become
/// bad, and the playlist would be cut off there without a word.
void LineReader::getLine() {
    const std::ios_base::iostate thrown = input_->exceptions();
    if (!input_->good() || (thrown & std::ios_base::badbit) != 0) {
        std::getline(*input_, line_, lineFeed_);
        return;
    }
    input_->exceptions(thrown | std::ios_base::badbit);
    try {
        std::getline(*input_, line_, lineFeed_);
    } catch (const std::bad_alloc&) {
        input_->exceptions(thrown);
        throw;
    } catch (...) {
        // Throws again what the stream was told to throw. Anything else made it bad, and is left at that.
        input_->exceptions(thrown);
        if (line_.empty()) input_->setstate(std::ios_base::failbit);
        return;
    }
    input_->exceptions(thrown);
}

std::string_view LineReader::withoutCarriageReturns(std::string_view line) {
    const char* const carriageReturn = firstCarriageReturn(line);
    if (carriageReturn == nullptr) return line;
    const auto position = static_cast<std::size_t>(carriageReturn - line.data());
    // The one at the end of each line, in playlists that have them, costs no copy.
    if (position + 1 == line.size()) return line.substr(0, position);
    if (reading_ != nullptr) return reading_->withoutCarriageReturns(line);
    if (line.data() != line_.data()) {
        if (keeper_ != nullptr) keeper_->viewsEnd();
        line_ = line;
    }
    line_.erase(std::remove(line_.begin(), line_.end(), '\r'), line_.end());
    return line_;
}

const char* LineReader::firstCarriageReturn(std::string_view line) {
    constexpr std::ptrdiff_t lookAhead = 1024;
    const char* const lineEnd = line.data() + line.size();
    const bool inGetArea = line.data() != line_.data();
    if (!inGetArea) return find(line.data(), lineEnd, '\r');
    const char* const start = clearEnd_ == nullptr ? line.data() : std::max(line.data(), clearEnd_);
    const char* const end = lineEnd + std::min(lookAhead, areaEnd_ - lineEnd);
    const char* const carriageReturn = find(start, end, '\r');
    clearEnd_ = carriageReturn == nullptr ? end : carriageReturn;
    return carriageReturn != nullptr && carriageReturn < lineEnd ? carriageReturn : nullptr;
}

}  // namespace velhls
