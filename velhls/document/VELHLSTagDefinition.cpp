#include "velhls/document/VELHLSTagDefinition.h"

#include "velhls/common/TextScan.h"
#include "velhls/document/FormatTables.h"
#include "velhls/document/TagLookup.h"

namespace {

bool isNamed(const VELHLSAttributeDefinition& row, std::string_view name) {
    if (row.name.back() != '*') return row.name == name;
    return velhls::startsWith(name, row.name.substr(0, row.name.size() - 1));
}

}  // namespace

const VELHLSAttributeDefinition* VELHLSTagDefinition::findAttribute(std::string_view attributeName) const {
    for (const VELHLSAttributeDefinition& row : attributes) {
        if (isNamed(row, attributeName)) return &row;
    }
    return nullptr;
}

VELHLSRows<VELHLSTagDefinition> VELHLSTagDefinition::all() {
    return {velhls::tagTable.data(), velhls::tagTable.size()};
}

const VELHLSTagDefinition* VELHLSTagDefinition::find(std::string_view name) {
    const std::size_t index = velhls::findTag(name);
    return index == velhls::noTag ? nullptr : &velhls::tagTable[index];
}
