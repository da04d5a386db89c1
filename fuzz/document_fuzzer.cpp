#include "fuzz/Playlists.h"
#include "tests/support/DocumentOracle.h"
#include "tests/support/RecordLinesOracle.h"

namespace {

/// What a document, its structure and all of its attributes take.
std::size_t readAll(const std::string& text) {
    const VELHLSDocument document(text);
    const VELHLSStructure structure(document);
    std::size_t bytes = 0;
    for (const VELHLSLine line : document.lines()) {
        for (const VELHLSAttribute& attribute : line.attributes())
            bytes += attribute.value.size();
    }
    for (const VELHLSStructure::Segment segment : structure.segments())
        bytes += segment.inForce.keyLines.size();
    return bytes;
}

}  // namespace

VELHLS_FUZZ_TARGET(document) {
    const fuzz::Cost cost = {48};
    static_cast<void>(fuzz::bounded(text.size(), cost, [&] { return readAll(text); }));
    fuzz::expectBoundedWhenProlonged(text, cost, readAll);
    fuzz::expectEqual(oracle::DocumentPromises(text).broken(), "", "what must hold of every document");
    fuzz::expectEqual(oracle::RecordLinesPromises(text).broken(), "",
                      "what must hold of the lines of records");
}
