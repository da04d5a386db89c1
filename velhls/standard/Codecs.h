// Internal to the library, not installed: what CODECS names (RFC 6381).
#pragma once

#include <cstdint>
#include <string_view>

namespace velhls {

/// What a codec is for.
enum class CodecKind : std::uint8_t { unknown, video, audio, text };

/// By the first part of its name: "avc1" of "avc1.64001f".
[[nodiscard]] CodecKind kindOfCodec(std::string_view codec);

/// Whether one of the list is of this kind.
[[nodiscard]] bool hasCodec(std::string_view codecs, CodecKind kind);

/// Whether all of the list are of kinds that are known.
[[nodiscard]] bool areAllKnown(std::string_view codecs);

/// Whether it is an identifier as RFC 6381, section 3.3, writes it.
[[nodiscard]] bool isCodec(std::string_view codec);

}  // namespace velhls
