// Internal to the library, not installed: the line of a tag with attributes, appended to a text.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "velhls/common/Names.h"
#include "velhls/common/NumberWriting.h"
#include "velhls/common/TextBuffer.h"

namespace velhls {

/// Appends a tag with its attributes, each after the colon or comma that it needs.
///
///     AttributeWriter(out, tag::map).appendQuoted(attribute::uri, uri).endLine();
///
/// A line is made of many short pieces: they are put together here, and the text gets them all at once, at the end.
class AttributeWriter {
  public:
    /// Begins with "#" and the tag's name.
    AttributeWriter(std::string& out, std::string_view tag) : out_(out) {
        put('#');
        put(tag);
    }

    /// Goes on with a line that has attributes, and does not end yet.
    explicit AttributeWriter(std::string& out) : out_(out), before_(',') {}

    AttributeWriter(const AttributeWriter&) = delete;
    AttributeWriter& operator=(const AttributeWriter&) = delete;

    /// A value without quotes.
    AttributeWriter& append(std::string_view name, std::string_view value) {
        putName(name);
        put(value);
        return *this;
    }

    AttributeWriter& append(std::string_view name, std::uint64_t number) {
        putName(name);
        makeRoom(mostDecimalBytes);
        end_ = writeDecimal(end_, number);
        return *this;
    }

    AttributeWriter& appendQuoted(std::string_view name, std::string_view value) {
        putName(name);
        put('"');
        put(value);
        put('"');
        return *this;
    }

    AttributeWriter& appendUnlessEmpty(std::string_view name, std::string_view value) {
        return value.empty() ? *this : append(name, value);
    }

    AttributeWriter& appendUnlessZero(std::string_view name, std::uint64_t number) {
        return number == 0 ? *this : append(name, number);
    }

    AttributeWriter& appendQuotedUnlessEmpty(std::string_view name, std::string_view value) {
        return value.empty() ? *this : appendQuoted(name, value);
    }

    /// YES where the flag is set, and nothing where it is not.
    AttributeWriter& appendIfSet(std::string_view name, bool flag) {
        return flag ? append(name, fixed::yes) : *this;
    }

    /// One of these is called last.
    void endLine() {
        put('\n');
        endText();
    }
    void endText() {
        out_.append(pieces_.data(), static_cast<std::size_t>(end_ - pieces_.data()));
        end_ = pieces_.data();
    }

  private:
    void putName(std::string_view name) {
        put(before_);
        before_ = ',';
        put(name);
        put('=');
    }

    void put(char character) {
        makeRoom(1);
        end_ = writeText(end_, character);
    }

    void put(std::string_view piece) {
        if (piece.size() > pieces_.size()) {
            endText();
            out_ += piece;
        } else {
            makeRoom(piece.size());
            end_ = writeText(end_, piece);
        }
    }

    void makeRoom(std::size_t bytes) {
        if (static_cast<std::size_t>(pieces_.data() + pieces_.size() - end_) < bytes) endText();
    }

    std::string& out_;
    /// What stands before the next attribute.
    char before_ = ':';
    /// Not filled first: that would cost as much as the writing.
    std::array<char, 512> pieces_;
    char* end_ = pieces_.data();
};

}  // namespace velhls
