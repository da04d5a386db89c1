#include "velhls/standard/LanguageTag.h"

#include <cstddef>

#include "velhls/common/TextScan.h"

namespace velhls {
namespace {

constexpr CharacterSet letters("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
constexpr CharacterSet lettersAndDigits("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789");

/// Takes the subtags from the front of a tag.
class SubtagScanner {
  public:
    explicit SubtagScanner(std::string_view tag) : rest_(tag) { next(); }

    [[nodiscard]] bool ended() const { return ended_; }
    [[nodiscard]] bool isMalformed() const {
        return subtag_.empty() || subtag_.size() > 8 || !holdsOnly(subtag_, lettersAndDigits);
    }
    [[nodiscard]] bool isSingleton() const { return subtag_.size() == 1; }
    [[nodiscard]] bool isPrivate() const { return subtag_ == "x" || subtag_ == "X"; }
    [[nodiscard]] bool holdsLetters(std::size_t least, std::size_t most) const {
        return subtag_.size() >= least && subtag_.size() <= most && holdsOnly(subtag_, letters);
    }
    [[nodiscard]] bool isRegion() const {
        return holdsLetters(2, 2) || (subtag_.size() == 3 && holdsOnly(subtag_, digits));
    }
    [[nodiscard]] bool isVariant() const {
        return subtag_.size() >= 5 || (subtag_.size() == 4 && isDigit(subtag_.front()));
    }

    void next() {
        ended_ = hasLast_;
        const std::size_t hyphen = rest_.find('-');
        hasLast_ = hyphen == std::string_view::npos;
        subtag_ = rest_.substr(0, hyphen);
        rest_ = hasLast_ ? std::string_view() : rest_.substr(hyphen + 1);
    }

    /// Goes on while the claim holds, so many times at most.
    template <typename Claim>
    void skip(std::size_t most, Claim claim) {
        for (std::size_t count = 0; count < most && !ended_ && claim(*this); ++count)
            next();
    }

  private:
    std::string_view rest_;
    std::string_view subtag_;
    bool hasLast_ = false;
    bool ended_ = false;
};

bool hasMalformedSubtag(std::string_view tag) {
    for (SubtagScanner scanner(tag); !scanner.ended(); scanner.next()) {
        if (scanner.isMalformed()) return true;
    }
    return false;
}

}  // namespace

bool isLanguageTag(std::string_view text) {
    // Most are nothing else.
    if (text.size() == 2 && holdsOnly(text, letters)) return true;
    if (hasMalformedSubtag(text)) return false;
    SubtagScanner scanner(text);
    const bool isOld = text.size() > 2 && (startsWith(text, "i-") || startsWith(text, "I-"));
    if (isOld || (scanner.isPrivate() && text.size() > 2)) return true;
    if (!scanner.holdsLetters(2, 3)) return false;
    scanner.next();
    constexpr std::size_t any = 1000;
    scanner.skip(3, [](const SubtagScanner& at) { return at.holdsLetters(3, 3); });
    scanner.skip(1, [](const SubtagScanner& at) { return at.holdsLetters(4, 4); });
    scanner.skip(1, [](const SubtagScanner& at) { return at.isRegion(); });
    scanner.skip(any, [](const SubtagScanner& at) { return at.isVariant(); });
    // What follows a singleton is an extension's, of which only the form is known.
    return scanner.ended() || scanner.isSingleton();
}

}  // namespace velhls
