// Internal to the library, not installed: the parse functions of the master playlist's records, with a recorder
// and a maker that may be null. The public ones of the same records call these without.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "velhls/common/RecordMaker.h"
#include "velhls/common/Recorder.h"
#include "velhls/manifest/VELHLSManifestSessionData.h"
#include "velhls/manifest/VELHLSMediaStreamRendition.h"
#include "velhls/manifest/VELHLSMediaVariant.h"
#include "velhls/manifest/VELHLSZORStreamInformation.h"

namespace velhls {

/// See VELHLSMediaStreamRendition::parse.
[[nodiscard]] std::shared_ptr<VELHLSMediaStreamRendition> parseRendition(const std::string& line,
                                                                         RecordMaker* maker,
                                                                         Recorder* recorder);

/// See VELHLSMediaVariant::parseVariant.
[[nodiscard]] std::shared_ptr<VELHLSMediaVariant> parseVariant(std::string_view tagLine,
                                                               std::string_view uriLine, RecordMaker* maker,
                                                               Recorder* recorder);

/// See VELHLSManifestSessionData::parseSessionData.
[[nodiscard]] std::shared_ptr<VELHLSManifestSessionData> parseSessionData(const std::string& line,
                                                                          Recorder* recorder);

/// See VELHLSZORStreamInformation::parse.
[[nodiscard]] std::shared_ptr<VELHLSZORStreamInformation> parseStreamInformation(const std::string& line,
                                                                                 Recorder* recorder);

}  // namespace velhls
