#pragma once

#include <cstdint>
#include <string_view>

#include "velhls/common/VELHLSExport.h"
#include "velhls/document/VELHLSAttribute.h"
#include "velhls/document/VELHLSProfile.h"

/// What the format says of one attribute of one tag: a row of a table. VELHLSTagDefinition::attributes are
/// those of a tag.
struct VELHLS_CHECK_API VELHLSAttributeDefinition {
    /// How a value is written (RFC 8216, section 4.2). VELHLSSyntax reads each.
    enum Type : std::uint8_t {
        DecimalInteger,              ///< decimal-integer
        HexadecimalSequence,         ///< hexadecimal-sequence
        DecimalFloatingPoint,        ///< decimal-floating-point
        SignedDecimalFloatingPoint,  ///< signed-decimal-floating-point
        DecimalResolution,           ///< decimal-resolution
        EnumeratedString,            ///< enumerated-string: one of `values`
        QuotedString,                ///< quoted-string
        QuotedOrEnumerated,          ///< quoted-string, or one of `values` without quotes
        ClientValue,                 ///< quoted-string, hexadecimal-sequence or decimal-floating-point
    };

    /// What is between the quotes of a quoted-string.
    enum Content : std::uint8_t {
        Text,       ///< nothing that the tables describe
        Uri,        ///< a URI
        DateTime,   ///< an ISO 8601 date
        ByteRange,  ///< a length, and "@" and an offset where one is given
        Language,   ///< a tag of RFC 5646
        List,       ///< values separated by commas
    };

    /// The name; where it ends with "*", the beginning of names.
    std::string_view name;
    /// How the value is written.
    Type type = QuotedString;
    /// What is between the quotes.
    Content content = Text;
    /// True when the tag must have it, whatever its other attributes are.
    bool required = false;
    /// The values that an enumerated-string may have, separated by commas.
    std::string_view values = {};
    /// Those that only the successor of RFC 8216 knows, separated by commas.
    std::string_view laterValues = {};
    /// The lowest EXT-X-VERSION of a playlist that has it (section 7).
    std::uint8_t firstVersion = 1;
    /// The EXT-X-VERSION that removed it; 0 for none.
    std::uint8_t removedVersion = 0;
    /// Who knows it.
    VELHLSProfile profile = VELHLSProfile::rfc8216;

    /// True when the quoted-string is a URI.
    [[nodiscard]] bool isUri() const { return content == Uri; }

    /// True when the value may be this one: of `values` or, for the successor, of `laterValues`. Always true where there
    /// are none to choose from.
    [[nodiscard]] bool allows(std::string_view value, VELHLSProfile known = VELHLSProfile::rfc8216bis) const;

    /// True when the value is written as the type says, and has quotes if and only if the type wants them. Of an
    /// enumerated-string any word will do, and of a quoted-string any content.
    [[nodiscard]] bool hasType(const VELHLSAttribute& attribute) const;
};
