#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "velhls/common/VELHLSExport.h"

/// Reads values exactly as RFC 8216 defines them (section 4.2, and the tags' own formats): all of the text must be one.
/// Nothing is what comes of anything else: unlike the models these let nothing pass.
class VELHLS_CHECK_API VELHLSSyntax {
  public:
    VELHLSSyntax() = delete;

    /// decimal-integer: 1 to 20 digits, at most 2^64-1.
    [[nodiscard]] static std::optional<std::uint64_t> readDecimalInteger(std::string_view text);

    /// hexadecimal-sequence: "0x" or "0X", then digits and A-F, at least one. The digits, without what begins them.
    [[nodiscard]] static std::optional<std::string_view> readHexadecimalSequence(std::string_view text);

    /// decimal-floating-point: digits with at most one point among, before or after them; no sign, no exponent.
    ///
    /// The nearest double for up to 15 digits; for more it may be the one beside it.
    [[nodiscard]] static std::optional<double> readDecimalFloatingPoint(std::string_view text);

    /// signed-decimal-floating-point: the same, or with a "-" before it.
    [[nodiscard]] static std::optional<double> readSignedDecimalFloatingPoint(std::string_view text);

    /// A width and a height.
    struct Resolution {
        std::uint64_t width = 0;   ///< horizontally, in pixels
        std::uint64_t height = 0;  ///< vertically, in pixels
    };

    /// decimal-resolution: two decimal-integers with an "x" between them.
    [[nodiscard]] static std::optional<Resolution> readDecimalResolution(std::string_view text);

    /// enumerated-string: no quote, comma or white space in it, and not empty.
    [[nodiscard]] static bool isEnumeratedString(std::string_view text);

    /// What may stand between the quotes of a quoted-string: no quote, line feed or carriage return.
    [[nodiscard]] static bool isQuotable(std::string_view text);

    /// The name of an attribute: A-Z, 0-9 and "-", at least one.
    [[nodiscard]] static bool isAttributeName(std::string_view text);

    /// A part of a resource.
    struct ByteRange {
        std::uint64_t length = 0;  ///< in bytes
        std::optional<std::uint64_t>
            offset;  ///< from the start of the resource; nothing: where the range before ends
    };

    /// a length, and "@" and an offset where one is given (section 4.3.2.2): decimal-integers.
    [[nodiscard]] static std::optional<ByteRange> readByteRange(std::string_view text);

    /// A moment, and how it was written.
    struct DateTime {
        std::int64_t microseconds = 0;   ///< since the Unix epoch; in UTC when no time zone is given
        bool hasTime = false;            ///< false of a date alone
        bool hasZone = false;            ///< "Z", or an offset
        std::size_t fractionDigits = 0;  ///< after the point; those after the sixth count for nothing
    };

    /// YYYY-MM-DD, and after a "T" hh:mm, hh:mm:ss or hh:mm:ss.s…, and after that "Z", ±hh:mm, ±hhmm or ±hh: of the forms
    /// that ISO 8601 has, those that are met (section 4.3.2.6). A comma may stand for the point. The day must exist; 24:00
    /// and a 61st second are allowed, as they are there.
    [[nodiscard]] static std::optional<DateTime> readDateTime(std::string_view text);
};
