#include "velhls/document/TagSpelling.h"

#include "velhls/common/TextScan.h"

namespace velhls {
namespace {

constexpr CharacterSet separators("-_ \t");

constexpr char upperCase(char letter) {
    return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
}

/// Walks over both at once, and past the separators of each.
bool areSpelledAlike(std::string_view left, std::string_view right) {
    while (true) {
        while (!left.empty() && separators.holds(left.front()))
            left.remove_prefix(1);
        while (!right.empty() && separators.holds(right.front()))
            right.remove_prefix(1);
        if (left.empty() || right.empty()) return left.empty() && right.empty();
        if (upperCase(left.front()) != upperCase(right.front())) return false;
        left.remove_prefix(1);
        right.remove_prefix(1);
    }
}

}  // namespace

const VELHLSTagDefinition* tagSpelledLike(std::string_view name) {
    for (const VELHLSTagDefinition& tag : VELHLSTagDefinition::all()) {
        if (tag.name != name && areSpelledAlike(name, tag.name)) return &tag;
    }
    return nullptr;
}

std::string didYouMean(std::string_view name) {
    const VELHLSTagDefinition* const meant = tagSpelledLike(name);
    return meant == nullptr ? std::string() : ", did you mean " + std::string(meant->name) + "?";
}

}  // namespace velhls
