#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "velhls/common/VELHLSExport.h"
#include "velhls/media/VELHLSByteRange.h"

/// The media initialization section that the segments after it need: EXT-X-MAP (RFC 8216, section 4.3.2.5).
///
///     #EXT-X-MAP:URI="init.mp4",        uri
///                BYTERANGE="720@0"      byteRange
///
/// A parsed map is not changed afterwards: segments share it.
class VELHLS_API VELHLSMISMap {
  public:
    /// Reads a whole EXT-X-MAP line; trailing line ends are left out of it. Other attributes than URI and
    /// BYTERANGE are ignored. Returns 0, or -1 for another tag, a malformed or empty attribute list, a
    /// missing URI, or a BYTERANGE that is none: then `uri` is emptied and `byteRange` is not to be used. Which of these it
    /// was tells the parse of a playlist: see VELHLSReason.
    ///
    /// Throws std::out_of_range for a BYTERANGE number beyond 2^63 - 1.
    [[nodiscard]] std::int32_t parse(const std::string& line);

    /// True when `uri` is not empty.
    [[nodiscard]] bool validate() const;

    /// Appends one EXT-X-MAP line. Returns 0, or -1 with nothing appended when `uri` is empty. Kept as is: a
    /// byte range of length 0 or less is not written.
    [[nodiscard]] std::int32_t render(std::string& out) const;

    /// URI of the resource that holds the section, not resolved (VELHLS.h).
    std::string uri;

    /// BYTERANGE; null when absent.
    std::shared_ptr<VELHLSByteRange> byteRange;
};
