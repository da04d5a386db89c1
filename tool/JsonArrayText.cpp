#include "tool/JsonArrayText.h"

#include "tool/JsonText.h"

namespace tool {
namespace {

/// Every line of the text after the first one, moved to the right. Strings in JSON have no line feeds.
std::string indented(const std::string& text, std::size_t indent) {
    std::string moved;
    for (const char character : text) {
        moved += character;
        if (character == '\n') moved.append(indent, ' ');
    }
    return moved;
}

}  // namespace

JsonArrayText::JsonArrayText(const nlohmann::ordered_json& object, const std::string& name)
    : array_("\"" + name + "\": []") {
    const std::string text = jsonText(object);
    const std::size_t place = placeIn(text);
    start_ = text.substr(0, place);
    indent_ = text.find(array_) - text.rfind('\n', place) - 1;
}

/// Where the closing bracket stands. Strings have their quotes escaped, and so do not look like this.
std::size_t JsonArrayText::placeIn(const std::string& text) const {
    return text.find(array_) + array_.size() - 1;
}

std::string JsonArrayText::element(const nlohmann::ordered_json& value) {
    std::string text = jsonText(value);
    text.pop_back();
    const std::string separator = isEmpty_ ? "\n" : ",\n";
    isEmpty_ = false;
    return separator + std::string(indent_ + 2, ' ') + indented(text, indent_ + 2);
}

std::string JsonArrayText::end(const nlohmann::ordered_json& object) const {
    const std::string text = jsonText(object);
    return (isEmpty_ ? "" : "\n" + std::string(indent_, ' ')) + text.substr(placeIn(text));
}

}  // namespace tool
