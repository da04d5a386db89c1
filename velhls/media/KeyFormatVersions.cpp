#include "velhls/media/KeyFormatVersions.h"

#include "velhls/common/Numbers.h"

namespace velhls {

std::vector<std::int32_t> splitKeyFormatVersions(std::string_view text, Reason& why) {
    std::vector<std::int32_t> versions;
    std::size_t start = 0;
    while (true) {
        const std::size_t slash = text.find('/', start);
        versions.push_back(toInt32(text.substr(start, slash - start), why));
        if (slash == std::string_view::npos) return versions;
        start = slash + 1;
    }
}

std::string joinKeyFormatVersions(const std::vector<std::int32_t>& versions) {
    std::string text;
    for (const std::int32_t version : versions) {
        if (!text.empty()) text += '/';
        appendDecimal(text, std::int64_t{version});
    }
    return text;
}

}  // namespace velhls
