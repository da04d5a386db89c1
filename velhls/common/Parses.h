// Internal to the library, not installed: what the parses of both kinds of playlist have in common.
#pragma once

#include <memory>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "velhls/common/Reading.h"
#include "velhls/common/ReasonText.h"
#include "velhls/common/VELHLSParsingStatus.h"
#include "velhls/common/VELHLSReason.h"
#include "velhls/common/VELHLSStopWatch.h"

namespace velhls {

/// Runs the parse of a stream and writes its duration into the status' metrics, whatever the result is; an exception
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

/// Runs the parse of a text. One that is rejected is read once more to find the reason, if that is wanted: so it costs
/// nothing where the playlist is accepted.
template <typename Parse, typename Read>
auto reasonedParse(std::string_view text, VELHLSReason* reason, Parse parse, Read read) {
    decltype(parse()) playlist = nullptr;
    try {
        playlist = parse();
    } catch (const std::logic_error&) {
        // A number that cannot be converted. The second reading takes it for a reason.
    }
    if (playlist != nullptr || reason == nullptr) return playlist;
    Reading reading(text, Reading::Extent::toFirstRejection);
    static_cast<void>(read(text, reading));
    *reason = reasonOf(text, reading.rejections().front());
    return playlist;
}

}  // namespace velhls
