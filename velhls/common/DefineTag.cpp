#include "velhls/common/DefineTag.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "velhls/common/AttributeList.h"
#include "velhls/common/Names.h"

namespace velhls {
namespace {

/// The hash that the map uses is known to all: names can be chosen that meet in one bucket, where each of them would be
/// compared with all the others, now and whenever it is looked up.
float mostInOneBucket(const VELHLSDefineMap& defines) {
    // A caller who asked for larger buckets has them filled as far.
    return std::max(1.0F, defines.max_load_factor()) *
           static_cast<float>(VELHLSUtility::maximumCollidingNames);
}

bool hasRoomFor(const VELHLSDefineMap& defines, const std::string& name) {
    if (defines.size() < VELHLSUtility::maximumCollidingNames) return true;
    const auto size = static_cast<float>(defines.bucket_size(defines.bucket(name)));
    return size < mostInOneBucket(defines) || defines.count(name) != 0;
}

/// Names can be chosen that meet only when the map has grown.
bool isSpreadOut(const VELHLSDefineMap& defines) {
    const float most = mostInOneBucket(defines);
    for (std::size_t bucket = 0; bucket < defines.bucket_count(); ++bucket) {
        if (static_cast<float>(defines.bucket_size(bucket)) > most) return false;
    }
    return true;
}

enum class Outcome { added, replaced, refused };

Outcome setVariable(VELHLSDefineMap& defines, std::string name, std::string_view value) {
    if (!hasRoomFor(defines, name)) return Outcome::refused;
    const std::size_t buckets = defines.bucket_count();
    const bool isNew = defines.insert_or_assign(std::move(name), std::string(value)).second;
    if (defines.bucket_count() != buckets && !isSpreadOut(defines)) return Outcome::refused;
    return isNew ? Outcome::added : Outcome::replaced;
}

}  // namespace

bool takeDefineTag(const TagLine& tagLine, VELHLSDefineMap& defines, Recorder* recorder) {
    AttributeList list;
    if (!list.parse(tagLine.value, recorder)) return false;
    if (recorder != nullptr) recorder->attributesRead(tagLine.name, list);
    const std::optional<std::string_view> name = list.find(attribute::name);
    if (!name) return rejectMissing(recorder, Rule::defineNameMissing, tagLine.name);
    const std::optional<std::string_view> value = list.find(attribute::value);
    if (!value) return rejectMissing(recorder, Rule::defineValueMissing, tagLine.name);
    const Outcome outcome = setVariable(defines, std::string(*name), *value);
    if (outcome == Outcome::refused) {
        // With a recorder the reading goes on, and is not to meet the full bucket again and again.
        if (recorder != nullptr) defines.clear();
        return reject(recorder, Rule::defineNamesCollide, *name);
    }
    if (recorder != nullptr) {
        if (outcome == Outcome::replaced) recorder->report(Rule::defineReplaced, *name, {});
        recorder->report(Rule::defineNotWritten, tagLine.name, {});
    }
    return true;
}

}  // namespace velhls
