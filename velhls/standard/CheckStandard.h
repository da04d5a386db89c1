// Internal to the library, not installed: checks a document against the standard.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "velhls/document/BoundedFindings.h"
#include "velhls/document/VELHLSDocument.h"
#include "velhls/document/VELHLSFinding.h"
#include "velhls/standard/StandardRule.h"

namespace velhls {

/// Appends what the profile finds in the document, in the order of the places. Takes time linear in the text but for sorting, and memory linear in
/// it; of one rule there are at most so many findings, and the last tells how many more there were.
/// The kind may be another than the document's own.
void checkStandard(const VELHLSDocument& document, VELHLSDocument::Kind kind, StandardProfile profile,
                   std::vector<VELHLSFinding>& findings,
                   std::size_t mostOfOneRule = BoundedFindings::mostOfOneRule);

/// The lowest EXT-X-VERSION that has all that the playlist uses, by the profile.
[[nodiscard]] std::uint64_t neededVersion(const VELHLSDocument& document, VELHLSDocument::Kind kind,
                                          StandardProfile profile);

/// All rules that the profile may find, in the order of the documentation.
[[nodiscard]] std::vector<StandardRule> rulesOfStandard(StandardProfile profile);

}  // namespace velhls
