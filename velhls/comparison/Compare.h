// Internal to the library, not installed: what two versions differ in.
#pragma once

#include "velhls/comparison/DateRanges.h"
#include "velhls/comparison/Difference.h"
#include "velhls/comparison/MediaVersion.h"
#include "velhls/comparison/SegmentMatch.h"
#include "velhls/document/VELHLSDocument.h"
#include "velhls/document/VELHLSStructure.h"

namespace velhls {

/// The tags that are of the whole of a playlist, master or media.
void compareTags(const VELHLSDocument& before, const VELHLSDocument& now, Differences& differences);

/// The segments that both versions have, and those that one has.
void compareSegments(const MediaVersion& before, const MediaVersion& now, const SegmentMatch& match,
                     Differences& differences);

void compareDateRanges(const DateRanges& before, const DateRanges& now, Differences& differences);

/// What only master playlists have.
void compareMasters(const VELHLSStructure& before, const VELHLSStructure& now, Differences& differences);

}  // namespace velhls
