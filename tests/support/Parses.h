#pragma once

#include <istream>
#include <memory>

#include "velhls/VELHLS.h"

namespace playlist {

/// The parses of a stream, to be handed over: their names alone stand for those of a text too.
inline constexpr std::shared_ptr<VELHLSParsedManifest> (*parseMaster)(std::istream&, VELHLSParsingStatus*) =
    VELHLSParsedManifest::parseManifest;
inline constexpr std::shared_ptr<VELHLSMediaStream> (*parseMedia)(std::istream&, VELHLSParsingStatus*) =
    VELHLSMediaStream::parseMediaStream;

}  // namespace playlist
