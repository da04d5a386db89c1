#include "velhls/document/TextLines.h"

#include <algorithm>

#include "velhls/common/TextScan.h"

namespace velhls {

TextLines::TextLines(std::string_view text) : text_(text) {
    do {
        starts_.push_back(text_.size() - text.size());
        static_cast<void>(nextLine(text));
    } while (!text.empty());
}

std::string_view TextLines::line(std::size_t number) const {
    const std::size_t index = std::min(number, count()) - 1;
    std::string_view rest = text_.substr(starts_[index]);
    return index + 1 < count() ? firstOf(rest, starts_[index + 1] - starts_[index] - 1) : nextLine(rest);
}

}  // namespace velhls
