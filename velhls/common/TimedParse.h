// Internal to the library, not installed: how a parse times itself.
#pragma once

#include <memory>
#include <utility>

#include "velhls/common/VELHLSParsingStatus.h"
#include "velhls/common/VELHLSStopWatch.h"

namespace velhls {

/// Runs the parse and writes its duration into the status' metrics, whatever the result is; an exception
/// passes through before they are written. Nothing can fail behind the parse, which has written its success.
template <typename Parse>
auto timedParse(VELHLSParsingStatus* status, Parse parse) {
    std::shared_ptr<VELHLSParsingMetrics> metrics;
    if (status != nullptr) {
        metrics = status->metrics != nullptr ? status->metrics : std::make_shared<VELHLSParsingMetrics>();
    }
    VELHLSStopWatch stopWatch;
    stopWatch.start();
    auto playlist = parse();
    stopWatch.stop();
    if (status != nullptr) {
        metrics->parseDuration = stopWatch.getDuration();
        status->metrics = std::move(metrics);
    }
    return playlist;
}

}  // namespace velhls
