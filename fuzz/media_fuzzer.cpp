#include "fuzz/Playlists.h"
#include "tests/support/MediaDescription.h"
#include "tests/support/MediaRoundTrip.h"
#include "tests/support/PlainPlaylists.h"

VELHLS_FUZZ_TARGET(media) {
    if (fuzz::holdsSlowPattern(text)) return;
    // What a pattern makes is bounded by itself.
    const bool expands = text.find("#ZOR-PATTERN_START:") != std::string::npos;
    const fuzz::Cost cost = expands ? fuzz::Cost{0, std::size_t{512} << 20, 0.0, 60.0} : fuzz::Cost{32};
    VELHLSParsingStatus status;
    const auto stream = fuzz::resultOf([&] {
        std::istringstream input(text);
        return fuzz::bounded(text.size(), cost,
                             [&] { return VELHLSMediaStream::parseMediaStream(input, &status); });
    });

    if (!expands) {
        fuzz::expectBoundedWhenProlonged(text, cost, [](const std::string& longText) {
            std::istringstream input(longText);
            return VELHLSMediaStream::parseMediaStream(input, nullptr);
        });
    }

    fuzz::expectTheSameFromEveryBuffer(text, VELHLSMediaStream::internalParseMediaStream);
    std::istringstream input(text);
    std::istringstream plainInput(text);
    fuzz::expectEqual(playlist::outcomeWithStream(input, VELHLSMediaStream::internalParseMediaStream),
                      playlist::outcomeWithStream(plainInput, plain::mediaStream),
                      "the parse as its plain form");

    if (stream == nullptr) return;
    fuzz::expect(status.error == VELHLSParsingErrorNone, "what parses sets the status");
    fuzz::expect(stream->validate(), "what parses validates");
    const std::string rendered = playlist::renderedMedia(*stream);
    fuzz::expect(rendered.rfind("#EXTM3U\n", 0) == 0, "what validates renders", rendered);
    fuzz::expectEqual(playlist::renderedMedia(*stream), rendered, "it renders the same twice");
    fuzz::expectEqual(playlist::differencesAfterRoundTrip(*stream), "",
                      "what it renders parses to an equal one");
}
