// How the examples that edit a document show what they did, beside the same job done by the models.
#pragma once

#include <iostream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace example {

inline std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream input(text);
    for (std::string line; std::getline(input, line);)
        lines.push_back(line);
    return lines;
}

/// Prints the lines of one text that the other does not have, or has less often.
inline void printMissing(const char* mark, const std::string& text, const std::string& other) {
    const std::vector<std::string> lines = linesOf(other);
    std::multiset<std::string> there(lines.begin(), lines.end());
    for (const std::string& line : linesOf(text)) {
        const auto same = there.find(line);
        if (same == there.end()) {
            std::cout << mark << line << "\n";
        } else {
            there.erase(same);
        }
    }
}

/// Prints what two ways of doing one job take out of the text and put into it.
inline void printBeside(const std::string& text, const std::string& byDocument, const std::string& byModels) {
    std::cout << "By the document:\n";
    printMissing("- ", text, byDocument);
    printMissing("+ ", byDocument, text);
    std::cout << "\nBy the models:\n";
    printMissing("- ", text, byModels);
    printMissing("+ ", byModels, text);
}

}  // namespace example
