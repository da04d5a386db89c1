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

/// False when the name meets too many others.
bool setVariable(VELHLSDefineMap& defines, std::string name, std::string_view value) {
    if (!hasRoomFor(defines, name)) return false;
    const std::size_t buckets = defines.bucket_count();
    defines.insert_or_assign(std::move(name), std::string(value));
    return defines.bucket_count() == buckets || isSpreadOut(defines);
}

/// The forms that take a variable from elsewhere have no NAME.
bool lacksName(const AttributeList& attributes, const TagLine& tagLine, Reason& why) {
    for (const std::string_view other : {"IMPORT", "QUERYPARAM"}) {
        if (attributes.find(other))
            return why(Rule::defineNameMissing, tagLine.name,
                       std::string(other) + ", which the library does not read");
    }
    return why.missing(Rule::defineNameMissing, tagLine.name);
}

}  // namespace

bool readDefineTag(const TagLine& tagLine, VELHLSDefineMap& defines, Reason& why) {
    AttributeList attributes;
    if (!attributes.read(tagLine.value, why)) return false;
    const std::optional<std::string_view> name = attributes.find(attribute::name);
    if (!name) return lacksName(attributes, tagLine, why);
    const std::optional<std::string_view> value = attributes.find(attribute::value);
    if (!value) return why.missing(Rule::defineValueMissing, tagLine.name);
    return setVariable(defines, std::string(*name), *value) || why(Rule::defineNamesCollide, *name);
}

}  // namespace velhls
