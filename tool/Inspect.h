#pragma once

#include <string>

#include "velhls/VELHLS.h"

namespace tool {

/// The model of a master playlist, for a person to read.
[[nodiscard]] std::string inspectMaster(const VELHLSParsedManifest& manifest);

/// The model of a media playlist, for a person to read. The status tells whether it had media patterns.
[[nodiscard]] std::string inspectMedia(const VELHLSMediaStream& stream, const VELHLSParsingStatus& status);

}  // namespace tool
