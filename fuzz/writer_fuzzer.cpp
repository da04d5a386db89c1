#include "fuzz/Playlists.h"
#include "tests/support/WriterPromises.h"

VELHLS_FUZZ_TARGET(writer) {
    if (fuzz::holdsSlowPattern(text)) return;
    fuzz::expectEqual(writer::brokenMasterPromise(text), "", "what is written of a master playlist");
    fuzz::expectEqual(writer::brokenMediaPromise(text), "", "what is written of a media playlist");
}
