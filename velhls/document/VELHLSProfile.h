#pragma once

#include <cstdint>

/// Who knows a tag or an attribute.
enum class VELHLSProfile : std::uint8_t {
    rfc8216,     ///< RFC 8216
    rfc8216bis,  ///< the successor of RFC 8216 alone (draft-pantos-hls-rfc8216bis): low latency, for one
    vendor,      ///< neither: what vendors write, as far as it is widely met
};
