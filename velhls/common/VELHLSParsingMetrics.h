#pragma once

/// What a parse measured of itself.
struct VELHLSParsingMetrics {
    /// Duration of the last parse in seconds, on a monotonic clock.
    double parseDuration = 0.0;
};
