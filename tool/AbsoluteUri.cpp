#include "tool/AbsoluteUri.h"

#include <algorithm>
#include <cstddef>
#include <stdexcept>

#ifdef VELHLS_HAS_URIPARSER
#include <uriparser/Uri.h>
#endif

namespace tool {
namespace {

bool isLetter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

bool isInScheme(char character) {
    return isLetter(character) || (character >= '0' && character <= '9') || character == '+' ||
           character == '-' || character == '.';
}

/// How many characters the scheme has; 0 for none.
std::size_t schemeLength(std::string_view reference) {
    std::size_t length = 0;
    while (length < reference.size() && isInScheme(reference[length]))
        ++length;
    const bool isScheme =
        length > 0 && isLetter(reference[0]) && length < reference.size() && reference[length] == ':';
    return isScheme ? length : 0;
}

}  // namespace

bool hasScheme(std::string_view reference) {
    return schemeLength(reference) > 0;
}

std::string schemeOf(std::string_view reference) {
    std::string scheme(reference.substr(0, schemeLength(reference)));
    for (char& character : scheme) {
        if (character >= 'A' && character <= 'Z') character = static_cast<char>(character - 'A' + 'a');
    }
    return scheme;
}

#ifdef VELHLS_HAS_URIPARSER

namespace {

bool isInUri(char character) {
    constexpr std::string_view others = "-._~:/?#[]@!$&'()*+,;=%";
    return isLetter(character) || (character >= '0' && character <= '9') ||
           others.find(character) != std::string_view::npos;
}

/// The reference with what no URI holds percent-encoded.
std::string encoded(const std::string& reference) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (const char character : reference) {
        const auto byte = static_cast<unsigned char>(character);
        if (isInUri(character)) {
            text += character;
        } else {
            text.append(1, '%').append(1, digits[byte / 16U]).append(1, digits[byte % 16U]);
        }
    }
    return text;
}

/// True when text that follows may change what the last part of the path means: "." and "..".
bool endsInDots(std::string_view reference) {
    const std::string_view last = reference.substr(reference.rfind('/') + 1);
    return last == "." || last == "..";
}

/// A parsed URI, which refers to the text that it was parsed from.
class Uri {
  public:
    Uri() = default;
    ~Uri() { uriFreeUriMembersA(&uri_); }
    Uri(const Uri&) = delete;
    Uri& operator=(const Uri&) = delete;

    [[nodiscard]] bool parse(const std::string& text) {
        const char* errorPlace = nullptr;
        return uriParseSingleUriExA(&uri_, text.data(), text.data() + text.size(), &errorPlace) ==
               URI_SUCCESS;
    }

    [[nodiscard]] bool resolve(const Uri& reference, const Uri& base) {
        return uriAddBaseUriA(&uri_, &reference.uri_, &base.uri_) == URI_SUCCESS;
    }

    [[nodiscard]] std::string text() const {
        int length = 0;
        if (uriToStringCharsRequiredA(&uri_, &length) != URI_SUCCESS)
            throw std::invalid_argument("it is too long");
        std::string text(static_cast<std::size_t>(length) + 1, '\0');
        if (uriToStringA(text.data(), &uri_, length + 1, nullptr) != URI_SUCCESS) {
            throw std::invalid_argument("it is too long");
        }
        text.pop_back();
        return text;
    }

  private:
    UriUriA uri_ = {};
};

}  // namespace

struct BaseUri::Parsed {
    Uri uri;
};

BaseUri::BaseUri(const std::string& uri) : text_(uri), parsed_(std::make_unique<Parsed>()) {
    if (!hasScheme(uri) || !parsed_->uri.parse(text_)) throw std::invalid_argument("it is no absolute URI");
}

BaseUri::~BaseUri() = default;

std::string BaseUri::resolved(const std::string& reference) const {
    if (hasScheme(reference)) return reference;
    const std::size_t variable = std::min(reference.find("{$"), reference.size());
    const std::string known = reference.substr(0, variable);
    const bool isKnown = variable == reference.size() || (!known.empty() && !endsInDots(known));
    if (!isKnown) throw std::invalid_argument("it depends on a variable");
    const std::string text = encoded(known);
    Uri relative;
    if (!relative.parse(text)) throw std::invalid_argument("it is no URI");
    Uri absolute;
    if (!absolute.resolve(relative, parsed_->uri)) throw std::invalid_argument("it cannot be resolved");
    return absolute.text() + reference.substr(variable);
}

#else

struct BaseUri::Parsed {};

BaseUri::BaseUri(const std::string&) {
    throw std::invalid_argument("this build has no uriparser");
}

BaseUri::~BaseUri() = default;

std::string BaseUri::resolved(const std::string& reference) const {
    return reference;
}

#endif

}  // namespace tool
