#pragma once

#include <cstdint>
#include <string_view>

#include "velhls/common/VELHLSExport.h"
#include "velhls/document/VELHLSAttributeDefinition.h"
#include "velhls/document/VELHLSProfile.h"
#include "velhls/document/VELHLSRows.h"

/// What the format says of one tag: a row of a table.
///
///     for (const VELHLSTagDefinition& tag : VELHLSTagDefinition::all()) std::cout << tag.name << "\n";
///
/// This table and that of the attributes know RFC 8216, its successor, and what vendors widely write. There is no other
/// place in the library that does, but the models: they read less, and some of it otherwise.
struct VELHLS_CHECK_API VELHLSTagDefinition {
    /// Where a tag may stand.
    enum Playlist : std::uint8_t {
        Either,  ///< in a master or a media playlist
        Master,  ///< in a master playlist
        Media,   ///< in a media playlist
    };

    /// What follows the tag's name.
    enum Form : std::uint8_t {
        Nothing,         ///< not even a colon
        DecimalInteger,  ///< a decimal-integer
        Duration,  ///< a decimal-floating-point or a decimal-integer, a comma, and a title that may be missing
        ByteRange,      ///< a length, and "@" and an offset where one is given
        DateTime,       ///< an ISO 8601 date and time
        Word,           ///< one of `values`
        AttributeList,  ///< an attribute-list
        Anything,       ///< what the tables do not describe
    };

    /// What a tag speaks of.
    enum Reach : std::uint8_t {
        Itself,       ///< the playlist, or itself alone: it belongs to no segment and no variant
        Variant,      ///< the variant whose URI line follows
        Segment,      ///< the segment whose URI line follows, and no other
        FromSegment,  ///< that segment and those after it
    };

    /// The name, without "#".
    std::string_view name;
    /// Where it may stand.
    Playlist playlist = Either;
    /// What follows its name.
    Form form = Nothing;
    /// What it speaks of.
    Reach reach = Itself;
    /// True when a playlist has it once at most; for a segment's or a variant's tag, when that has it once at most.
    bool once = false;
    /// The words that may be its value, separated by commas.
    std::string_view values = {};
    /// The lowest EXT-X-VERSION of a playlist that has it (section 7).
    std::uint8_t firstVersion = 1;
    /// The EXT-X-VERSION that removed it; 0 for none.
    std::uint8_t removedVersion = 0;
    /// Who knows it.
    VELHLSProfile profile = VELHLSProfile::rfc8216;
    /// The section that defines it, of RFC 8216 or of its successor, as the profile says; empty for a vendor's.
    std::string_view section = {};

    /// The attributes that its list may have, in no order. None where the tables describe none.
    VELHLSRows<VELHLSAttributeDefinition> attributes = {};

    /// The row of this attribute, or that of all names that begin so ("X-*"); null when there is neither.
    [[nodiscard]] const VELHLSAttributeDefinition* findAttribute(std::string_view attributeName) const;

    /// All tags that are known.
    [[nodiscard]] static VELHLSRows<VELHLSTagDefinition> all();

    /// The tag with this name; null when it is not known. Always the same object for one name.
    [[nodiscard]] static const VELHLSTagDefinition* find(std::string_view name);
};
