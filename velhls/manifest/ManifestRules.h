// Internal to the library, not installed: the rules that bind the records of one master playlist to each
// other.
#pragma once

#include "velhls/manifest/VELHLSParsedManifest.h"

namespace velhls {

[[nodiscard]] bool groupReferencesResolve(const VELHLSParsedManifest& manifest);
[[nodiscard]] bool groupsOfEachTypeAgree(const VELHLSParsedManifest& manifest);
[[nodiscard]] bool sessionDataIsUnique(const VELHLSParsedManifest& manifest);
[[nodiscard]] bool sessionKeysAreUnique(const VELHLSParsedManifest& manifest);

}  // namespace velhls
