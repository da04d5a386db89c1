#include "velhls/common/DefineTag.h"

#include <optional>
#include <string>
#include <string_view>

#include "velhls/common/AttributeList.h"
#include "velhls/common/Names.h"

namespace velhls {

bool takeDefineTag(const TagLine& tagLine, VELHLSDefineMap& defines, Recorder* recorder) {
    AttributeList list;
    if (!list.parse(tagLine.value, recorder)) return false;
    if (recorder != nullptr) recorder->attributesRead(tagLine.name, list);
    const std::optional<std::string_view> name = list.find(attribute::name);
    if (!name) return rejectMissing(recorder, Rule::defineNameMissing, tagLine.name);
    const std::optional<std::string_view> value = list.find(attribute::value);
    if (!value) return rejectMissing(recorder, Rule::defineValueMissing, tagLine.name);
    const bool isNew = defines.insert_or_assign(std::string(*name), std::string(*value)).second;
    if (recorder != nullptr) {
        if (!isNew) recorder->report(Rule::defineReplaced, *name, {});
        recorder->report(Rule::defineNotWritten, tagLine.name, {});
    }
    return true;
}

}  // namespace velhls
