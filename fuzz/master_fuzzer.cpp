#include "fuzz/Playlists.h"
#include "tests/support/ManifestRoundTrip.h"
#include "tests/support/PlainPlaylists.h"

VELHLS_FUZZ_TARGET(master) {
    VELHLSParsingStatus status;
    const auto manifest = fuzz::resultOf([&] {
        std::istringstream input(text);
        return fuzz::bounded(text.size(), {32},
                             [&] { return VELHLSParsedManifest::parseManifest(input, &status); });
    });

    fuzz::expectBoundedWhenProlonged(text, {32}, [](const std::string& longText) {
        std::istringstream input(longText);
        return VELHLSParsedManifest::parseManifest(input, nullptr);
    });

    fuzz::expectTheSameFromEveryBuffer(text, VELHLSParsedManifest::internalParseManifest);
    std::istringstream input(text);
    std::istringstream plainInput(text);
    fuzz::expectEqual(playlist::outcomeWithStream(input, VELHLSParsedManifest::internalParseManifest),
                      playlist::outcomeWithStream(plainInput, plain::manifest),
                      "the parse as its plain form");

    if (manifest == nullptr) return;
    fuzz::expect(status.error == VELHLSParsingErrorNone, "what parses sets the status");
    fuzz::expect(manifest->validate(), "what parses validates");
    const std::string rendered =
        fuzz::bounded(text.size(), {32}, [&] { return playlist::renderedManifest(*manifest); });
    fuzz::expect(rendered.rfind("#EXTM3U\n", 0) == 0, "what validates renders", rendered);
    fuzz::expectEqual(playlist::renderedManifest(*manifest), rendered, "it renders the same twice");
    fuzz::expectEqual(playlist::differencesAfterRoundTrip(*manifest), "",
                      "what it renders parses to an equal one");
}
