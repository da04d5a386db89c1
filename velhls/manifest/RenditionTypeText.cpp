#include "velhls/manifest/RenditionTypeText.h"

#include <array>
#include <cstddef>
#include <cstdint>

#include "velhls/common/Names.h"

namespace velhls {
namespace {

/// Each text at the position of its type's number.
constexpr std::array<std::string_view, 4> texts = {attribute::audio, attribute::video, attribute::subtitles,
                                                   attribute::closedCaptions};

}  // namespace

std::optional<std::string_view> textOf(VELHLSMediaStreamRendition::RenditionType type) {
    const auto number = static_cast<std::size_t>(type);
    if (number >= texts.size()) return std::nullopt;
    return texts[number];
}

std::optional<VELHLSMediaStreamRendition::RenditionType> renditionTypeNamed(std::string_view text) {
    for (std::uint32_t number = 0; number < texts.size(); ++number) {
        if (texts[number] == text) return static_cast<VELHLSMediaStreamRendition::RenditionType>(number);
    }
    return std::nullopt;
}

}  // namespace velhls
