#include "tool/CharacterPlace.h"

#include "tool/Utf8.h"

namespace tool {

CharacterPlace CharacterPlaces::of(std::size_t line, std::size_t column, std::size_t length) {
    const std::string_view text = lineNumbered(line);
    const std::size_t before = column - 1;
    if (before < countedBytes_) goToLineAt(start_);
    countedCharacters_ += utf8::countCharacters(text.substr(countedBytes_, before - countedBytes_));
    countedBytes_ = before;
    return {countedCharacters_ + 1, utf8::countCharacters(text.substr(before, length))};
}

std::string_view CharacterPlaces::lineNumbered(std::size_t number) {
    if (number < number_) goToStart();
    for (; number_ < number; ++number_)
        goToLineAt(start_ + line_.size() + 1);
    return line_;
}

void CharacterPlaces::goToStart() {
    number_ = 1;
    goToLineAt(0);
}

void CharacterPlaces::goToLineAt(std::size_t start) {
    start_ = start;
    const std::string_view rest = text_.substr(start);
    line_ = rest.substr(0, rest.find('\n'));
    countedBytes_ = 0;
    countedCharacters_ = 0;
}

}  // namespace tool
