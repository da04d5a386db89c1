#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace tool {

/// True when the reference begins with a scheme (RFC 3986, section 3.1).
[[nodiscard]] bool hasScheme(std::string_view reference);

/// The scheme in lower case; empty when there is none.
[[nodiscard]] std::string schemeOf(std::string_view reference);

/// A URI that relative references are resolved against (RFC 3986, section 5). Where the command was built without uriparser
/// there is none.
class BaseUri {
  public:
    /// Throws std::invalid_argument for what is no URI with a scheme.
    explicit BaseUri(const std::string& uri);
    ~BaseUri();
    BaseUri(const BaseUri&) = delete;
    BaseUri& operator=(const BaseUri&) = delete;

    /// The reference as an absolute URI; one that has a scheme as it is. Characters that no URI holds, such as spaces and
    /// letters beyond ASCII, are percent-encoded. What follows a variable ("{$name}") stays as it is. Throws std::invalid_argument, saying why, for what cannot be resolved.
    [[nodiscard]] std::string resolved(const std::string& reference) const;

  private:
    struct Parsed;
    std::string text_;
    std::unique_ptr<Parsed> parsed_;
};

}  // namespace tool
