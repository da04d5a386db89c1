// Internal to the library, not installed: the line of a tag with attributes, appended to a text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "velhls/common/Names.h"
#include "velhls/common/NumberWriting.h"

namespace velhls {

/// Appends a tag with its attributes, each after the colon or comma that it needs.
///
///     AttributeWriter(out, tag::map).appendQuoted(attribute::uri, uri).endLine();
class AttributeWriter {
  public:
    /// Appends "#" and the tag's name.
    AttributeWriter(std::string& out, std::string_view tag) : out_(out) {
        out_ += '#';
        out_ += tag;
    }

    /// Goes on with a line that has attributes, and does not end yet.
    explicit AttributeWriter(std::string& out) : out_(out), before_(',') {}

    /// A value without quotes.
    AttributeWriter& append(std::string_view name, std::string_view value) {
        appendName(name);
        out_ += value;
        return *this;
    }

    AttributeWriter& append(std::string_view name, std::uint64_t number) {
        appendName(name);
        appendDecimal(out_, number);
        return *this;
    }

    AttributeWriter& appendQuoted(std::string_view name, std::string_view value) {
        appendName(name);
        out_ += '"';
        out_ += value;
        out_ += '"';
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

    void endLine() { out_ += '\n'; }

  private:
    void appendName(std::string_view name) {
        out_ += before_;
        before_ = ',';
        out_ += name;
        out_ += '=';
    }

    std::string& out_;
    /// What stands before the next attribute.
    char before_ = ':';
};

}  // namespace velhls
