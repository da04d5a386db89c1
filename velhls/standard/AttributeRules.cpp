#include <algorithm>
#include <array>
#include <iterator>
#include <string>
#include <utility>

#include "velhls/common/Names.h"
#include "velhls/common/TextScan.h"
#include "velhls/document/VELHLSSyntax.h"
#include "velhls/standard/CheckedPlaylist.h"
#include "velhls/standard/LanguageTag.h"

namespace velhls {
namespace {

constexpr std::string_view sectionOfLists = "RFC 8216, section 4.2";

const VELHLSTagDefinition& tagOf(const CheckedLine& checked) {
    return *checked.line.definition;
}

/// The section of the tag.
std::string ownSource(const CheckedLine& checked) {
    return sourceOf(tagOf(checked));
}

/// Goes through the attributes that the profile knows, with their rows.
template <typename Visit>
void forEachKnown(const CheckedLine& checked, Visit visit) {
    for (std::size_t place = 0; place < checked.attributes.size(); ++place) {
        const VELHLSAttributeDefinition* const row = checked.rows[place];
        if (row != nullptr) visit(checked.attributes[place], *row);
    }
}

void findInvalidName(const CheckedLine& checked, const Tell& tell) {
    for (const VELHLSAttribute& attribute : checked.attributes) {
        if (attribute.fault != VELHLSAttribute::NameInvalid) continue;
        const bool isClients = checked.is(tagIndex("EXT-X-DATERANGE")) && startsWith(attribute.name, "X-");
        FindingWords words;
        if (isClients) words = {{}, {}, "RFC 8216, section 4.3.2.7", nullptr, "MUST"};
        tell(checked.line, attribute.faultText, words);
    }
}

std::string_view whiteSpaceOf(const VELHLSAttribute& attribute) {
    const char* const place = attribute.faultText.data();
    if (place == attribute.text.data()) return "white space after a comma";
    if (place < attribute.writtenValue.data()) return "white space at an equals sign";
    const bool isAfterValue =
        place + attribute.faultText.size() == attribute.text.data() + attribute.text.size();
    return isAfterValue ? "white space before a comma" : "white space inside of a value";
}

/// That at the ends of the list is found as white space of the line.
void findWhiteSpace(const CheckedLine& checked, const Tell& tell) {
    for (const VELHLSAttribute& attribute : checked.attributes) {
        if (attribute.fault != VELHLSAttribute::WhiteSpace) continue;
        const char* const begin = attribute.faultText.data();
        const bool isInside =
            begin >= checked.value.data() && begin < checked.value.data() + checked.value.size();
        if (isInside) tell(checked.line, attribute.faultText, {{}, whiteSpaceOf(attribute), {}});
    }
}

/// Of an attribute without a name: the comma before it, or else the one after it, unless it has a value.
void tellOfMissingName(const CheckedLine& checked, const Tell& tell, const VELHLSAttribute& attribute) {
    if (!isBlank(attribute.text)) return tell(checked.line, attribute.faultText, {"a name", {}, {}});
    const std::string_view list = checked.line.value;
    const auto place = static_cast<std::size_t>(attribute.text.data() - list.data());
    const bool isFirst = place == 0;
    const bool isLast = place + attribute.text.size() == list.size();
    const std::string_view expected = isFirst  ? "no comma at the beginning of the list"
                                      : isLast ? "no comma at the end of the list"
                                               : "an attribute between two commas";
    tell(checked.line, list.substr(isFirst ? attribute.text.size() : place - 1, 1), {expected, "one", {}});
}

void tellOfFault(const CheckedLine& checked, const Tell& tell, const VELHLSAttribute& attribute) {
    constexpr std::size_t longest = 40;
    const std::string name(attribute.name.size() > longest ? "the attribute" : attribute.name);
    const auto tellOf = [&](const std::string& expected, std::string_view seen, std::string_view level = {}) {
        tell(checked.line, attribute.faultText, {expected, seen, {}, nullptr, level});
    };
    // Of a quoted-string the standard says that it must not hold a quote.
    constexpr std::string_view ofQuotes = "MUST NOT";
    switch (attribute.fault) {
        case VELHLSAttribute::NameMissing:
            return tellOfMissingName(checked, tell, attribute);
        case VELHLSAttribute::EqualsMissing:
            return tellOf("an equals sign after " + name, {});
        case VELHLSAttribute::ValueMissing:
            return tellOf("a value after " + name + "=", {});
        case VELHLSAttribute::QuoteUnclosed:
            return tellOf("a second quote, which closes " + name, {}, ofQuotes);
        case VELHLSAttribute::TextAfterQuote:
            return tellOf("a comma after the closing quote of " + name, {},
                          attribute.faultText.find('"') == std::string_view::npos ? "" : ofQuotes);
        case VELHLSAttribute::QuoteInValue:
            return tellOf("no quote inside of " + name + ", which has none before its value", "one");
        default:
            return;
    }
}

void findMalformed(const CheckedLine& checked, const Tell& tell) {
    if (checked.value.empty()) return;
    for (const VELHLSAttribute& attribute : checked.attributes) {
        if (attribute.fault != VELHLSAttribute::None) tellOfFault(checked, tell, attribute);
    }
}

/// Whether an attribute has the name of an earlier one, as far as that is found without sorting them.
bool mayRepeat(const std::vector<VELHLSAttribute>& attributes) {
    constexpr std::size_t few = 24;
    if (attributes.size() > few) return true;
    for (std::size_t place = 1; place < attributes.size(); ++place) {
        const std::string_view name = attributes[place].name;
        for (std::size_t before = 0; before < place; ++before) {
            if (attributes[before].name == name && !name.empty()) return true;
        }
    }
    return false;
}

void findRepeated(const CheckedLine& checked, const Tell& tell) {
    if (!mayRepeat(checked.attributes)) return;
    std::vector<const VELHLSAttribute*> named;
    for (const VELHLSAttribute& attribute : checked.attributes) {
        if (!attribute.name.empty()) named.push_back(&attribute);
    }
    std::stable_sort(
        named.begin(), named.end(),
        [](const VELHLSAttribute* left, const VELHLSAttribute* right) { return left->name < right->name; });
    for (std::size_t place = 1; place < named.size(); ++place) {
        if (named[place]->name == named[place - 1]->name) tell(checked.line, named[place]->name);
    }
}

std::string_view nameOf(VELHLSAttributeDefinition::Type type) {
    switch (type) {
        case VELHLSAttributeDefinition::DecimalInteger:
            return "a decimal-integer";
        case VELHLSAttributeDefinition::HexadecimalSequence:
            return "a hexadecimal-sequence: 0x, then digits and A to F";
        case VELHLSAttributeDefinition::DecimalFloatingPoint:
            return "a decimal-floating-point";
        case VELHLSAttributeDefinition::SignedDecimalFloatingPoint:
            return "a signed-decimal-floating-point";
        case VELHLSAttributeDefinition::DecimalResolution:
            return "a decimal-resolution: two integers with an x between them";
        case VELHLSAttributeDefinition::EnumeratedString:
            return "an enumerated-string, without quotes";
        case VELHLSAttributeDefinition::QuotedString:
            return "a quoted-string";
        case VELHLSAttributeDefinition::QuotedOrEnumerated:
            return "a quoted-string, or NONE without quotes";
        case VELHLSAttributeDefinition::ClientValue:
            return "a quoted-string, a hexadecimal-sequence or a decimal-floating-point";
    }
    return {};
}

/// What breaks the grammar of the list is told there, and not a second time of the value.
bool isFaulty(const VELHLSAttribute& attribute) {
    return attribute.fault != VELHLSAttribute::None && attribute.fault != VELHLSAttribute::WhiteSpace;
}

/// What the standard says of the types of a date range's attributes in key words.
std::string_view levelOfType(const CheckedLine& checked, const VELHLSAttribute& attribute,
                             const VELHLSAttributeDefinition& row) {
    if (!checked.is(tagIndex("EXT-X-DATERANGE"))) return {};
    if (row.type == VELHLSAttributeDefinition::DecimalFloatingPoint)
        return startsWith(attribute.value, "-") ? "MUST NOT" : "";
    const bool isMust = row.type == VELHLSAttributeDefinition::ClientValue ||
                        row.type == VELHLSAttributeDefinition::HexadecimalSequence;
    return isMust ? "MUST" : "";
}

void findWrongType(const CheckedLine& checked, const Tell& tell) {
    forEachKnown(checked, [&](const VELHLSAttribute& attribute, const VELHLSAttributeDefinition& row) {
        if (isFaulty(attribute) || row.hasType(attribute)) return;
        // Of these the tag's own section says how they are written.
        const bool isTags = checked.is(tagIndex("EXT-X-DATERANGE")) ||
                            row.content == VELHLSAttributeDefinition::ByteRange ||
                            row.type == VELHLSAttributeDefinition::QuotedOrEnumerated;
        const std::string source = isTags ? ownSource(checked) : std::string(sectionOfLists);
        tell(checked.line, attribute.writtenValue,
             {nameOf(row.type), {}, source, nullptr, levelOfType(checked, attribute, row)});
    });
}

/// What only the successor knows is none of those that RFC 8216 names, and no fault by that alone.
void findUnknownValue(const CheckedLine& checked, const Tell& tell) {
    forEachKnown(checked, [&](const VELHLSAttribute& attribute, const VELHLSAttributeDefinition& row) {
        const bool isWord = row.type == VELHLSAttributeDefinition::EnumeratedString;
        if (!isWord || attribute.quoted || !row.hasType(attribute) || row.allows(attribute.value)) return;
        const bool isNone = checked.is(tagIndexOf<tag::sessionKey>) && attribute.value == fixed::none;
        if (isNone) return;
        const std::string source = ownSource(checked);
        const std::string_view level = checked.is(tagIndex("EXT-X-DATERANGE")) ? "MUST" : "";
        tell(checked.line, attribute.value, {asChoice(row.values), {}, source, nullptr, level});
    });
}

void findMissing(const CheckedLine& checked, const Tell& tell) {
    if (checked.value.empty()) return;
    for (const VELHLSAttributeDefinition& row : tagOf(checked).attributes) {
        if (!row.required || checked.find(row.name) != nullptr) continue;
        // A session key of METHOD=NONE, which is forbidden, has nothing to fetch.
        const VELHLSAttribute* const method = row.isUri() ? checked.find(attribute::method) : nullptr;
        if (method != nullptr && method->value == fixed::none) continue;
        const std::string source = ownSource(checked);
        const bool isMust =
            tagOf(checked).name == tag::streamInf || tagOf(checked).name == tag::iFrameStreamInf;
        tell(checked.line, checked.line.name, {row.name, "none", source, nullptr, isMust ? "MUST" : ""});
    }
}

std::string_view expectedOf(VELHLSAttributeDefinition::Content content, std::string_view value) {
    switch (content) {
        case VELHLSAttributeDefinition::DateTime:
            return VELHLSSyntax::readDateTime(value) ? "" : "a date and time like 2010-02-19T14:54:23.031Z";
        case VELHLSAttributeDefinition::ByteRange:
            return VELHLSSyntax::readByteRange(value) ? "" : "a length and, after \"@\", an offset";
        case VELHLSAttributeDefinition::Language:
            return isLanguageTag(value) ? "" : "a language tag of RFC 5646, like en or zh-Hans";
        default:
            return "";
    }
}

void findMalformedContent(const CheckedLine& checked, const Tell& tell) {
    forEachKnown(checked, [&](const VELHLSAttribute& attribute, const VELHLSAttributeDefinition& row) {
        const std::string_view expected = attribute.quoted ? expectedOf(row.content, attribute.value) : "";
        if (expected.empty()) return;
        const std::string source = ownSource(checked);
        tell(checked.line, attribute.value, {expected, {}, source});
    });
}

void findEmptyUri(const CheckedLine& checked, const Tell& tell) {
    forEachKnown(checked, [&](const VELHLSAttribute& attribute, const VELHLSAttributeDefinition& row) {
        if (!row.isUri() || !attribute.quoted || !attribute.value.empty()) return;
        const std::string source = ownSource(checked);
        tell(checked.line, attribute.value, {{}, {}, source});
    });
}

// clang-format off
constexpr LineEntry rules[] = {
    {{{"attribute-name-invalid", error, "An attribute's name holds other characters than A to Z, 0 to 9 and the hyphen.",
       "a name of A to Z, 0 to 9 and the hyphen", "RFC 8216, section 4.2", false}, "SYN"}, findInvalidName},
    {{{"attribute-white-space", error, "White space stands between the parts of an attribute list.",
       "no white space around commas and equals signs", "RFC 8216, section 4.2", false}, "MUST NOT"}, findWhiteSpace},
    {{{"attribute-list-malformed", error, "An attribute list is not written as NAME=value,NAME=value.",
       "NAME=value", "RFC 8216, section 4.2", false}, "SYN"}, findMalformed},
    {{{"attribute-name-repeated", error, "An attribute stands twice in one list.",
       "the attribute once", "RFC 8216, section 4.2", false}, "MUST NOT"}, findRepeated},
    {{{"attribute-wrong-type", error, "A value has not the type that the standard gives its attribute.",
       "a value of another type", "RFC 8216, section 4.2", false}, "SYN"}, findWrongType},
    {{{"attribute-value-unknown", error, "A value is none of those that its attribute may have.",
       "another value", "RFC 8216, section 4.3", false}, "SYN"}, findUnknownValue},
    {{{"attribute-missing", error, "A tag lacks an attribute that it must have.",
       "another attribute", "RFC 8216, section 4.3", false}, "REQUIRED"}, findMissing},
    {{{"attribute-content-malformed", error, "What stands between quotes is no date, byte range or language, as it must be.",
       "other content", "RFC 8216, section 4.3", false}, "SYN"}, findMalformedContent},
    {{{"attribute-uri-empty", warning, "The URI of an attribute is empty.",
       "a URI that names something", "RFC 8216, section 4.3", false}, "SYN"}, findEmptyUri},
};
// clang-format on

}  // namespace

StandardTable<CheckedLine> attributeRules() {
    return {rules, std::size(rules)};
}

}  // namespace velhls
