#pragma once

#include <string>

#include <nlohmann/json.hpp>

namespace tool {

/// The value as text, indented, with a line feed after it. Bytes that are not UTF-8 become U+FFFD, since JSON
/// can hold no others.
[[nodiscard]] inline std::string jsonText(const nlohmann::ordered_json& value) {
    constexpr int indent = 2;
    return value.dump(indent, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

/// The same in one line.
[[nodiscard]] inline std::string jsonLine(const nlohmann::ordered_json& value) {
    constexpr int inOneLine = -1;
    return value.dump(inOneLine, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

}  // namespace tool
