// Internal to the library, not installed: the walk over the lines of a text that finds out what each of them is.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "velhls/common/TextScan.h"
#include "velhls/document/LineCode.h"

namespace velhls {

/// Most tags come where they came before: after the same tag. To see that a line is what was expected costs less than to
/// find out what it is.
class CodeGuess {
  public:
    LineCode codeOf(std::string_view line) {
        if (!isFirst_ && isPlainUri(line)) return before_ = line_code::uri;
        const LineCode guess(next_[before_.number()]);
        const LineCode code = begins(line, guess) ? guess : velhls::codeOf(partsOf(line, isFirst_));
        next_[before_.number()] = code.number();
        isFirst_ = false;
        return before_ = code;
    }

  private:
    /// True of URI lines that nothing stands before.
    static bool isPlainUri(std::string_view line) {
        return !line.empty() && line.front() != '#' && !blanks.holds(line.front());
    }

    /// True when the line begins with the tag.
    static bool begins(std::string_view line, LineCode code) {
        const VELHLSTagDefinition* const tag = code.definition();
        if (tag == nullptr || line.size() <= tag->name.size() || line.front() != '#') return false;
        if (firstOf(withoutFirst(line, 1), tag->name.size()) != tag->name) return false;
        return line.size() == tag->name.size() + 1 || line[tag->name.size() + 1] == ':';
    }

    std::array<std::uint8_t, 256> next_ = {};
    LineCode before_ = LineCode::of(VELHLSLine::Blank);
    bool isFirst_ = true;
};

/// Calls each(number of the line, its offset, its code) for every line of the text.
template <class Each>
void forEachLineCode(std::string_view text, const Each& each) {
    CodeGuess guess;
    std::size_t number = 0;
    const char* const textEnd = text.data() + text.size();
    for (const char* start = text.data(); start != textEnd;) {
        const auto* feed =
            static_cast<const char*>(std::memchr(start, '\n', static_cast<std::size_t>(textEnd - start)));
        const char* const end = feed == nullptr ? textEnd : feed;
        const bool hasReturn = feed != nullptr && end != start && end[-1] == '\r';
        const std::string_view line(start, static_cast<std::size_t>(end - start) - (hasReturn ? 1 : 0));
        each(++number, static_cast<std::size_t>(start - text.data()), guess.codeOf(line));
        start = feed == nullptr ? textEnd : feed + 1;
    }
}

}  // namespace velhls
