#include "fuzz/FuzzTarget.h"
#include "tests/support/ManifestRoundTrip.h"
#include "tests/support/PlainPlaylists.h"

VELHLS_FUZZ_TARGET(stream_information) {
    std::shared_ptr<VELHLSZORStreamInformation> information;
    const auto described = [](const auto& read) {
        return read == nullptr ? "rejected" : playlist::describe(*read);
    };
    const std::string outcome = playlist::outcomeOf([&] {
        information =
            fuzz::bounded(text.size(), {48}, [&] { return VELHLSZORStreamInformation::parse(text); });
        return described(information);
    });
    fuzz::expectEqual(outcome, playlist::outcomeOf([&] { return described(plain::streamInformation(text)); }),
                      "the parse as its plain form");
    // The tag is not written.
    if (information != nullptr) fuzz::expect(information->validate(), "what parses validates");
}
