#include "fuzz/FuzzTarget.h"
#include "tests/support/PlainForms.h"

/// The first lines of the text are variables, up to an empty one; the rest is what they are put into.
VELHLS_FUZZ_TARGET(substitution) {
    fuzz::Parts parts(text);
    const auto defines = std::make_shared<VELHLSDefineMap>();
    for (std::string line = parts.next(); !line.empty(); line = parts.next())
        (*defines)[line.substr(0, line.find('='))] =
            line.substr(std::min(line.find('='), line.size() - 1) + 1);
    const std::string original = parts.rest();

    const fuzz::Cost cost{256, 8 * VELHLSUtility::maximumSubstitutedBytes, 0.0, 5.0};
    const std::string result = fuzz::bounded(
        text.size(), cost, [&] { return VELHLSUtility::substituteVariables(original, defines); });
    fuzz::expectEqual(VELHLSUtility::substituteVariables(original, nullptr), original,
                      "without variables unchanged");
    if (original.find_first_of("{$") == std::string::npos) {
        fuzz::expectEqual(result, original, "without references unchanged");
        return;
    }
    fuzz::expect(result.size() <= VELHLSUtility::maximumSubstitutedBytes, "the result is bounded");
    fuzz::expect(result.find_first_of("{$") == std::string::npos, "no reference is left", result);
    const std::optional<std::string> expected = plain::substituted(original, *defines);
    if (expected && expected->size() <= VELHLSUtility::maximumSubstitutedBytes) {
        fuzz::expectEqual(result, *expected, "the substitution as its plain form");
    }
}
