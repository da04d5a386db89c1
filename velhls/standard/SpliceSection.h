// Internal to the library, not installed: as much of SCTE-35 as RFC 8216 asks for.
#pragma once

#include <optional>
#include <string_view>

namespace velhls {

/// The out_of_network_indicator of the splice_insert() that a splice_info_section() holds. The section is written as a
/// hexadecimal-sequence. Nothing for any other command, a cancelled or encrypted one, and what is no section.
[[nodiscard]] std::optional<bool> outOfNetworkOf(std::string_view section);

}  // namespace velhls
