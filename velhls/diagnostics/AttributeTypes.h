// Internal to the library, not installed: the types that RFC 8216 gives to attributes.
#pragma once

#include <optional>
#include <string_view>

namespace velhls {

/// RFC 8216, section 4.2.
enum class AttributeType {
    number,       ///< a decimal or signed number, looked at where it is converted
    hexadecimal,  ///< a hexadecimal sequence
    quotedString,
    enumerated,
    resolution,
    quotedOrNone,  ///< a quoted string, or the enumerated string NONE
};

/// The type of the attribute with this name, which has the same one in every tag. Nothing for an attribute that
/// RFC 8216 does not have.
[[nodiscard]] std::optional<AttributeType> typeOfAttribute(std::string_view name);

/// "a quoted string", for messages.
[[nodiscard]] std::string_view describe(AttributeType type);

/// Whether a value, which stood in quotes or not, has the type.
[[nodiscard]] bool hasType(std::string_view value, bool isQuoted, AttributeType type);

}  // namespace velhls
