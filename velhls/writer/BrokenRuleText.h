// Internal to the library, not installed: why a manifest whose records do not agree with each other cannot be written.
#pragma once

#include <string>

#include "velhls/manifest/ManifestRules.h"
#include "velhls/manifest/VELHLSParsedManifest.h"

namespace velhls {

/// The record that breaks the first of the rules, counted from 1 among those of its kind in the order in which they are
/// written, and what the parse would say of its line. There must be a broken rule.
[[nodiscard]] std::string textOf(const BrokenRules& broken, const VELHLSParsedManifest& manifest);

}  // namespace velhls
