#include "fuzz/Playlists.h"
#include "tests/support/FixOracle.h"

VELHLS_FUZZ_TARGET(fixes) {
    if (fuzz::holdsSlowPattern(text)) return;
    using Profile = VELHLSDiagnostics::Profile;
    for (const Profile profile : {Profile::library, Profile::rfc8216, Profile::rfc8216bis}) {
        for (const auto fixClass : {VELHLSFix::Safe, VELHLSFix::Lossy, VELHLSFix::Guess}) {
            VELHLSFixes::Options options;
            options.profiles = {profile};
            options.lossy = fixClass >= VELHLSFix::Lossy;
            options.guess = fixClass >= VELHLSFix::Guess;
            fuzz::expectEqual(oracle::brokenFixPromise(text, options), "", "the fixes keep their promises");
        }
    }
}
