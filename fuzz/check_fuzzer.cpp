#include "fuzz/Playlists.h"
#include "tests/support/DiagnosticsOracle.h"
#include "tests/support/LibraryFindings.h"

VELHLS_FUZZ_TARGET(check) {
    if (fuzz::holdsSlowPattern(text)) return;
    const bool expands = text.find("#ZOR-PATTERN_START:") != std::string::npos;
    const fuzz::Cost cost = expands ? fuzz::Cost{0, std::size_t{512} << 20, 0.0, 60.0} : fuzz::Cost{48};
    for (const auto kind : {VELHLSDiagnostics::Master, VELHLSDiagnostics::Media}) {
        static_cast<void>(fuzz::bounded(text.size(), cost, [&] { return library::findingsIn(text, kind); }));
        if (!expands) {
            fuzz::expectBoundedWhenProlonged(text, cost, [kind](const std::string& longText) {
                return library::findingsIn(longText, kind);
            });
        }
        fuzz::expectEqual(oracle::brokenPromise(text, kind), "", "the findings and the parse agree");
    }
    fuzz::expectEqual(oracle::brokenDetection(text), "", "the kind is detected as the check takes it");
}
