#include "tool/report/Markup.h"

#include "tool/Printable.h"

namespace tool::report {
namespace {

std::string_view entityOf(char character) {
    switch (character) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '"':
            return "&quot;";
        case '\'':
            return "&#39;";
        default:
            return {};
    }
}

void appendEscaped(std::string& out, std::string_view text) {
    for (const char character : printable(text)) {
        const std::string_view entity = entityOf(character);
        if (entity.empty()) {
            out += character;
        } else {
            out += entity;
        }
    }
}

}  // namespace

void Markup::begin(std::string_view element, Attributes attributes) {
    text_.append("<").append(element);
    for (const Attribute& attribute : attributes) {
        text_.append(" ").append(attribute.name).append("=\"");
        appendEscaped(text_, attribute.value);
        text_ += '"';
    }
}

Markup& Markup::open(std::string_view element, Attributes attributes) {
    begin(element, attributes);
    text_ += '>';
    open_.push_back(element);
    return *this;
}

Markup& Markup::close() {
    text_.append("</").append(open_.back()).append(">");
    open_.pop_back();
    return *this;
}

Markup& Markup::empty(std::string_view element, Attributes attributes) {
    begin(element, attributes);
    text_ += "/>";
    return *this;
}

Markup& Markup::text(std::string_view text) {
    appendEscaped(text_, text);
    return *this;
}

Markup& Markup::leaf(std::string_view element, std::string_view text, Attributes attributes) {
    return open(element, attributes).text(text).close();
}

Markup& Markup::verbatim(std::string_view markup) {
    text_ += markup;
    return *this;
}

}  // namespace tool::report
