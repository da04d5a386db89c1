#include "velhls/document/TextLines.h"

#include <algorithm>

namespace velhls {

TextLines::TextLines(std::string_view text) : text_(text) {
    std::size_t start = 0;
    do {
        starts_.push_back(start);
        const std::size_t feed = text.find('\n', start);
        if (feed == std::string_view::npos) break;
        start = feed + 1;
    } while (start < text.size());
}

std::string_view TextLines::line(std::size_t number) const {
    const std::size_t index = std::min(number, count()) - 1;
    const std::string_view rest = text_.substr(starts_[index]);
    if (index + 1 < count()) return rest.substr(0, starts_[index + 1] - starts_[index] - 1);
    return !rest.empty() && rest.back() == '\n' ? rest.substr(0, rest.size() - 1) : rest;
}

}  // namespace velhls
