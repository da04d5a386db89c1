// Attribute lists that break the grammar.
#include <iterator>

#include "velhls/common/ReasonText.h"
#include "velhls/document/VELHLSSyntax.h"
#include "velhls/fixes/FaultyText.h"

namespace velhls {
namespace {

/// The attribute with a comma that divides it from another one.
std::string_view withComma(const Fault& fault, const VELHLSAttribute& attribute) {
    const std::string_view list = fault.line.value;
    const auto start = static_cast<std::size_t>(attribute.text.data() - list.data());
    const std::size_t length = attribute.text.size() + 1;
    if (start > 0) return list.substr(start - 1, length);
    return list.substr(start, length);
}

void removePiece(const Fault& fault) {
    const auto attribute = fault.attribute();
    if (!attribute) return;
    fault.lossy("removes " + quoted(attribute->text) + ", which says nothing that can be read",
                {fault.replace(withComma(fault, *attribute), "")});
}

bool beginsAttribute(std::string_view text) {
    const std::size_t equals = text.find('=');
    return equals != std::string_view::npos && VELHLSSyntax::isAttributeName(text.substr(0, equals));
}

/// A value of several parts that lacks its quotes: from the last attribute with a name to the last part.
void putInQuotes(const Fault& fault) {
    const auto cut = fault.attribute();
    if (!cut) return;
    std::optional<VELHLSAttribute> named;
    std::string_view last;
    bool isBeforeCut = true;
    constexpr std::size_t mostParts = 64;
    std::size_t parts = 0;
    for (const VELHLSAttribute& each : fault.line.attributes()) {
        if (isBeforeCut && beginsAttribute(bare(each.text))) named = each;
        if (each.text.data() == cut->text.data()) isBeforeCut = false;
        if (isBeforeCut) continue;
        if (each.text.find('=') != std::string_view::npos) break;
        last = each.text;
        if (++parts > mostParts) return;
    }
    if (!named || named->quoted || named->writtenValue.empty() || last.data() == nullptr) return;
    const char* const start = named->writtenValue.data();
    const std::string_view value(start, static_cast<std::size_t>(last.data() + last.size() - start));
    const VELHLSAttributeDefinition* const row =
        fault.line.definition == nullptr ? nullptr : fault.line.definition->findAttribute(named->name);
    const bool mayHaveQuotes = row == nullptr || row->type == VELHLSAttributeDefinition::QuotedString;
    if (!mayHaveQuotes || !VELHLSSyntax::isQuotable(value)) return;
    fault.guess("puts " + quoted(value) + " in quotes, as one value",
                {fault.replace(value, '"' + std::string(value) + '"')});
}

void fixEqualsMissing(const Fault& fault) {
    putInQuotes(fault);
    removePiece(fault);
}

void fixTextAfterQuote(const Fault& fault) {
    const auto attribute = fault.attribute();
    if (!attribute || attribute->fault != VELHLSAttribute::TextAfterQuote) return;
    const char* const end = attribute->writtenValue.data() + attribute->writtenValue.size();
    const auto length = static_cast<std::size_t>(attribute->text.data() + attribute->text.size() - end);
    const std::string_view after(end, length);
    if (beginsAttribute(bare(after)))
        fault.guess("puts a comma before " + quoted(bare(after)), {fault.replace(after.substr(0, 0), ",")});
    fault.lossy("removes " + quoted(after) + " after the closing quote", {fault.replace(after, "")});
}

/// The quote is taken to end before the next attribute, or at the end of the line.
void fixQuoteUnclosed(const Fault& fault) {
    for (const VELHLSAttribute& each : fault.line.attributes()) {
        if (each.fault != VELHLSAttribute::QuoteUnclosed) continue;
        std::size_t end = each.value.find(',');
        while (end != std::string_view::npos && !beginsAttribute(each.value.substr(end + 1)))
            end = each.value.find(',', end + 1);
        const std::string_view value = each.value.substr(0, end);
        fault.guess("closes the quote after " + quoted(value),
                    {fault.replace(value.substr(value.size()), "\"")});
        return;
    }
}

void fixListEmpty(const Fault& fault) {
    fault.removeLine("it says nothing");
}

void fixWhiteSpace(const Fault& fault) {
    if (!fault.text.isNewList(fault.line.number)) return;
    fault.safe("removes white space and commas that divide nothing from the attributes",
               tidyList(fault.document(), fault.line));
}

void fixListMalformed(const Fault& fault) {
    fixWhiteSpace(fault);
    const auto attribute = fault.attribute();
    if (!fault.fixes.empty() || !attribute) return;
    switch (attribute->fault) {
        case VELHLSAttribute::EqualsMissing:
            return fixEqualsMissing(fault);
        case VELHLSAttribute::TextAfterQuote:
            return fixTextAfterQuote(fault);
        case VELHLSAttribute::QuoteUnclosed:
            return fixQuoteUnclosed(fault);
        case VELHLSAttribute::NameMissing:
        case VELHLSAttribute::ValueMissing:
            return removePiece(fault);
        default:
            return;
    }
}

/// The models take the first of several, and so do most others.
void fixNameRepeated(const Fault& fault) {
    const auto repeated = fault.attribute();
    if (!repeated || isMalformed(fault.line)) return;
    const auto first = fault.line.attributes().find(repeated->name);
    if (!first || first->text.data() == repeated->text.data()) return;
    const std::vector<VELHLSEdit> edits = {fault.replace(withComma(fault, *repeated), "")};
    if (first->writtenValue == repeated->writtenValue)
        return fault.safe("removes " + quoted(repeated->text) + ", which stands there already", edits);
    fault.lossy("removes " + quoted(repeated->text) + ", of which the first is kept", edits);
}

/// Quotes that are not there, or too many: what the value is stays the same.
void fixWrongType(const Fault& fault) {
    const auto attribute = fault.attribute();
    if (!attribute || attribute->fault != VELHLSAttribute::None || fault.line.definition == nullptr) return;
    const VELHLSAttributeDefinition* const row = fault.line.definition->findAttribute(attribute->name);
    if (row == nullptr) return;
    const bool wantsQuotes = row->type == VELHLSAttributeDefinition::QuotedString;
    if (wantsQuotes == attribute->quoted) return;
    const std::string value(attribute->value);
    const std::string written = wantsQuotes ? '"' + value + '"' : value;
    const std::string whole = std::string(attribute->name) + "=" + written;
    const VELHLSAttributes list(whole);
    const bool isRight = list.begin()->fault == VELHLSAttribute::None && ++list.begin() == list.end() &&
                         list.begin()->value == value && row->hasType(*list.begin());
    if (isRight) fault.safe("writes " + whole, {fault.replace(attribute->writtenValue, written)});
}

void fixValueUnknown(const Fault& fault) {
    const auto attribute = fault.attribute();
    if (!attribute || fault.line.definition == nullptr) return;
    const VELHLSAttributeDefinition* const row = fault.line.definition->findAttribute(attribute->name);
    if (row == nullptr || row->values.empty()) return;
    std::string value = inUpperCase(attribute->value);
    if (!row->allows(value)) value = yesOrNo(attribute->value);
    if (value.empty() || !row->allows(value)) return;
    fault.guess("writes " + std::string(attribute->name) + "=" + value,
                fault.setAttribute(attribute->name, value));
}

// clang-format off
constexpr FixEntry entries[] = {
    {"attribute-list-empty", fixListEmpty, "lossy: removes the tag"},
    {"attribute-equals-missing", fixEqualsMissing,
     "safe: removes a comma that divides nothing; guess: puts a value that has commas in quotes; lossy: removes what has no equals sign"},
    {"attribute-name-empty", removePiece, "lossy: removes what has no name"},
    {"attribute-value-empty", removePiece, "lossy: removes the attribute"},
    {"attribute-text-after-quote", fixTextAfterQuote,
     "safe: removes white space after a quote; guess: puts a comma before another attribute; lossy: removes other text"},
    {"attribute-quote-unclosed", fixQuoteUnclosed, "guess: closes the quote before the next attribute"},
    {"attribute-white-space", fixWhiteSpace, "safe: removes the white space"},
    {"attribute-list-malformed", fixListMalformed,
     "safe: removes commas that divide nothing; guess: closes a quote before the next attribute, puts a value that has commas in quotes, "
     "or a comma before another attribute; lossy: removes what cannot be read"},
    {"attribute-name-repeated", fixNameRepeated, "safe: removes an attribute that is the same; lossy: removes all but the first"},
    {"attribute-wrong-type", fixWrongType, "safe: puts the value in quotes, or takes it out of them, where that is all that is wrong"},
    {"attribute-value-unknown", fixValueUnknown, "guess: writes the value in upper case, or YES or NO for what seems to mean it"},
};
// clang-format on

}  // namespace

FixTable listFixes() {
    return {entries, std::size(entries)};
}

}  // namespace velhls
