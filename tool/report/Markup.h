#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace tool::report {

/// A text of HTML or SVG that is well-formed as XML too. Every text and every value of an attribute is escaped as it is added, so
/// whatever a playlist holds stays text.
class Markup {
  public:
    struct Attribute {
        std::string_view name;
        std::string value;
    };
    using Attributes = std::initializer_list<Attribute>;

    /// Begins an element, whose name must be a literal.
    Markup& open(std::string_view element, Attributes attributes = {});
    /// Ends the element that was begun last.
    Markup& close();
    /// An element with nothing in it, which must be one of SVG or a void one of HTML.
    Markup& empty(std::string_view element, Attributes attributes = {});
    /// Text, shown as `printable` shows it: with control characters and what is not UTF-8 as "\xNN".
    Markup& text(std::string_view text);
    /// An element that holds text alone.
    Markup& leaf(std::string_view element, std::string_view text, Attributes attributes = {});
    /// What is markup already, or a style sheet: never what a playlist holds.
    Markup& verbatim(std::string_view markup);

    [[nodiscard]] const std::string& string() const { return text_; }

  private:
    void begin(std::string_view element, Attributes attributes);

    std::string text_;
    std::vector<std::string_view> open_;
};

}  // namespace tool::report
