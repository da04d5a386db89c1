#include "velhls/document/SecondsText.h"

#include <array>
#include <cstddef>

#include "velhls/common/NumberWriting.h"

namespace velhls {

std::string secondsText(double seconds) {
    constexpr int decimals = 6;
    std::array<char, mostFixedBytes> buffer;
    const char* const end = writeFixed(buffer.data(), seconds, decimals);
    std::string text(buffer.data(), static_cast<std::size_t>(end - buffer.data()));
    if (text.find('.') == std::string::npos) return text;
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
    return text;
}

}  // namespace velhls
