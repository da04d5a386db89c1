// Internal to the library, not installed: how a parse times itself.
#pragma once

#include <memory>
#include <utility>

#include "velhls/common/VELHLSParsingStatus.h"
#include "velhls/common/VELHLSStopWatch.h"

namespace velhls {

/// Runs the parse and writes its duration into the status' metrics, whatever the result is; an exception
/// passes through before they are written. Nothing can fail after the parse, which has written its success. Without a
/// status the clock is not asked: that would take a fifteenth of the time of a short playlist.
template <typename Parse>
auto timedParse(VELHLSParsingStatus* status, Parse parse) {
    if (status == nullptr) return parse();
    auto metrics = status->metrics != nullptr ? status->metrics : std::make_shared<VELHLSParsingMetrics>();
    VELHLSStopWatch stopWatch;
    stopWatch.start();
    auto playlist = parse();
    stopWatch.stop();
    metrics->parseDuration = stopWatch.getDuration();
    status->metrics = std::move(metrics);
    return playlist;
}

}  // namespace velhls
