#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "velhls/common/VELHLSExport.h"

/// One encryption key: EXT-X-KEY of a media playlist (RFC 8216, section 4.3.2.4), or EXT-X-SESSION-KEY of a
/// master playlist (section 4.3.4.5).
///
///     #EXT-X-KEY:METHOD=AES-128,                            method             AES128
///                URI="https://example.com/k",               uri
///                IV=0x0123456789abcdef0123456789abcdef,     iv                 kept as text
///                KEYFORMAT="identity",                      keyFormat
///                KEYFORMATVERSIONS="1/2"                    keyFormatVersions  {1, 2}
///
/// A parsed key is not changed afterwards: segments share it.
class VELHLS_API VELHLSProtectionData {
  public:
    /// METHOD.
    enum ProtectionMethod : std::int32_t {
        None = 0,       ///< "NONE"
        AES128 = 1,     ///< "AES-128"
        SampleAES = 2,  ///< "SAMPLE-AES"
    };

    /// The text of a METHOD, as a playlist has it: "NONE", "AES-128" or "SAMPLE-AES". Empty for a value that
    /// is no method.
    [[nodiscard]] static std::string_view textOf(ProtectionMethod method) noexcept;

    /// A key of method None, to be filled member by member.
    VELHLSProtectionData() = default;

    /// Stores its arguments; an empty list of versions becomes the single version 1. Checks nothing.
    ///
    ///     VELHLSProtectionData key(VELHLSProtectionData::AES128,
    ///                              "https://keys.example.com/7",    // uri
    ///                              "",                              // iv: absent
    ///                              "",                              // keyFormat: absent
    ///                              {});                             // keyFormatVersions: {1}
    VELHLSProtectionData(ProtectionMethod method, const std::string& uri, const std::string& iv,
                         const std::string& keyFormat, std::vector<std::int32_t> versions);

    /// Reads a whole EXT-X-KEY or EXT-X-SESSION-KEY line; trailing line ends are left out of it. Returns 0,
    /// or -1 when the line is not acceptable; the record is then left as it was.
    ///
    /// Not acceptable are: another tag; a malformed or empty attribute list; a METHOD that is missing or none
    /// of the three, or that is NONE in a session key; a missing or empty URI unless METHOD is NONE; an IV
    /// that is not "0x" (lower case) with 32 hexadecimal digits; KEYFORMATVERSIONS with other characters than
    /// digits and "/". Which of these it was tells the parse of a playlist: see VELHLSReason. METHOD=NONE drops all other
    /// attributes.
    ///
    /// Throws std::invalid_argument for an empty piece of KEYFORMATVERSIONS ("1/", or the value "") and
    /// std::out_of_range for one that does not fit 32 bits.
    [[nodiscard]] std::int32_t parse(const std::string& line);

    /// False when an encrypting method has no URI, and when the IV is neither empty nor "0x" with 32
    /// hexadecimal digits. The IV is checked for every method; a key of method None is valid with any URI.
    [[nodiscard]] bool validate() const;

    /// Appends one EXT-X-KEY line. Returns 0, or -1 with nothing appended when the key does not validate.
    ///
    /// Kept as is: the tag written is EXT-X-KEY also for a key that was read from EXT-X-SESSION-KEY. For
    /// method None nothing but METHOD is written, and for a value that is no method nothing at all.
    /// KEYFORMATVERSIONS is not written when it holds the single version 1.
    [[nodiscard]] std::int32_t render(std::string& out) const;

    /// METHOD.
    ProtectionMethod method = None;

    /// URI of the key, not resolved (VELHLS.h); empty for method None.
    std::string uri;

    /// IV as it was written: "0x" and 32 hexadecimal digits. Empty when absent.
    std::string iv;

    /// KEYFORMAT; empty when absent.
    std::string keyFormat;

    /// KEYFORMATVERSIONS; {1} when absent.
    std::vector<std::int32_t> keyFormatVersions = {1};
};
