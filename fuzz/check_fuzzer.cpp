#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "tests/support/DiagnosticsOracle.h"

/// The findings and the parse keep their promises to each other: see tests/support/DiagnosticsOracle.h.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    for (const auto kind : {VELHLSDiagnostics::Master, VELHLSDiagnostics::Media}) {
        const std::string broken = oracle::brokenPromise(text, kind);
        if (broken.empty()) continue;
        static_cast<void>(std::fprintf(stderr, "%s\n", broken.c_str()));
        std::abort();
    }
    static_cast<void>(VELHLSDiagnostics::check(text));
    return 0;
}
