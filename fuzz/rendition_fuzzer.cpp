#include "fuzz/FuzzTarget.h"
#include "tests/support/ManifestRoundTrip.h"
#include "tests/support/PlainPlaylists.h"

VELHLS_FUZZ_TARGET(rendition) {
    std::shared_ptr<VELHLSMediaStreamRendition> rendition;
    const auto described = [](const auto& read) {
        return read == nullptr ? "rejected" : playlist::describe(*read);
    };
    const std::string outcome = playlist::outcomeOf([&] {
        rendition = fuzz::bounded(text.size(), {48}, [&] { return VELHLSMediaStreamRendition::parse(text); });
        return described(rendition);
    });
    fuzz::expectEqual(outcome, described(plain::rendition(text)), "the parse as its plain form");
    if (rendition == nullptr) return;

    fuzz::expect(rendition->validate(), "what parses validates");
    fuzz::expect(rendition->equalExceptURIAndGroupID(rendition), "it equals itself");
    std::string rendered;
    fuzz::expect(rendition->render(rendered) == 0, "what validates renders");
    const auto reread = VELHLSMediaStreamRendition::parse(rendered.substr(0, rendered.size() - 1));
    fuzz::expectEqual(described(reread), playlist::describe(playlist::rewrittenRendition(*rendition)),
                      "what it renders parses to an equal one");
    fuzz::expect(rendition->equalExceptURIAndGroupID(reread), "groups may hold the one for the other");
    std::string again;
    fuzz::expect(reread->render(again) == 0, "what parses again renders");
    fuzz::expectEqual(again, rendered, "the same text is written the second time");
}
