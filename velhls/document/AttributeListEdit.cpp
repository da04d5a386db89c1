#include "velhls/document/AttributeListEdit.h"

#include <algorithm>
#include <stdexcept>

#include "velhls/common/TextScan.h"
#include "velhls/document/VELHLSSyntax.h"

namespace velhls {
namespace {

using Definition = VELHLSAttributeDefinition;

[[noreturn]] void refuse(const std::string& name, const char* reason) {
    throw std::invalid_argument(name + ": " + reason);
}

void requireName(const VELHLSLine& line, const std::string& name) {
    const bool isKnown = line.definition != nullptr && line.definition->findAttribute(name) != nullptr;
    const bool isThere = !name.empty() && line.attributes().find(name).has_value();
    if (!isKnown && !isThere && !VELHLSSyntax::isAttributeName(name)) {
        throw std::invalid_argument("\"" + name + "\" is no attribute's name: expected A-Z, 0-9 and -");
    }
}

std::string inQuotes(const std::string& name, const std::string& value) {
    if (!VELHLSSyntax::isQuotable(value)) refuse(name, "a quoted string holds no quote and no line end");
    return '"' + value + '"';
}

std::string withoutQuotes(const std::string& name, const std::string& value) {
    if (!VELHLSSyntax::isEnumeratedString(value)) {
        refuse(name, "a value without quotes is not empty, and holds no comma, quote or white space");
    }
    return value;
}

std::string asGiven(const std::string& name, const std::string& value) {
    if (value.size() < 2 || value.front() != '"' || value.back() != '"') return withoutQuotes(name, value);
    return inQuotes(name, value.substr(1, value.size() - 2));
}

/// The last change of this name; null when there is none.
const VELHLSAttributeChange* changeOf(std::string_view name,
                                      const std::vector<VELHLSAttributeChange>& changes) {
    const auto change = std::find_if(changes.rbegin(), changes.rend(),
                                     [name](const VELHLSAttributeChange& each) { return each.name == name; });
    return change == changes.rend() ? nullptr : &*change;
}

std::string_view between(const char* start, const char* end) {
    return {start, static_cast<std::size_t>(end - start)};
}

const char* endOf(std::string_view text) {
    return text.data() + text.size();
}

/// True of a value whose second quote is missing.
bool isUnclosed(const VELHLSAttribute& attribute) {
    return attribute.quoted && attribute.writtenValue.size() < attribute.value.size() + 2;
}

/// The value, and what follows its second quote, if that is something.
std::string_view wholeValue(const VELHLSAttribute& attribute) {
    const std::string_view after = between(endOf(attribute.writtenValue), endOf(attribute.text));
    return isBlank(after) ? attribute.writtenValue
                          : between(attribute.writtenValue.data(), endOf(attribute.text));
}

bool lacksEquals(const VELHLSAttribute& attribute) {
    return attribute.text.find('=') == std::string_view::npos;
}

}  // namespace

AttributeListEdit::AttributeListEdit(const VELHLSLine& line,
                                     const std::vector<VELHLSAttributeChange>& changes)
    : line_(line), replaced_(line.value.substr(0, 0)) {
    for (const VELHLSAttribute& attribute : line.attributes())
        entries_.push_back({attribute});
    change(changes);
    add(changes);

    const auto changed = [](const Entry& entry) { return entry.changes; };
    const auto first = std::find_if(entries_.begin(), entries_.end(), changed);
    const auto last = std::find_if(entries_.rbegin(), entries_.rend(), changed);
    const auto firstPlace = static_cast<std::size_t>(first - entries_.begin());
    const auto endPlace = static_cast<std::size_t>(entries_.rend() - last);
    if (!added_.empty()) {
        replaceEntries(firstPlace, entries_.size());
    } else if (firstPlace < endPlace) {
        replaceEntries(firstPlace, endPlace);
    }
}

/// The attribute as it will stand.
std::string AttributeListEdit::Entry::text() const {
    if (!changes) return std::string(attribute.text);
    if (lacksEquals(attribute)) return std::string(attribute.name) + "=" + value;
    const std::string_view replaced = wholeValue(attribute);
    const std::string_view before = between(attribute.text.data(), replaced.data());
    const std::string_view after = between(endOf(replaced), endOf(attribute.text));
    return std::string(before).append(value).append(after);
}

/// The value of a change as it is written.
std::string AttributeListEdit::written(const VELHLSAttributeChange& change) const {
    const std::string& value = *change.value;
    const Definition* const definition =
        line_.definition == nullptr ? nullptr : line_.definition->findAttribute(change.name);
    if (definition == nullptr || definition->type == Definition::ClientValue)
        return asGiven(change.name, value);
    if (definition->type == Definition::QuotedString) return inQuotes(change.name, value);
    const bool isWord = definition->type != Definition::QuotedOrEnumerated || definition->allows(value);
    return isWord ? withoutQuotes(change.name, value) : inQuotes(change.name, value);
}

void AttributeListEdit::change(const std::vector<VELHLSAttributeChange>& changes) {
    for (Entry& entry : entries_) {
        const VELHLSAttributeChange* const change = changeOf(entry.attribute.name, changes);
        if (change == nullptr) continue;
        if (change->value) entry.value = written(*change);
        entry.changes = !change->value || entry.value != wholeValue(entry.attribute);
    }
}

void AttributeListEdit::add(const std::vector<VELHLSAttributeChange>& changes) {
    for (const VELHLSAttributeChange& change : changes) {
        requireName(line_, change.name);
        const bool isThere = line_.attributes().find(change.name).has_value();
        if (isThere || !change.value || changeOf(change.name, changes) != &change) continue;
        added_.push_back(change.name + "=" + written(change));
    }
    if (!added_.empty() && !entries_.empty()) makeRoomForAdded();
}

/// A comma that ends the list is taken for that of the first attribute that is added.
void AttributeListEdit::makeRoomForAdded() {
    Entry& last = entries_.back();
    if (last.attribute.text.empty()) last.changes = true;
    if (!last.changes && isUnclosed(last.attribute)) {
        refuse(std::string(last.attribute.name), "nothing can be added after a quote that is not closed");
    }
}

void AttributeListEdit::replaceEntries(std::size_t first, std::size_t end) {
    const bool isOneValue = first + 1 == end && added_.empty() && !entries_[first].isRemoved();
    if (isOneValue && !lacksEquals(entries_[first].attribute)) {
        replaced_ = wholeValue(entries_[first].attribute);
        replacement_ = entries_[first].value;
        return;
    }
    replacement_ = joined(first, end);
    if (first == end) {
        replaced_ = line_.value.substr(line_.value.size());
        const char* const before = line_.hasColon ? "" : ":";
        replacement_.insert(0, entries_.empty() ? before : ",");
        return;
    }
    const char* start = entries_[first].attribute.text.data();
    const char* stop = endOf(entries_[end - 1].attribute.text);
    if (replacement_.empty() && end < entries_.size()) {
        stop = entries_[end].attribute.text.data();
    } else if (replacement_.empty() && first > 0) {
        start = endOf(entries_[first - 1].attribute.text);
    }
    replaced_ = between(start, stop);
}

/// What these attributes become, and after them those that are added, with commas between them.
std::string AttributeListEdit::joined(std::size_t first, std::size_t end) const {
    std::vector<std::string> texts;
    for (std::size_t place = first; place < end; ++place) {
        if (!entries_[place].isRemoved()) texts.push_back(entries_[place].text());
    }
    texts.insert(texts.end(), added_.begin(), added_.end());
    std::string all;
    for (const std::string& text : texts)
        all.append(all.empty() ? "" : ",").append(text);
    return all;
}

}  // namespace velhls
