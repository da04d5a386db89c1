#include "velhls/diagnostics/TagKinds.h"

#include <algorithm>
#include <array>

#include "velhls/common/Names.h"

namespace velhls {
namespace {

constexpr std::array<std::string_view, 2> variantTags = {tag::streamInf, tag::iFrameStreamInf};

constexpr std::array<std::string_view, 5> otherMasterTags = {tag::media, tag::sessionData, tag::sessionKey,
                                                             "EXT-X-CONTENT-STEERING", tag::zorStreamInf};

constexpr std::array<std::string_view, 27> mediaTags = {tag::extInf,
                                                        tag::targetDuration,
                                                        tag::mediaSequence,
                                                        tag::discontinuitySequence,
                                                        tag::endList,
                                                        tag::playlistType,
                                                        tag::iFramesOnly,
                                                        tag::byteRange,
                                                        tag::discontinuity,
                                                        tag::key,
                                                        tag::map,
                                                        tag::programDateTime,
                                                        "EXT-X-DATERANGE",
                                                        "EXT-X-GAP",
                                                        "EXT-X-BITRATE",
                                                        "EXT-X-PART",
                                                        "EXT-X-PART-INF",
                                                        "EXT-X-SERVER-CONTROL",
                                                        "EXT-X-SKIP",
                                                        tag::cueIn,
                                                        tag::cueOut,
                                                        tag::cueOutCont,
                                                        "EXT-X-ALLOW-CACHE",
                                                        tag::zorPatternStart,
                                                        tag::zorPatternEnd,
                                                        tag::zorPatternRepeat,
                                                        tag::zorDefineIncrement};

template <std::size_t size>
bool holds(const std::array<std::string_view, size>& names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

}  // namespace

bool isVariantTag(std::string_view name) {
    return holds(variantTags, name);
}

bool isMasterTag(std::string_view name) {
    return isVariantTag(name) || holds(otherMasterTags, name);
}

bool isMediaTag(std::string_view name) {
    return holds(mediaTags, name);
}

}  // namespace velhls
