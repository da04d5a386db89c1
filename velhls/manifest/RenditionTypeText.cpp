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

std::optional<VELHLSMediaStreamRendition::RenditionType> renditionTypeNamed(std::string_view text) {
    for (std::uint32_t number = 0; number < texts.size(); ++number) {
        if (texts[number] == text) return static_cast<VELHLSMediaStreamRendition::RenditionType>(number);
    }
    return std::nullopt;
}

}  // namespace velhls

std::string_view VELHLSMediaStreamRendition::textOf(RenditionType type) noexcept {
    const auto number = static_cast<std::size_t>(type);
    return number < velhls::texts.size() ? velhls::texts[number] : std::string_view();
}
