#include "velhls/document/VELHLSAttributeDefinition.h"

#include "velhls/document/VELHLSSyntax.h"

namespace {

bool holdsWord(std::string_view words, std::string_view word) {
    while (!words.empty()) {
        const std::size_t comma = words.find(',');
        if (words.substr(0, comma) == word) return true;
        words = comma == std::string_view::npos ? std::string_view() : words.substr(comma + 1);
    }
    return false;
}

bool isOneOfTheNumbers(std::string_view value) {
    return VELHLSSyntax::readHexadecimalSequence(value) || VELHLSSyntax::readDecimalFloatingPoint(value);
}

}  // namespace

bool VELHLSAttributeDefinition::allows(std::string_view value, VELHLSProfile known) const {
    if (values.empty() || holdsWord(values, value)) return true;
    return known == VELHLSProfile::rfc8216bis && holdsWord(laterValues, value);
}

bool VELHLSAttributeDefinition::hasType(const VELHLSAttribute& attribute) const {
    if (attribute.quoted) {
        return (type == QuotedString || type == QuotedOrEnumerated || type == ClientValue) &&
               VELHLSSyntax::isQuotable(attribute.value);
    }
    switch (type) {
        case DecimalInteger:
            return VELHLSSyntax::readDecimalInteger(attribute.value).has_value();
        case HexadecimalSequence:
            return VELHLSSyntax::readHexadecimalSequence(attribute.value).has_value();
        case DecimalFloatingPoint:
            return VELHLSSyntax::readDecimalFloatingPoint(attribute.value).has_value();
        case SignedDecimalFloatingPoint:
            return VELHLSSyntax::readSignedDecimalFloatingPoint(attribute.value).has_value();
        case DecimalResolution:
            return VELHLSSyntax::readDecimalResolution(attribute.value).has_value();
        case EnumeratedString:
            return VELHLSSyntax::isEnumeratedString(attribute.value);
        case QuotedOrEnumerated:
            return allows(attribute.value);
        case ClientValue:
            return isOneOfTheNumbers(attribute.value);
        case QuotedString:
            break;
    }
    return false;
}
