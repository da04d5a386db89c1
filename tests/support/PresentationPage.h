#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

/// What the page of a rule of presentations shows.
namespace rule_page {

/// The texts of the blocks of a kind with their names, "```m3u8 failing low.m3u8", the master playlist first.
inline std::vector<std::pair<std::string, std::string>> textsOf(const std::string& page,
                                                                const std::string& kind) {
    std::vector<std::pair<std::string, std::string>> texts;
    for (const char* const language : {"m3u8", "json"}) {
        const std::string opening = "```" + std::string(language) + " " + kind + " ";
        for (std::size_t start = page.find(opening); start != std::string::npos;
             start = page.find(opening, start + 1)) {
            const std::size_t lineEnd = page.find('\n', start);
            const std::size_t end = page.find("```", lineEnd);
            texts.emplace_back(page.substr(start + opening.size(), lineEnd - start - opening.size()),
                               page.substr(lineEnd + 1, end - lineEnd - 1));
        }
    }
    return texts;
}

}  // namespace rule_page
