#pragma once

#include <optional>
#include <vector>

#include "velhls/common/VELHLSExport.h"
#include "velhls/comparison/VELHLSChange.h"
#include "velhls/document/VELHLSDocument.h"
#include "velhls/document/VELHLSFinding.h"
#include "velhls/document/VELHLSRule.h"

/// What changed from one version of a playlist to the next, and which of it RFC 8216 forbids.
///
///     const auto comparison = VELHLSComparison::compare(old, now);
///     if (!comparison) return;  // of different kinds, or no playlists
///     for (const VELHLSFinding& finding : comparison->findings) std::cout << finding.line << ": " << finding.message << "\n";
///
/// Things are the same by what they mean: segments by media sequence number, or by their URIs where these tell that the numbers are
/// wrong; variants by URI, then by bandwidth, resolution, codecs and groups; renditions by TYPE, GROUP-ID and NAME; date ranges by ID;
/// attributes by name. Keys, maps and dates are what is in force at a segment, so that a tag that is written anew at the start of a
/// window is no change. Media patterns are not expanded.
///
/// Only what lies between the versions is found, and not what is wrong with either: VELHLSStandard checks one text.
class VELHLS_CHECK_API VELHLSComparison {
  public:
    /// What is known of the two versions beside their texts.
    struct Options {
        /// Seconds from the moment when the old version was there to the moment when the new one was. Without it nothing is said
        /// of time, and two equal versions are never a finding.
        std::optional<double> elapsedSeconds;
    };

    /// What changed, in the order of the new version's lines: first what is of the whole playlist, then segments, then date ranges.
    std::vector<VELHLSChange> changes;

    /// The changes that are forbidden, in the order of their places, which are in the new version; `related` is in the old one. An error is
    /// a clause that must be kept and is not, a warning what the texts let one infer, a note what may be meant so. Of one rule there are
    /// at most 100 findings, and the last of them tells how many more there were. A master playlist may change, so there are none.
    std::vector<VELHLSFinding> findings;

    /// Compares two versions of a playlist; nothing when one is a master and the other a media playlist, and when no tag tells what one
    /// of them is.
    ///
    /// Takes time linear in the texts but for sorting, and memory linear in them; throws nothing but std::bad_alloc.
    [[nodiscard]] static std::optional<VELHLSComparison> compare(const VELHLSDocument& old,
                                                                 const VELHLSDocument& now,
                                                                 const Options& options = {});

    /// All rules that a comparison may find, in the order of the documentation.
    [[nodiscard]] static std::vector<VELHLSRule> rules();
};
