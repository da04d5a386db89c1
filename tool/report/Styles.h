#pragma once

#include <string_view>

namespace tool::report {

/// A style sheet, and its hash for a content security policy: "sha256-…".
struct StyleSheet {
    std::string_view text;
    std::string_view hash;
};

/// tool/report/picture.css, for all pictures, and tool/report/page.css, for a page.
extern const StyleSheet pictureStyle;
extern const StyleSheet pageStyle;

}  // namespace tool::report
