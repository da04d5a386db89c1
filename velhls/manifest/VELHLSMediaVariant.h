#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "velhls/common/VELHLSExport.h"
#include "velhls/manifest/VELHLSMediaStreamRendition.h"

class VELHLSMediaStream;

/// One variant of a master playlist: EXT-X-STREAM-INF with the URI line after it (RFC 8216, section
/// 4.3.4.2), or EXT-X-I-FRAME-STREAM-INF (section 4.3.4.3).
///
///     #EXT-X-STREAM-INF:BANDWIDTH=5605600,            bandwidth           peak bits per second
///                       AVERAGE-BANDWIDTH=4800000,    averageBandwidth    bits per second
///                       CODECS="avc1.64001f",         codecs
///                       RESOLUTION=1280x720,          resolution          kept as text
///                       PROGRAM-ID=1,                 programId
///                       AUDIO="aac",                  groupIds[Audio]
///                       SUBTITLES="subs"              groupIds[Subtitles]
///     video/720p.m3u8                                 uri
class VELHLS_API VELHLSMediaVariant {
  public:
    /// A variant without anything, to be filled member by member; it validates once it has a bandwidth and a URI.
    VELHLSMediaVariant() = default;

    /// Stores its arguments and checks nothing; no groups, nominal bit rates 0. The media stream is shared.
    ///
    ///     VELHLSMediaVariant low(800000,                       // bandwidth
    ///                            0,                            // averageBandwidth: absent
    ///                            "avc1.42c01e,mp4a.40.2",      // codecs
    ///                            "640x360",                    // resolution
    ///                            "low/video.m3u8",             // uri
    ///                            nullptr,                      // mediaStream: none attached
    ///                            false,                        // isIFrame
    ///                            0);                           // programId: absent
    ///     low.groupIds[VELHLSMediaStreamRendition::Audio] = "aac";
    VELHLSMediaVariant(std::uint64_t bandwidth, std::uint64_t averageBandwidth, const std::string& codecs,
                       const std::string& resolution, const std::string& uri,
                       std::shared_ptr<VELHLSMediaStream> mediaStream, bool isIFrame,
                       std::uint32_t programId);

    /// Reads a whole tag line, and the line that followed it: its URI for EXT-X-STREAM-INF, and the empty
    /// string for EXT-X-I-FRAME-STREAM-INF, whose URI is an attribute. Returns a new variant, which
    /// validates, or null when they are not acceptable: an empty URI line for EXT-X-STREAM-INF, a URI line
    /// that is not empty for EXT-X-I-FRAME-STREAM-INF, another tag, a malformed attribute list, or a variant
    /// that does not validate. Which of these it was tells the parse of a playlist: see VELHLSReason.
    ///
    /// Throws std::invalid_argument when BANDWIDTH, AVERAGE-BANDWIDTH or PROGRAM-ID hold no number at their
    /// start, and std::out_of_range when it fits no signed 64-bit (PROGRAM-ID: 32-bit) integer.
    ///
    /// Kept as is: text after a number is ignored ("12kbit" is 12), and a negative number is stored in two's
    /// complement ("-1" is 2^64 - 1). Of a line that is neither of the two tags, all after its first
    /// character is read as attributes, whose numbers may throw, before the result is null. The URI line is
    /// taken whatever it holds, a tag included. A URI attribute of EXT-X-STREAM-INF is ignored, as are all
    /// other attributes, FRAME-RATE and HDCP-LEVEL among them. CLOSED-CAPTIONS=NONE stores nothing.
    [[nodiscard]] static std::shared_ptr<VELHLSMediaVariant> parseVariant(const std::string& tagLine,
                                                                          const std::string& uriLine);

    /// Appends the tag line and, unless this is an I-frame variant, the URI line. Attributes come in a fixed
    /// order, whatever order they were read in. Returns 0, or -1 with nothing appended when the variant does
    /// not validate.
    ///
    /// Kept as is: without a CLOSED-CAPTIONS group ",CLOSED-CAPTIONS=NONE" is written, for I-frame variants
    /// too. A group whose type is none of the four is not written.
    [[nodiscard]] std::int32_t render(std::string& out) const;

    /// True when `uri` is not empty, `mediaStream` is null or validates, and `bandwidth` is not 0.
    [[nodiscard]] bool validate() const;

    /// The constant against the variable bit rate: (bandwidth - nominal audio bit rate) / nominal video bit
    /// rate (vendor extension). The library does not use it.
    ///
    /// Kept as is: a nominal audio bit rate above the bandwidth wraps around in unsigned 64-bit arithmetic; a
    /// nominal video bit rate of 0 gives an infinite result, or not-a-number when the numerator is 0 too.
    [[nodiscard]] double getCVBRRatio() const;

    /// BANDWIDTH: peak bits per second. VELHLSParsedManifest::variants keeps a copy as its key, which does
    /// not follow.
    std::uint64_t bandwidth = 0;

    /// AVERAGE-BANDWIDTH: bits per second; 0 when absent.
    std::uint64_t averageBandwidth = 0;

    /// CODECS, not split; empty when absent.
    std::string codecs;

    /// RESOLUTION as it was written, neither split nor checked; empty when absent.
    std::string resolution;

    /// PROGRAM-ID (of protocol versions before RFC 8216); 0 when absent.
    std::uint32_t programId = 0;

    /// The GROUP-ID that the variant names for each rendition type: AUDIO, VIDEO, SUBTITLES, CLOSED-CAPTIONS.
    std::map<VELHLSMediaStreamRendition::RenditionType, std::string> groupIds;

    /// URI of the variant's media playlist, not resolved (VELHLS.h).
    std::string uri;

    /// The variant's media playlist, once a caller has attached it by assignment; null after parsing.
    std::shared_ptr<VELHLSMediaStream> mediaStream;

    /// True for EXT-X-I-FRAME-STREAM-INF.
    bool isIFrame = false;

    /// Nominal video bit rate in bits per second, from the ZOR-STREAM-INF tag that pairs with the variant
    /// (vendor extension); 0 when there is none, and for I-frame variants.
    std::uint64_t nominalVideoBitrate = 0;

    /// Nominal audio bit rate in bits per second, likewise.
    std::uint64_t nominalAudioBitrate = 0;

  protected:
    /// For the library's own reader, which sets all other members in place.
    VELHLSMediaVariant(bool isIFrameVariant, std::string_view uriLine)
        : uri(uriLine), isIFrame(isIFrameVariant) {}
};
