// Internal to the library, not installed: how a parse times itself.
#pragma once

#include <memory>

#include "velhls/common/VELHLSParsingStatus.h"
#include "velhls/common/VELHLSStopWatch.h"

namespace velhls {

/// Runs the parse and writes its duration into the status' metrics, whatever the result is; an exception
/// passes through before they are written. Without a status the clock is not asked: that would take a fifteenth of the
/// time of a short playlist.
template <typename Parse>
auto timedParse(VELHLSParsingStatus* status, Parse parse) {
    if (status == nullptr) return parse();
    VELHLSStopWatch stopWatch;
    stopWatch.start();
    auto playlist = parse();
    stopWatch.stop();
    if (status->metrics == nullptr) status->metrics = std::make_shared<VELHLSParsingMetrics>();
    status->metrics->parseDuration = stopWatch.getDuration();
    return playlist;
}

}  // namespace velhls
