#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "velhls/common/VELHLSExport.h"

/// A sub-range of a resource (RFC 8216, section 4.3.2.2).
///
///     #EXT-X-BYTERANGE:1024@2048                    length 1024, offset 2048
///     #EXT-X-BYTERANGE:1024                         length 1024, offset -1: follows the range before it
///     #EXT-X-MAP:URI="i.mp4",BYTERANGE="720@0"      length 720, offset 0
///     video/range/1000-1999                         length 1000, offset 1000 (vendor extension, in a URI)
class VELHLS_API VELHLSByteRange {
  public:
    /// Reads a range of decimal numbers: one number, or two with `separator` between them. Returns 0, or -1
    /// for any other text, with the record as it was.
    ///
    /// One number is the length; the offset is then -1. Two are length and offset, or with `inclusiveRange`
    /// the first and the last byte. Kept as is: a last byte before the first gives a length of 0 or
    /// less. A last byte of 2^63 - 1 with first byte 0 has a length that no signed 64-bit number holds: it
    /// gives 2^63 - 1.
    ///
    /// Throws std::out_of_range for a number beyond 2^63 - 1.
    [[nodiscard]] std::int32_t parse(const std::string& text, char separator, bool inclusiveRange);

    /// Appends "length", or "length@offset" when the offset is not negative. Returns 0, or -1 with nothing
    /// appended when the length is negative. The first-to-last form is never written.
    [[nodiscard]] std::int32_t render(std::string& out) const;

    /// Number of bytes. A negative length cannot be rendered, and makes the segment that owns it invalid.
    std::int64_t length = 0;

    /// First byte of the range, counted from 0; -1 when none was given.
    std::int64_t offset = -1;
};

/// The range that a URI ends with after its last "/range/", as first-to-last byte or as a length alone
/// (vendor extension): "v/range/1000-1999" gives length 1000 and offset 1000. Null when there is no such
/// text.
///
/// Kept as is: in a URI without "/range/" the text from index 6 on is read instead, so "abcdef42" gives a
/// length of 42; and a URI of 1 to 5 characters throws std::out_of_range. Segments without an EXT-X-BYTERANGE
/// call this, so give them a longer URI ("./0.ts" for "0.ts") or an explicit range. A number beyond 2^63 - 1
/// throws std::out_of_range too.
[[nodiscard]] VELHLS_API std::shared_ptr<VELHLSByteRange> getByteRangeFromUri(std::string uri);
