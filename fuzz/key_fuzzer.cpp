#include "fuzz/FuzzTarget.h"
#include "tests/support/ManifestRoundTrip.h"
#include "tests/support/PlainPlaylists.h"

VELHLS_FUZZ_TARGET(key) {
    const auto key = plain::noKey();
    bool isRead = false;
    const std::string outcome = playlist::outcomeOf([&] {
        isRead = fuzz::bounded(text.size(), {48}, [&] { return key->parse(text); }) == 0;
        return isRead ? playlist::describe(*key) : "rejected";
    });
    fuzz::expectEqual(outcome, playlist::outcomeOf([&] {
                          const auto read = plain::key(text);
                          return read == nullptr ? "rejected" : playlist::describe(*read);
                      }),
                      "the parse as its plain form");
    if (!isRead) return;

    fuzz::expect(key->validate(), "what parses validates");
    std::string rendered;
    fuzz::expect(key->render(rendered) == 0, "what validates renders");
    const auto reread = plain::noKey();
    fuzz::expect(reread->parse(rendered) == 0, "what it renders parses", rendered);
    fuzz::expectEqual(playlist::describe(*reread), playlist::describe(*key), "to an equal one");
    std::string again;
    fuzz::expect(reread->render(again) == 0, "what parses again renders");
    fuzz::expectEqual(again, rendered, "the same text is written the second time");
}
