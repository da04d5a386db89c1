// Internal to the library, not installed: the tags that are records of a master playlist.
#pragma once

#include <memory>
#include <string_view>

#include "velhls/common/Reason.h"
#include "velhls/common/RecordMaker.h"
#include "velhls/common/TagLine.h"
#include "velhls/manifest/VELHLSManifestSessionData.h"
#include "velhls/manifest/VELHLSMediaStreamRendition.h"
#include "velhls/manifest/VELHLSMediaVariant.h"
#include "velhls/manifest/VELHLSZORStreamInformation.h"

namespace velhls {

// Each gives null, with the reason, for a record that is rejected. The maker may be null: the record then has memory of
// its own.

/// See VELHLSMediaStreamRendition::parse.
[[nodiscard]] std::shared_ptr<VELHLSMediaStreamRendition> readRendition(const TagLine& tagLine,
                                                                        RecordMaker* maker, Reason& why);

/// See VELHLSMediaVariant::parseVariant.
[[nodiscard]] std::shared_ptr<VELHLSMediaVariant> readVariant(const TagLine& tagLine,
                                                              std::string_view uriLine, RecordMaker* maker,
                                                              Reason& why);

/// See VELHLSManifestSessionData::parseSessionData.
[[nodiscard]] std::shared_ptr<VELHLSManifestSessionData> readSessionData(std::string_view line, Reason& why);

/// See VELHLSZORStreamInformation::parse. Null without a reason for one that is dropped.
[[nodiscard]] std::shared_ptr<VELHLSZORStreamInformation> readStreamInformation(const TagLine& tagLine,
                                                                                Reason& why);

}  // namespace velhls
