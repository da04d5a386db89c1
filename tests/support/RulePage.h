#pragma once

#include <set>
#include <sstream>
#include <string>

/// What the page of a rule shows.
namespace rule_page {

/// The text with its escapes, "\r" and "\xNN", as the bytes that they stand for.
inline std::string unescaped(const std::string& text) {
    std::string bytes;
    for (std::size_t position = 0; position < text.size(); ++position) {
        if (text.compare(position, 2, "\\r") == 0) {
            bytes += '\r';
            position += 1;
        } else if (text.compare(position, 2, "\\x") == 0) {
            bytes += static_cast<char>(std::stoi(text.substr(position + 2, 2), nullptr, 16));
            position += 3;
        } else {
            bytes += text[position];
        }
    }
    return bytes;
}

/// The playlist in a page's block of the given kind.
inline std::string blockOf(const std::string& page, const std::string& kind) {
    const std::string opening = "```m3u8 " + kind;
    const std::size_t start = page.find(opening);
    if (start == std::string::npos) return "no block";
    const std::size_t lineEnd = page.find('\n', start);
    const std::string flags = page.substr(start + opening.size(), lineEnd - start - opening.size());
    std::string text = page.substr(lineEnd + 1, page.find("```", lineEnd) - lineEnd - 1);
    if (flags.find("escaped") != std::string::npos) text = unescaped(text);
    if (flags.find("without-final-line-feed") != std::string::npos) text.pop_back();
    return text;
}

/// The rules that a page says come with its own.
inline std::set<std::string> companionsOf(const std::string& page) {
    std::set<std::string> companions;
    std::istringstream lines(page);
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("- Comes with: ", 0) != 0) continue;
        for (std::size_t open = line.find('['); open != std::string::npos; open = line.find('[', open + 1))
            companions.insert(line.substr(open + 1, line.find(']', open) - open - 1));
    }
    return companions;
}

}  // namespace rule_page
