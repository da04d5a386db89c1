// Internal to the library, not installed: what a check finds of the rules that have fixes, however much it is.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "velhls/diagnostics/VELHLSDiagnostics.h"
#include "velhls/document/VELHLSDocument.h"

namespace velhls {

/// The findings with their fixes: of the profiles of the standard all, of the library's why it rejects the text; of one
/// rule so many.
[[nodiscard]] std::vector<VELHLSFinding> findingsToFix(
    const VELHLSDocument& document, VELHLSDiagnostics::PlaylistKind kind,
    const std::vector<VELHLSDiagnostics::Profile>& profiles, std::size_t mostOfOneRule);

/// How many findings above a note rfc8216, rfc8216bis and the others of these profiles have that are of a standard.
[[nodiscard]] std::vector<std::size_t> weightyFindings(
    const VELHLSDocument& document, VELHLSDiagnostics::PlaylistKind kind,
    const std::vector<VELHLSDiagnostics::Profile>& profiles);

}  // namespace velhls
