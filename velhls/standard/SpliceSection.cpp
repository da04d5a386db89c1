#include "velhls/standard/SpliceSection.h"

#include <cstddef>

#include "velhls/document/VELHLSSyntax.h"

namespace velhls {
namespace {

unsigned valueOf(char digit) {
    return static_cast<unsigned>(digit <= '9' ? digit - '0' : digit - 'A' + 10);
}

unsigned byteAt(std::string_view digits, std::size_t place) {
    return valueOf(digits[2 * place]) * 16U + valueOf(digits[2 * place + 1]);
}

}  // namespace

std::optional<bool> outOfNetworkOf(std::string_view section) {
    const auto digits = VELHLSSyntax::readHexadecimalSequence(section);
    // ANSI/SCTE 35: table_id; 1 bit of encryption after the version of the protocol; the command's type, the event's
    // number, a bit that cancels it, and the indicator.
    constexpr std::size_t encryptionPlace = 4;
    constexpr std::size_t typePlace = 13;
    constexpr std::size_t cancelPlace = 18;
    constexpr std::size_t indicatorPlace = 19;
    if (!digits || digits->size() / 2 <= indicatorPlace) return std::nullopt;
    constexpr unsigned tableId = 0xFC;
    constexpr unsigned spliceInsert = 5;
    constexpr unsigned highBit = 0x80;
    const bool isInsert = byteAt(*digits, 0) == tableId && byteAt(*digits, typePlace) == spliceInsert;
    const bool isReadable =
        (byteAt(*digits, encryptionPlace) & highBit) == 0 && (byteAt(*digits, cancelPlace) & highBit) == 0;
    if (!isInsert || !isReadable) return std::nullopt;
    return (byteAt(*digits, indicatorPlace) & highBit) != 0;
}

}  // namespace velhls
