// Internal to the library, not installed: places in the texts of a presentation.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "velhls/document/VELHLSDocument.h"
#include "velhls/document/VELHLSLine.h"

namespace velhls {

/// A text of a presentation.
struct PresentationText {
    const std::string& uri;
    const VELHLSDocument& document;
    /// Its place among the texts: the master playlist has 0.
    std::size_t order = 0;
};

/// A piece of a line of such a text.
struct PresentationPlace {
    const PresentationText* text = nullptr;
    VELHLSLine line;
    std::string_view piece;
};

}  // namespace velhls
