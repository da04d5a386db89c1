#pragma once

#include <string>

#include "velhls/VELHLS.h"

namespace tool {

/// The model of a master playlist, for a person to read.
[[nodiscard]] std::string inspectMaster(const VELHLSParsedManifest& manifest);

/// The model of a media playlist, for a person to read. The status tells whether it had media patterns.
[[nodiscard]] std::string inspectMedia(const VELHLSMediaStream& stream, const VELHLSParsingStatus& status);

/// The whole model of a playlist of either kind as JSON, every field of it. The schema is
/// docs/schemas/inspect-1.schema.json.
[[nodiscard]] std::string inspectAsJson(const VELHLSParsedManifest& manifest);
[[nodiscard]] std::string inspectAsJson(const VELHLSMediaStream& stream, const VELHLSParsingStatus& status);

}  // namespace tool
