#include "fuzz/FuzzTarget.h"
#include "tests/support/ManifestRoundTrip.h"
#include "tests/support/PlainPlaylists.h"

VELHLS_FUZZ_TARGET(session_data) {
    const auto described = [](const auto& read) {
        return read == nullptr ? "rejected" : playlist::describe(*read);
    };
    const auto data =
        fuzz::bounded(text.size(), {48}, [&] { return VELHLSManifestSessionData::parseSessionData(text); });
    fuzz::expectEqual(described(data), described(plain::sessionData(text)), "the parse as its plain form");
    if (data == nullptr) return;

    fuzz::expect(data->validate(), "what parses validates");
    std::string rendered;
    fuzz::expect(data->render(rendered) == 0, "what validates renders");
    rendered.pop_back();
    // The first attribute of a tag is not read, and DATA-ID is written first.
    fuzz::expect(VELHLSManifestSessionData::parseSessionData(rendered) == nullptr,
                 "what it renders is not read", rendered);
    rendered.insert(rendered.find(':') + 1, "FIRST=1,");
    fuzz::expectEqual(described(VELHLSManifestSessionData::parseSessionData(rendered)), described(data),
                      "after another attribute it parses to an equal one");
}
