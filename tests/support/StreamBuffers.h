#pragma once

#include <cstddef>
#include <streambuf>
#include <string>
#include <utility>

/// Stream buffers that hand their text out in other ways than those of the standard library.
namespace stream_buffer {

/// Hands its text out in pieces of a size, one after the other in the same memory.
class PieceByPiece : public std::streambuf {
  public:
    PieceByPiece(std::string text, std::size_t size) : text_(std::move(text)), piece_(size, ' ') {}

  protected:
    int_type underflow() override {
        const std::size_t length = text_.copy(piece_.data(), piece_.size(), position_);
        if (length == 0) return traits_type::eof();
        position_ += length;
        setg(piece_.data(), piece_.data(), piece_.data() + length);
        return traits_type::to_int_type(piece_.front());
    }

  private:
    std::string text_;
    std::string piece_;
    std::size_t position_ = 0;
};

/// Shows no get area at all.
class Hidden : public std::streambuf {
  public:
    explicit Hidden(std::string text) : text_(std::move(text)) {}

  protected:
    int_type underflow() override {
        return position_ == text_.size() ? traits_type::eof() : traits_type::to_int_type(text_[position_]);
    }
    int_type uflow() override {
        const int_type character = underflow();
        if (character != traits_type::eof()) ++position_;
        return character;
    }

  private:
    std::string text_;
    std::size_t position_ = 0;
};

}  // namespace stream_buffer
