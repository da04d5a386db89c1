#include "fuzz/FuzzTarget.h"
#include "tests/support/MediaDescription.h"
#include "tests/support/MediaRoundTrip.h"
#include "tests/support/PlainPlaylists.h"

VELHLS_FUZZ_TARGET(map) {
    VELHLSMISMap map;
    bool isRead = false;
    const std::string outcome = playlist::outcomeOf([&] {
        isRead = fuzz::bounded(text.size(), {48}, [&] { return map.parse(text); }) == 0;
        return isRead ? playlist::describe(map) : "rejected";
    });
    fuzz::expectEqual(outcome, playlist::outcomeOf([&] {
                          const auto read = plain::map(text);
                          return read == nullptr ? "rejected" : playlist::describe(*read);
                      }),
                      "the parse as its plain form");
    if (!isRead) return;

    // An empty URI parses, and then neither validates nor renders.
    std::string rendered;
    fuzz::expect(map.validate() == !map.uri.empty(), "what has a URI validates");
    fuzz::expect((map.render(rendered) == 0) == map.validate(), "what validates renders");
    if (!map.validate()) return;
    VELHLSMISMap reread;
    fuzz::expect(reread.parse(rendered) == 0, "what it renders parses", rendered);
    VELHLSMISMap expected = map;
    if (!playlist::rewritten::isWritten(map.byteRange)) expected.byteRange = nullptr;
    fuzz::expectEqual(playlist::describe(reread), playlist::describe(expected), "to an equal one");
    std::string again;
    fuzz::expect(reread.render(again) == 0, "what parses again renders");
    fuzz::expectEqual(again, rendered, "the same text is written the second time");
}
