// Internal to the library, not installed: the one table of what the readers do with a tag.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "velhls/common/Names.h"

namespace velhls {

/// What a tag means for a reader. A tag may have several uses.
enum TagUse : unsigned {
    ofMasterPlaylist = 1,  ///< only master playlists have it
    ofMediaPlaylist = 2,   ///< only media playlists have it, by RFC 8216 or by a later document
    ofVariant = 4,         ///< makes a variant
    ofSegment = 8,         ///< describes one segment, which has it once
    opensSegment = 16,     ///< begins a segment where it stands between segments, with a colon
    inPatternBody = 32,    ///< may stand in a media pattern, with a colon
};

struct UsedTag {
    std::string_view name;
    unsigned uses;
};

inline constexpr std::array<UsedTag, 34> usedTags = {{
    {tag::streamInf, ofMasterPlaylist | ofVariant},
    {tag::iFrameStreamInf, ofMasterPlaylist | ofVariant},
    {tag::media, ofMasterPlaylist},
    {tag::sessionData, ofMasterPlaylist},
    {tag::sessionKey, ofMasterPlaylist},
    {"EXT-X-CONTENT-STEERING", ofMasterPlaylist},
    {tag::zorStreamInf, ofMasterPlaylist},
    {tag::extInf, ofMediaPlaylist | ofSegment | inPatternBody},
    {tag::byteRange, ofMediaPlaylist | ofSegment | opensSegment | inPatternBody},
    {tag::key, ofMediaPlaylist | ofSegment | opensSegment | inPatternBody},
    {tag::map, ofMediaPlaylist | ofSegment | opensSegment | inPatternBody},
    {tag::programDateTime, ofMediaPlaylist | ofSegment | opensSegment | inPatternBody},
    {tag::cueOut, ofMediaPlaylist | ofSegment | opensSegment | inPatternBody},
    {tag::cueOutCont, ofMediaPlaylist | ofSegment | opensSegment | inPatternBody},
    {tag::cueIn, ofMediaPlaylist | ofSegment},
    {tag::discontinuity, ofMediaPlaylist | ofSegment},
    {tag::targetDuration, ofMediaPlaylist},
    {tag::mediaSequence, ofMediaPlaylist},
    {tag::discontinuitySequence, ofMediaPlaylist},
    {tag::endList, ofMediaPlaylist},
    {tag::playlistType, ofMediaPlaylist},
    {tag::iFramesOnly, ofMediaPlaylist},
    {"EXT-X-DATERANGE", ofMediaPlaylist},
    {"EXT-X-GAP", ofMediaPlaylist},
    {"EXT-X-BITRATE", ofMediaPlaylist},
    {"EXT-X-PART", ofMediaPlaylist},
    {"EXT-X-PART-INF", ofMediaPlaylist},
    {"EXT-X-SERVER-CONTROL", ofMediaPlaylist},
    {"EXT-X-SKIP", ofMediaPlaylist},
    {"EXT-X-ALLOW-CACHE", ofMediaPlaylist},
    {tag::zorPatternStart, ofMediaPlaylist},
    {tag::zorPatternEnd, ofMediaPlaylist},
    {tag::zorPatternRepeat, ofMediaPlaylist},
    {tag::zorDefineIncrement, ofMediaPlaylist | inPatternBody},
}};

/// The position of the tag with this name in the table, or the table's size.
[[nodiscard]] constexpr std::size_t indexOfUsedTag(std::string_view name) {
    std::size_t index = 0;
    while (index < usedTags.size() && usedTags[index].name != name)
        ++index;
    return index;
}

/// Whether the tag with this name has the use.
template <unsigned use>
[[nodiscard]] bool hasUse(std::string_view name) {
    constexpr std::size_t count = [] {
        std::size_t found = 0;
        for (const UsedTag& tag : usedTags)
            found += (tag.uses & use) != 0 ? 1 : 0;
        return found;
    }();
    static constexpr std::array<std::string_view, count> names = [] {
        std::array<std::string_view, count> made = {};
        std::size_t index = 0;
        for (const UsedTag& tag : usedTags) {
            if ((tag.uses & use) != 0) made[index++] = tag.name;
        }
        return made;
    }();
    for (const std::string_view candidate : names) {
        if (candidate == name) return true;
    }
    return false;
}

}  // namespace velhls
