#include "velhls/document/VELHLSAttribute.h"

#include <algorithm>

#include "velhls/common/TextScan.h"

namespace {

constexpr velhls::CharacterSet nameCharacters("ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-");

/// The place at the start of a text.
std::string_view startOf(std::string_view text) {
    return text.substr(0, 0);
}

/// The place after a text.
std::string_view endOf(std::string_view text) {
    return text.substr(text.size());
}

std::size_t leadingBlanks(std::string_view text) {
    std::size_t count = 0;
    while (count < text.size() && velhls::blanks.holds(text[count]))
        ++count;
    return count;
}

std::string_view trimmed(std::string_view text) {
    return velhls::withoutTrailing(text.substr(leadingBlanks(text)), velhls::blanks);
}

std::string_view upToComma(std::string_view text) {
    return text.substr(0, text.find(','));
}

/// The first character of the text that is in the set; the text has one.
std::string_view firstOfSet(std::string_view text, const velhls::CharacterSet& set) {
    std::size_t place = 0;
    while (!set.holds(text[place]))
        ++place;
    return text.substr(place, 1);
}

constexpr velhls::CharacterSet quotes("\"");
constexpr velhls::CharacterSet quotesAndBlanks("\" \t\n\r");

/// Where the comma stands that ends the first pair of the list, or the list ends. The equals sign of the pair, or that comma, is
/// where its name ends.
std::size_t endOfPair(std::string_view list, std::size_t nameEnd) {
    if (nameEnd == list.size() || list[nameEnd] == ',') return nameEnd;
    std::size_t place = nameEnd + 1 + leadingBlanks(list.substr(nameEnd + 1));
    if (place < list.size() && list[place] == '"') place = std::min(list.find('"', place + 1), list.size());
    return std::min(list.find(',', place), list.size());
}

}  // namespace

void VELHLSAttributes::Iterator::fail(VELHLSAttribute::Fault fault, std::string_view place) {
    if (attribute_.fault != VELHLSAttribute::None) return;
    attribute_.fault = fault;
    attribute_.faultText = place;
}

void VELHLSAttributes::Iterator::scan() {
    attribute_ = {};
    const char* const start = rest_.data();
    std::size_t length = 0;
    while (length < rest_.size() && nameCharacters.holds(rest_[length]))
        ++length;
    attribute_.name = velhls::firstOf(rest_, length);
    if (length > 0 && length < rest_.size() && rest_[length] == '=') {
        rest_.remove_prefix(length + 1);
        scanValue();
    } else {
        scanOddName();
    }
    // All that comes before the comma has been taken.
    attribute_.text = {start, static_cast<std::size_t>(rest_.data() - start)};
    isLast_ = rest_.empty();
    if (!isLast_) rest_.remove_prefix(1);
}

/// A name that is not followed by "=", or is none.
void VELHLSAttributes::Iterator::scanOddName() {
    const std::string_view pair = upToComma(rest_);
    const std::size_t equals = std::min(pair.find('='), pair.size());
    const std::string_view written = pair.substr(0, equals);
    attribute_.name = trimmed(written);
    attribute_.value = endOf(pair);
    attribute_.writtenValue = endOf(pair);
    if (attribute_.name.empty()) {
        fail(VELHLSAttribute::NameMissing, startOf(pair));
    } else if (attribute_.name.size() != written.size()) {
        const bool isBefore = attribute_.name.data() != written.data();
        const std::string_view after(attribute_.name.data() + attribute_.name.size(),
                                     written.size() - attribute_.name.size());
        fail(VELHLSAttribute::WhiteSpace, isBefore ? written.substr(0, leadingBlanks(written)) : after);
    } else if (!velhls::holdsOnly(attribute_.name, nameCharacters)) {
        fail(VELHLSAttribute::NameInvalid, attribute_.name);
    }
    if (equals == pair.size()) {
        fail(VELHLSAttribute::EqualsMissing, endOf(written));
        rest_.remove_prefix(pair.size());
        return;
    }
    rest_.remove_prefix(equals + 1);
    scanValue();
}

void VELHLSAttributes::Iterator::scanValue() {
    if (!rest_.empty() && velhls::blanks.holds(rest_.front())) {
        const std::size_t count = leadingBlanks(rest_);
        fail(VELHLSAttribute::WhiteSpace, rest_.substr(0, count));
        rest_.remove_prefix(count);
    }
    attribute_.quoted = !rest_.empty() && rest_.front() == '"';
    if (attribute_.quoted) {
        scanQuoted();
    } else {
        scanBare();
    }
}

void VELHLSAttributes::Iterator::scanQuoted() {
    const std::size_t closing = rest_.find('"', 1);
    if (closing == std::string_view::npos) {
        attribute_.value = rest_.substr(1);
        attribute_.writtenValue = rest_;
        fail(VELHLSAttribute::QuoteUnclosed, rest_.substr(0, 1));
        rest_.remove_prefix(rest_.size());
        return;
    }
    attribute_.value = rest_.substr(1, closing - 1);
    attribute_.writtenValue = rest_.substr(0, closing + 1);
    rest_.remove_prefix(closing + 1);
    if (rest_.empty() || rest_.front() == ',') return;
    const std::string_view after = upToComma(rest_);
    fail(velhls::isBlank(after) ? VELHLSAttribute::WhiteSpace : VELHLSAttribute::TextAfterQuote, after);
    rest_.remove_prefix(after.size());
}

void VELHLSAttributes::Iterator::scanBare() {
    const std::string_view written = upToComma(rest_);
    rest_.remove_prefix(written.size());
    attribute_.value = velhls::withoutTrailing(written, velhls::blanks);
    attribute_.writtenValue = attribute_.value;
    // Of most values there is nothing more to say.
    if (!written.empty() && velhls::holdsNone(written, quotesAndBlanks)) return;
    if (attribute_.value.empty()) {
        fail(VELHLSAttribute::ValueMissing, attribute_.value);
    } else if (!velhls::holdsNone(attribute_.value, quotes)) {
        fail(VELHLSAttribute::QuoteInValue, firstOfSet(attribute_.value, quotes));
    } else if (!velhls::holdsNone(written, velhls::blanks)) {
        fail(VELHLSAttribute::WhiteSpace, firstOfSet(written, velhls::blanks));
    }
}

std::optional<VELHLSAttribute> VELHLSAttributes::find(std::string_view name) const {
    // Only what has the name is scanned: of the others it is enough to know where they end, which is as scan() has it.
    for (std::string_view rest = list_;;) {
        std::size_t nameEnd = 0;
        while (nameEnd < rest.size() && rest[nameEnd] != '=' && rest[nameEnd] != ',')
            ++nameEnd;
        if (nameEnd >= name.size() && !rest.empty() && trimmed(rest.substr(0, nameEnd)) == name)
            return *Iterator(rest);
        const std::size_t end = endOfPair(rest, nameEnd);
        if (end == rest.size()) return std::nullopt;
        rest.remove_prefix(end + 1);
    }
}
