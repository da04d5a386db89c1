#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "velhls/common/VELHLSExport.h"

/// The nominal bit rates of one variant: ZOR-STREAM-INF (vendor extension). The i-th such tag of a playlist
/// belongs to its i-th EXT-X-STREAM-INF; see VELHLSParsedManifest. There is no text form: the tag is not
/// written back.
///
///     #ZOR-STREAM-INF:NOMINAL_VIDEO_BITRATE=4500000,    nominalVideoBitrate
///                     NOMINAL_AUDIO_BITRATE=128000      nominalAudioBitrate
///
/// The names are written with underscores, unlike the standard's attributes.
class VELHLS_API VELHLSZORStreamInformation {
  public:
    /// Reads a whole ZOR-STREAM-INF line. Returns a new entry, or null for another tag, a malformed attribute
    /// list, or two bit rates of 0; a playlist goes on without it, and VELHLSDiagnostics says why. Other attributes are ignored.
    ///
    /// Throws std::invalid_argument when a bit rate holds no number at its start, and std::out_of_range when
    /// it fits no signed 64-bit integer. Kept as is: a negative number is stored in two's complement.
    [[nodiscard]] static std::shared_ptr<VELHLSZORStreamInformation> parse(const std::string& line);

    /// True when at least one of the two bit rates is not 0.
    [[nodiscard]] bool validate() const;

    /// NOMINAL_VIDEO_BITRATE in bits per second; 0 when absent.
    std::uint64_t nominalVideoBitrate = 0;

    /// NOMINAL_AUDIO_BITRATE in bits per second; 0 when absent.
    std::uint64_t nominalAudioBitrate = 0;
};
