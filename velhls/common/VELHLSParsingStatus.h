#pragma once

#include <memory>
#include <string>

#include "velhls/common/VELHLSParsingError.h"
#include "velhls/common/VELHLSParsingMetrics.h"

/// What a parse tells its caller besides its result. The caller owns it; the library only writes into it.
///
///     VELHLSParsingStatus status;
///     auto manifest = VELHLSParsedManifest::parseManifest(input, &status);
///     //  manifest null      the playlist was rejected; `error` and `message` may be as they were
///     //  status.error == VELHLSParsingErrorNone      the parse succeeded
///     //  status.metrics->parseDuration               seconds, on success and on a null result alike
///
/// A status may be kept across parses: fields that a parse does not write keep their values. When an exception leaves a
/// parse, all but `hasMediaPatterns` are as they were. One status must not be shared by parses that run at the same
/// time.
struct VELHLSParsingStatus {
    /// Set when a media pattern tag (vendor extension) was met. Never cleared by the library and never set by
    /// the master playlist parser.
    bool hasMediaPatterns = false;

    /// Outcome of the last parse that stored one. A fresh status holds 0, which is neither success nor any
    /// failure. Kept as is: a failed master playlist parse, and a media playlist parse that fails for any
    /// other reason than a media pattern tag, leave this field as it was, so look at the parse's result
    /// first.
    VELHLSParsingError error = static_cast<VELHLSParsingError>(0);

    /// The text that goes with `error`: for VELHLSParsingErrorMediaPattern the offending playlist line.
    /// Success does not clear it.
    std::string message;

    /// Timing of the last parse. Created by the parse when null, otherwise reused and overwritten. Not
    /// written when an exception leaves the parse.
    std::shared_ptr<VELHLSParsingMetrics> metrics;
};
