#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "velhls/VELHLSCheck.h"

/// What a document says of lines and attributes, found out without any care for speed.
namespace plain {

struct Line {
    std::string text;
    std::string ending;
    VELHLSLine::Kind kind = VELHLSLine::Blank;
    std::string name;
};

inline bool isBlankCharacter(char character) {
    return character == ' ' || character == '\t' || character == '\r' || character == '\n';
}

inline bool holdsOnly(const std::string& text, const std::string& allowed) {
    return text.find_first_not_of(allowed) == std::string::npos;
}

inline void findKindAndName(Line& line, bool isFirst) {
    std::string content = line.text;
    const std::string byteOrderMark = "\xEF\xBB\xBF";
    if (isFirst && content.compare(0, 3, byteOrderMark) == 0) content.erase(0, 3);
    content.erase(0, std::min(content.find_first_not_of(" \t\r\n"), content.size()));
    if (content.empty()) return;
    line.kind = VELHLSLine::Uri;
    if (content[0] != '#') return;
    line.kind = content.compare(0, 4, "#EXT") == 0 ? VELHLSLine::Tag : VELHLSLine::Comment;
    line.name = content.substr(1, content.find_first_of(": \t\r\n") - 1);
    if (line.kind == VELHLSLine::Comment && !holdsOnly(line.name, "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_")) {
        line.name.clear();
    }
}

inline std::vector<Line> linesOf(const std::string& text) {
    std::vector<Line> lines;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t feed = text.find('\n', start);
        Line line;
        line.text = text.substr(start, feed == std::string::npos ? feed : feed - start);
        if (feed != std::string::npos) line.ending = "\n";
        if (!line.ending.empty() && !line.text.empty() && line.text.back() == '\r') {
            line.text.pop_back();
            line.ending = "\r\n";
        }
        findKindAndName(line, lines.empty());
        lines.push_back(line);
        start = feed == std::string::npos ? text.size() : feed + 1;
    }
    return lines;
}

/// The grammar of RFC 8216, section 4.2, one rule after the other; an empty text is no list.
inline bool isAttributeList(std::string text) {
    for (;;) {
        const std::size_t equals = text.find('=');
        if (equals == std::string::npos || equals == 0) return false;
        if (!holdsOnly(text.substr(0, equals), "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-")) return false;
        text.erase(0, equals + 1);
        std::size_t end = 0;
        if (text.compare(0, 1, "\"") == 0) {
            end = text.find('"', 1);
            if (end == std::string::npos) return false;
            ++end;
        } else {
            end = std::min(text.find(','), text.size());
            if (end == 0 || text.substr(0, end).find_first_of("\" \t\r\n") != std::string::npos) return false;
        }
        text.erase(0, end);
        if (text.empty()) return true;
        if (text[0] != ',') return false;
        text.erase(0, 1);
    }
}

}  // namespace plain
