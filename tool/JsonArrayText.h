#pragma once

#include <cstddef>
#include <string>

#include <nlohmann/json.hpp>

namespace tool {

/// Writes what jsonText would write of an object with an array, without ever holding the array.
///
///     {                              start: up to the bracket
///       "version": 2,
///       "files": [
///         {...},                     element, element
///         {...}
///       ]                            end
///     }
class JsonArrayText {
  public:
    /// The object has an empty array of this name, and no other, at some depth.
    JsonArrayText(const nlohmann::ordered_json& object, const std::string& name);

    /// Pieces of the text, to be written in this order. The object at the end may differ in what stands after the array.
    [[nodiscard]] std::string start() const { return start_; }
    [[nodiscard]] std::string element(const nlohmann::ordered_json& value);
    [[nodiscard]] std::string end(const nlohmann::ordered_json& object) const;

  private:
    [[nodiscard]] std::size_t placeIn(const std::string& text) const;

    std::string array_;
    std::string start_;
    std::size_t indent_ = 0;
    bool isEmpty_ = true;
};

}  // namespace tool
