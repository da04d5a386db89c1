#include "velhls/common/WholeText.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <new>
#include <streambuf>
#include <string_view>

namespace velhls {
namespace {

/// Sets the bad bit, also of a stream that throws for it.
void becomeBad(std::istream& input) {
    try {
        input.setstate(std::ios_base::badbit);
    } catch (const std::ios_base::failure&) {
        // What the stream buffer threw says more.
    }
}

using Room = std::array<char, 4096>;

/// What the stream buffer has at hand; nothing at the end. Only looking for the first character asks it for more, so
/// that nothing is lost when that throws.
std::string_view readPiece(std::streambuf& buffer, Room& room) {
    using Traits = std::streambuf::traits_type;
    if (Traits::eq_int_type(buffer.sgetc(), Traits::eof())) return {};
    const auto size = static_cast<std::streamsize>(room.size());
    const std::streamsize atHand = std::clamp(buffer.in_avail(), std::streamsize{1}, size);
    return {room.data(), static_cast<std::size_t>(buffer.sgetn(room.data(), atHand))};
}

std::string_view readPiece(std::istream& input, Room& room) {
    try {
        return readPiece(*input.rdbuf(), room);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
        // As std::istream's own functions do when a stream buffer throws.
        becomeBad(input);
        if ((input.exceptions() & std::ios_base::badbit) != 0) throw;
        return {};
    }
}

}  // namespace

std::string readAll(std::istream& input) {
    std::string text;
    if (input.rdbuf() == nullptr) return text;
    Room room;
    for (auto piece = readPiece(input, room); !piece.empty(); piece = readPiece(input, room))
        text += piece;
    return text;
}

}  // namespace velhls
