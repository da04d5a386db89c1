#include "fuzz/FuzzTarget.h"
#include "tests/support/ManifestRoundTrip.h"
#include "tests/support/PlainPlaylists.h"

/// The first line of the text is the tag, the second the URI line.
VELHLS_FUZZ_TARGET(variant) {
    fuzz::Parts parts(text);
    const std::string tagLine = parts.next();
    const std::string uriLine = parts.next();
    std::shared_ptr<VELHLSMediaVariant> variant;
    const auto described = [](const auto& read) {
        return read == nullptr ? "rejected" : playlist::describe(*read);
    };
    const std::string outcome = playlist::outcomeOf([&] {
        variant = fuzz::bounded(text.size(), {48},
                                [&] { return VELHLSMediaVariant::parseVariant(tagLine, uriLine); });
        return described(variant);
    });
    fuzz::expectEqual(outcome,
                      playlist::outcomeOf([&] { return described(plain::variant(tagLine, uriLine)); }),
                      "the parse as its plain form");
    if (variant == nullptr) return;

    fuzz::expect(variant->validate(), "what parses validates");
    std::string rendered;
    fuzz::expect(variant->render(rendered) == 0, "what validates renders");
    if (!playlist::reasonNotToBeRead(*variant).empty()) return;
    fuzz::Parts lines(rendered);
    const std::string renderedTag = lines.next();
    const auto reread = VELHLSMediaVariant::parseVariant(renderedTag, lines.next());
    fuzz::expectEqual(described(reread), playlist::describe(playlist::rewrittenVariant(*variant)),
                      "what it renders parses to an equal one");
    std::string again;
    fuzz::expect(reread->render(again) == 0, "what parses again renders");
    fuzz::expectEqual(again, rendered, "the same text is written the second time");
}
