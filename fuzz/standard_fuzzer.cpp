#include <vector>

#include "velhls/VELHLSCheck.h"

#include "fuzz/Playlists.h"

namespace {

/// What is found stands in the text, in its order, and no more than is promised.
void expectPlaces(const VELHLSDocument& document, const std::vector<VELHLSFinding>& findings) {
    std::size_t line = 1;
    for (const VELHLSFinding& finding : findings) {
        fuzz::expect(finding.line >= line, "findings come in the order of their lines", finding.message);
        line = finding.line;
        const bool isEmpty = document.lineCount() == 0;
        fuzz::expect(isEmpty || line <= document.lineCount(), "findings stand in the text", finding.message);
        const std::size_t length = isEmpty ? 0 : document.line(line).text.size();
        fuzz::expect(finding.column - 1 + finding.length <= length, "findings stand in their lines",
                     finding.message);
    }
}

}  // namespace

VELHLS_FUZZ_TARGET(standard) {
    using Profile = VELHLSStandard::Profile;
    const VELHLSDocument document(text);
    constexpr fuzz::Cost cost = {256, std::size_t{1} << 20};
    for (const Profile profile : {Profile::rfc8216, Profile::rfc8216bis, Profile::apple}) {
        const auto check = [profile](const VELHLSDocument& checked) {
            return VELHLSStandard::check(checked, profile);
        };
        expectPlaces(document, fuzz::bounded(text.size(), cost, [&] { return check(document); }));
        fuzz::expectBoundedWhenProlonged(
            text, cost, [&check](const std::string& longText) { return check(VELHLSDocument(longText)); });
    }
}
