#include "velhls/presentation/JsonSyntax.h"

#include <vector>

#include "velhls/common/TextScan.h"
#include "velhls/common/Utf8.h"

namespace velhls {
namespace {

/// Walks over a text of JSON. Each function takes one thing and returns false where it is not there.
class JsonScan {
  public:
    explicit JsonScan(std::string_view text) : text_(text) { static_cast<void>(take("\xEF\xBB\xBF")); }

    [[nodiscard]] bool takeAll() {
        takeBlanks();
        do {
            if (!takeValueOrOpening()) return false;
        } while (!closers_.empty());
        return place_ == text_.size();
    }

    [[nodiscard]] std::size_t place() const { return place_; }

  private:
    /// A value, or the beginning of one that holds others; and all that ends after it.
    bool takeValueOrOpening() {
        if (take("{")) return takeOpened('}');
        if (take("[")) return takeOpened(']');
        return takeScalar() && takeAfterValue();
    }

    bool takeOpened(char closer) {
        closers_.push_back(closer);
        takeBlanks();
        if (!startsWith(rest(), std::string_view(&closer, 1))) return closer == ']' || takeName();
        return takeAfterValue();
    }

    /// Closes what ends here, up to where a value is to follow, or to the end.
    bool takeAfterValue() {
        takeBlanks();
        while (!closers_.empty() && take(std::string_view(&closers_.back(), 1))) {
            closers_.pop_back();
            takeBlanks();
        }
        if (closers_.empty()) return true;
        if (!take(",")) return false;
        takeBlanks();
        return closers_.back() == ']' || takeName();
    }

    bool takeName() {
        if (!takeString()) return false;
        takeBlanks();
        if (!take(":")) return false;
        takeBlanks();
        return true;
    }

    bool takeScalar() {
        return take("true") || take("false") || take("null") || takeString() || takeNumber();
    }

    bool takeString() {
        if (!take("\"")) return false;
        while (!take("\"")) {
            const utf8::Character character = utf8::firstCharacter(rest());
            constexpr std::uint32_t firstPrintable = 0x20;
            if (character.length == 0 || character.number < firstPrintable) return false;
            place_ += character.length;
            if (character.number == '\\' && !takeEscape()) return false;
        }
        return true;
    }

    bool takeEscape() {
        if (take("u")) return takeHexadecimal();
        constexpr CharacterSet escapes("\"\\/bfnrt");
        if (rest().empty() || !escapes.holds(rest().front())) return false;
        ++place_;
        return true;
    }

    bool takeHexadecimal() {
        for (int digit = 0; digit < 4; ++digit, ++place_) {
            if (rest().empty() || !hexadecimalDigits.holds(rest().front())) return false;
        }
        return true;
    }

    bool takeNumber() {
        static_cast<void>(take("-"));
        if (!take("0") && !takeDigits()) return false;
        if (take(".") && !takeDigits()) return false;
        if (!take("e") && !take("E")) return true;
        static_cast<void>(take("+") || take("-"));
        return takeDigits();
    }

    bool takeDigits() {
        const std::size_t start = place_;
        while (!rest().empty() && isDigit(rest().front()))
            ++place_;
        return place_ > start;
    }

    void takeBlanks() {
        while (!rest().empty() && blanks.holds(rest().front()))
            ++place_;
    }

    bool take(std::string_view wanted) {
        if (!startsWith(rest(), wanted)) return false;
        place_ += wanted.size();
        return true;
    }

    [[nodiscard]] std::string_view rest() const { return text_.substr(place_); }

    std::string_view text_;
    std::size_t place_ = 0;
    /// What ends the values that are open, the innermost last.
    std::vector<char> closers_;
};

}  // namespace

std::optional<std::size_t> findJsonFault(std::string_view text) {
    JsonScan scan(text);
    if (scan.takeAll()) return std::nullopt;
    return scan.place();
}

}  // namespace velhls
