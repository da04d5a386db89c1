#include "velhls/fixes/FixTable.h"

#include <algorithm>
#include <iterator>

#include "velhls/fixes/FaultyText.h"

namespace velhls {
namespace {

/// Most makers look at their whole line, which may be long and have as many faults.
constexpr std::size_t mostOfOneLine = 16;

/// The entry of a rule; null for one that has none.
const FixEntry* entryOf(std::string_view ruleId) {
    for (const FixTable& table :
         {listFixes(), lineFixes(), segmentFixes(), keyFixes(), masterFixes(), groupFixes()}) {
        const auto* const found = std::find_if(
            table.begin(), table.end(), [ruleId](const FixEntry& entry) { return entry.rule == ruleId; });
        if (found != table.end()) return found;
    }
    return nullptr;
}

bool hasList(const VELHLSLine& line) {
    return line.definition != nullptr && line.definition->form == VELHLSTagDefinition::AttributeList;
}

/// White space and commas too many are gone before anything else is looked at: the models read an attribute with white space
/// before its name as another one.
bool tidies(const Fault& fault) {
    if (fault.finding.profile != "library" || !hasList(fault.line)) return false;
    if (!fault.text.isNewList(fault.line.number)) return fault.text.isListTidied();
    fault.safe("removes white space and commas that divide nothing from the attributes",
               tidyList(fault.document(), fault.line));
    fault.text.setListTidied(!fault.fixes.empty());
    return fault.text.isListTidied();
}

void addFixes(FaultyText& text, const FixEntry& entry, VELHLSFinding& finding) {
    if (finding.line > text.document().lineCount()) return;
    const Fault fault = {text, finding, text.document().line(finding.line), finding.fixes};
    if (!tidies(fault)) entry.make(fault);
}

}  // namespace

void addFixes(const VELHLSDocument& document, VELHLSDocument::Kind kind,
              std::vector<VELHLSFinding>& findings) {
    FaultyText text(document, kind);
    const FixEntry* entry = nullptr;
    std::string_view rule;
    std::size_t line = 0;
    std::size_t ofLine = 0;
    for (VELHLSFinding& finding : findings) {
        ofLine = finding.line == line ? ofLine + 1 : 1;
        line = finding.line;
        if (finding.ruleId != rule) {
            rule = finding.ruleId;
            entry = entryOf(rule);
        }
        if (entry != nullptr && ofLine <= mostOfOneLine) addFixes(text, *entry, finding);
    }
}

std::string_view whatFixesDo(std::string_view ruleId) {
    const FixEntry* const entry = entryOf(ruleId);
    return entry == nullptr ? std::string_view() : entry->what;
}

}  // namespace velhls
