// Internal to the library, not installed: what a document remembers of each line, in one byte.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "velhls/document/FormatTables.h"
#include "velhls/document/VELHLSLine.h"

namespace velhls {

/// The kind of a line that has no tag that is known, or the place of its tag in tagTable.
class LineCode {
  public:
    constexpr explicit LineCode(std::uint8_t number) : number_(number) {}

    [[nodiscard]] static constexpr LineCode of(VELHLSLine::Kind kind) {
        return LineCode(static_cast<std::uint8_t>(kind));
    }
    [[nodiscard]] static constexpr LineCode ofTag(std::size_t index) {
        return LineCode(static_cast<std::uint8_t>(firstTag + index));
    }
    [[nodiscard]] static constexpr LineCode ofTag(std::string_view name) { return ofTag(tagIndex(name)); }

    [[nodiscard]] constexpr std::uint8_t number() const { return number_; }

    /// Null when there is no tag that is known.
    [[nodiscard]] constexpr const VELHLSTagDefinition* definition() const {
        return number_ < firstTag ? nullptr : &tagTable[number_ - firstTag];
    }

    [[nodiscard]] constexpr VELHLSLine::Kind kind() const {
        if (number_ < firstTag) return static_cast<VELHLSLine::Kind>(number_);
        return definition()->name.front() == 'E' ? VELHLSLine::Tag : VELHLSLine::Comment;
    }

    [[nodiscard]] constexpr bool operator==(LineCode other) const { return number_ == other.number_; }

  private:
    static constexpr std::uint8_t firstTag = 4;
    static_assert(tagTable.size() + firstTag < 256, "a line's code is one byte");

    std::uint8_t number_;
};

namespace line_code {

inline constexpr LineCode uri = LineCode::of(VELHLSLine::Uri);
inline constexpr LineCode extInf = LineCode::ofTag(tag::extInf);
inline constexpr LineCode byteRange = LineCode::ofTag(tag::byteRange);
inline constexpr LineCode programDateTime = LineCode::ofTag(tag::programDateTime);
inline constexpr LineCode key = LineCode::ofTag(tag::key);
inline constexpr LineCode map = LineCode::ofTag(tag::map);
inline constexpr LineCode discontinuity = LineCode::ofTag(tag::discontinuity);
inline constexpr LineCode mediaSequence = LineCode::ofTag(tag::mediaSequence);
inline constexpr LineCode discontinuitySequence = LineCode::ofTag(tag::discontinuitySequence);
inline constexpr LineCode skip = LineCode::ofTag("EXT-X-SKIP");
inline constexpr LineCode streamInf = LineCode::ofTag(tag::streamInf);
inline constexpr LineCode iFrameStreamInf = LineCode::ofTag(tag::iFrameStreamInf);

}  // namespace line_code

/// The parts of a line's text that its kind and its code follow from.
struct LineParts {
    VELHLSLine::Kind kind = VELHLSLine::Blank;
    /// Of a tag or a comment: see VELHLSLine.
    std::string_view name;
    /// From its first character on, white space and a byte order mark left out.
    std::string_view content;
};

/// Takes a line's text apart. A byte order mark is looked for in the first line of a text.
[[nodiscard]] LineParts partsOf(std::string_view text, bool isFirst);

[[nodiscard]] LineCode codeOf(const LineParts& parts);

}  // namespace velhls
