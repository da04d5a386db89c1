#include "velhls/common/DefineTag.h"

#include <optional>

#include "velhls/common/AttributeList.h"
#include "velhls/common/Names.h"

namespace velhls {

bool takeDefineTag(std::string_view attributes, VELHLSDefineMap& defines) {
    const std::optional<AttributeList> list = AttributeList::parse(attributes);
    if (!list) return false;
    const std::optional<std::string_view> name = list->find(attribute::name);
    const std::optional<std::string_view> value = list->find(attribute::value);
    if (!name || !value) return false;
    defines.insert_or_assign(std::string(*name), std::string(*value));
    return true;
}

}  // namespace velhls
