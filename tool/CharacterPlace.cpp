#include "tool/CharacterPlace.h"

#include "tool/Utf8.h"

namespace tool {

CharacterPlace CharacterPlaces::of(const VELHLSFinding& finding) {
    const std::string_view line = lineNumbered(finding.line);
    return {utf8::countCharacters(line.substr(0, finding.column - 1)) + 1,
            utf8::countCharacters(line.substr(finding.column - 1, finding.length))};
}

std::string_view CharacterPlaces::lineNumbered(std::size_t number) {
    if (number < line_) {
        line_ = 1;
        start_ = 0;
    }
    for (; line_ < number; ++line_)
        start_ = text_.find('\n', start_) + 1;
    const std::string_view rest = text_.substr(start_);
    return rest.substr(0, rest.find('\n'));
}

}  // namespace tool
