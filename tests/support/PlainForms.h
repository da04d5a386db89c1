#pragma once

#include <cstddef>
#include <cstdint>
#include <istream>
#include <memory>
#include <optional>
#include <string>

#include "velhls/VELHLS.h"

/// What the library does fast, once more in its plainest form: rule by rule, on the standard library's own
/// conversions and the C library's calendar, without any care for speed. The tests and the fuzz targets compare
/// the two. The process must be in the "C" locale.
namespace plain {

constexpr std::size_t none = std::string::npos;

/// VELHLSUtility::parseAttributeMap; nothing for a malformed text. Every search begins at `position`.
std::optional<VELHLSAttributeMap> attributeMap(const std::string& text);

/// VELHLSUtility::substituteVariables: one text, searched from its beginning for each reference. Nothing when it
/// does not come to an end within a number of steps that no small map needs which does not lead back to itself.
std::optional<std::string> substituted(std::string work, const VELHLSDefineMap& defines);

/// VELHLSMediaPattern::expandMediaPattern without its bounds: line by line in every pass, by the public
/// substitution. Nothing when the expansion fails.
std::optional<std::string> expanded(const std::string& body, std::uint64_t repeatCount,
                                    const std::shared_ptr<VELHLSDefineMap>& defines);

/// VELHLSMediaPattern::parseMediaPattern on std::getline. Null for a line that may not stand in a pattern, which
/// is then `rejected`.
std::shared_ptr<VELHLSMediaPattern> readPattern(const std::string& startLine, const std::string& prefix,
                                                std::istream& input, std::string& rejected);

/// VELHLSByteRange::parse; nothing when the text is no range.
std::optional<VELHLSByteRange> byteRange(const std::string& text, char separator, bool isInclusive);

/// getByteRangeFromUri.
std::optional<VELHLSByteRange> byteRangeOfUri(const std::string& uri);

/// VELHLSUtility::parseTimestamp, step by step.
double parsedTimestamp(const std::string& text);

/// VELHLSUtility::renderTimestamp, on the C library's calendar and its printing. The calendar must hold the time.
std::string renderedTimestamp(double seconds);

/// A number in fixed notation, as printf writes it.
std::string fixed(double number, int decimals);

}  // namespace plain
