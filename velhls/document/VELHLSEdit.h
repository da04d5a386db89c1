#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// A change of a text: so many bytes from `offset` on become `replacement`. VELHLSDocument makes edits, and applies them.
struct VELHLSEdit {
    /// Where it begins in the document's text.
    std::size_t offset = 0;
    /// How many bytes it replaces; 0 when it only inserts.
    std::size_t length = 0;
    /// What comes in their place.
    std::string replacement;
};

/// What is to become of one attribute: see VELHLSDocument::changeAttributes.
struct VELHLSAttributeChange {
    /// The attribute's name.
    std::string name;
    /// Its new value; nothing to remove the attribute.
    std::optional<std::string> value;
};

/// What VELHLSDocument::apply makes.
struct VELHLSEditedText {
    /// The new text; empty when two edits overlap.
    std::string text;
    /// The first two edits that overlap, by their places in the list that was given; nothing when none do.
    std::optional<std::pair<std::size_t, std::size_t>> overlap;
};
