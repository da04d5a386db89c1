#include "velhls/diagnostics/TextLines.h"

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
    const std::string_view rest = text_.substr(starts_[std::min(number, count()) - 1]);
    return rest.substr(0, rest.find('\n'));
}

}  // namespace velhls
