// Internal to the library, not installed: the rules that bind the records of one master playlist to each
// other.
#pragma once

#include "velhls/common/Recorder.h"
#include "velhls/manifest/VELHLSParsedManifest.h"

namespace velhls {

/// See VELHLSParsedManifest::validate. With a recorder all rules are looked at, and each group at most once for
/// what it lacks.
[[nodiscard]] bool keepsRules(const VELHLSParsedManifest& manifest, Recorder* recorder);

/// See VELHLSParsedManifest::sanitize.
void pairStreamInformation(VELHLSParsedManifest& manifest, Recorder* recorder);

}  // namespace velhls
