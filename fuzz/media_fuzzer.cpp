#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <stdexcept>
#include <string>

#include "velhls/VELHLS.h"

/// What parses validates and renders; and nothing but the exceptions of number conversion leaves the parse.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::istringstream input(std::string(reinterpret_cast<const char*>(data), size));
    VELHLSParsingStatus status;
    std::shared_ptr<VELHLSMediaStream> stream;
    try {
        stream = VELHLSMediaStream::parseMediaStream(input, &status);
    } catch (const std::invalid_argument&) {
        return 0;
    } catch (const std::out_of_range&) {
        return 0;
    }
    if (stream == nullptr) return 0;
    std::ostringstream output;
    if (!stream->validate() || stream->render(output) != 0) std::abort();
    if (status.error != VELHLSParsingErrorNone) std::abort();
    return 0;
}
