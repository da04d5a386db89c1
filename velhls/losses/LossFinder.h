// Internal to the library, not installed: runs the functions of all losses over a playlist that was read.
#pragma once

#include <vector>

#include "velhls/common/Reading.h"
#include "velhls/document/VELHLSRule.h"
#include "velhls/losses/Loss.h"
#include "velhls/losses/LossFindings.h"
#include "velhls/losses/ReadLines.h"

namespace velhls {

/// The rules of all losses, in the order of the documentation.
[[nodiscard]] std::vector<VELHLSRule> rulesOfLosses();

/// What is lost of a line of a master, or of a media playlist.
void findLossesOfMasterLine(const LossLine& line, LossFindings& findings);
void findLossesOfMediaLine(const LossLine& line, LossFindings& findings);

/// What is lost of a playlist as a whole.
void findLossesOfPlaylist(const LossRecords& records, LossFindings& findings);

/// What is lost of the segments and patterns of a media playlist, and of what stands after its end.
void findLossesOfSegments(const VELHLSMediaStream& stream, const Reading& reading, const TextLines& textLines,
                          const ReadLines& lines, LossFindings& findings);

}  // namespace velhls
