#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "velhls/document/VELHLSAttribute.h"
#include "velhls/document/VELHLSTagDefinition.h"

/// One line of a document: where it is, and what it says. All views look into the document's text.
///
///     #EXT-X-KEY:METHOD=NONE          kind Tag, name "EXT-X-KEY", value "METHOD=NONE"
///     segment1.ts                     kind Uri, value "segment1.ts"
///     # by hand                       kind Comment, no name, value " by hand"
///     #ZOR-PATTERN_START:hour         kind Comment, name "ZOR-PATTERN_START", value "hour"
///
/// Lines end with a line feed, before which there may be a carriage return (RFC 8216, section 4.1); the last line may lack
/// both. A carriage return anywhere else is a character of the line.
struct VELHLSLine {
    /// What a line is.
    enum Kind : std::int32_t {
        Blank = 0,  ///< nothing but white space
        Uri,        ///< anything that does not begin with "#"
        Comment,    ///< begins with "#"
        Tag,        ///< begins with "#EXT"
    };

    /// What it is. White space before it counts for nothing, nor does a byte order mark before the first line: a tag with
    /// either is against RFC 8216, and a tag nevertheless.
    Kind kind = Blank;
    /// Counted from 1.
    std::size_t number = 0;
    /// Where it begins in the document's text.
    std::size_t offset = 0;
    /// The whole line without its end, with all white space.
    std::string_view text;
    /// Its end: "\n", "\r\n", or nothing.
    std::string_view ending;
    /// Of a tag, the name without "#": what stands before a colon, white space, or the line's end. Of a comment, likewise,
    /// if that has no characters but A-Z, 0-9, "-" and "_": vendors' lines have such names. Empty otherwise.
    std::string_view name;
    /// What follows the colon that follows the name. Of a URI line, the URI without white space around it. Of a comment
    /// without a name, what follows "#". Empty otherwise.
    std::string_view value;
    /// True when a colon follows the name.
    bool hasColon = false;
    /// What the format says of the name; null when it is not known.
    const VELHLSTagDefinition* definition = nullptr;

    /// The attributes of the value, whether or not the format says that there are any.
    [[nodiscard]] VELHLSAttributes attributes() const { return VELHLSAttributes(value); }

    /// The byte of the line at which the part begins, counted from 1. The part must look into the line.
    [[nodiscard]] std::size_t column(std::string_view part) const {
        return static_cast<std::size_t>(part.data() - text.data()) + 1;
    }
};

/// A URI in a document: a whole line, or the value of an attribute.
struct VELHLSUri {
    /// The number of its line, counted from 1.
    std::size_t line = 0;
    /// The URI itself, in the document's text: no quotes, and no white space around it.
    std::string_view text;
    /// The name of the attribute; empty for a URI line.
    std::string_view attribute;
};
