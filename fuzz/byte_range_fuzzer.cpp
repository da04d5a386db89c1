#include "fuzz/FuzzTarget.h"
#include "tests/support/MediaDescription.h"
#include "tests/support/PlainForms.h"

namespace {

std::string described(const std::optional<VELHLSByteRange>& range) {
    return range ? playlist::describe(*range) : "none";
}

void expectRoundTrip(const VELHLSByteRange& range) {
    std::string rendered;
    fuzz::expect((range.render(rendered) == 0) == (range.length >= 0), "what is not negative renders");
    if (range.length < 0) return;
    VELHLSByteRange reread;
    fuzz::expect(reread.parse(rendered, '@', false) == 0, "what it renders parses", rendered);
    fuzz::expectEqual(playlist::describe(reread), playlist::describe(range), "to an equal one");
}

void expectPlainParse(const std::string& text, char separator, bool isInclusive) {
    const std::string outcome = playlist::outcomeOf([&] {
        VELHLSByteRange range;
        const bool isRead = range.parse(text, separator, isInclusive) == 0;
        fuzz::expect(isRead || playlist::describe(range) == "0@-1", "what is rejected leaves the record");
        if (isRead) expectRoundTrip(range);
        return isRead ? playlist::describe(range) : "none";
    });
    fuzz::expectEqual(outcome, playlist::outcomeOf([&] {
                          return described(plain::byteRange(text, separator, isInclusive));
                      }),
                      "the parse as its plain form");
}

}  // namespace

/// The text is read as a range of each form, and as a URI.
VELHLS_FUZZ_TARGET(byte_range) {
    expectPlainParse(text, '@', false);
    expectPlainParse(text, '-', true);
    const std::string ofUri = playlist::outcomeOf([&] {
        const auto range = fuzz::bounded(text.size(), {8}, [&] { return getByteRangeFromUri(text); });
        if (range != nullptr) expectRoundTrip(*range);
        return range == nullptr ? "none" : playlist::describe(*range);
    });
    fuzz::expectEqual(ofUri, playlist::outcomeOf([&] { return described(plain::byteRangeOfUri(text)); }),
                      "the range of a URI as its plain form");
}
