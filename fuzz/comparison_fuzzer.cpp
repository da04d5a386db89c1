#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "velhls/VELHLSCheck.h"

#include "fuzz/Playlists.h"

namespace {

/// Two versions, with a NUL byte between them; without one, the text and itself.
struct Versions {
    VELHLSDocument old;
    VELHLSDocument now;
};

Versions versionsIn(const std::string& text) {
    const std::size_t end = text.find('\0');
    if (end == std::string::npos) return {VELHLSDocument(text), VELHLSDocument(text)};
    return {VELHLSDocument(text.substr(0, end)), VELHLSDocument(text.substr(end + 1))};
}

template <typename Place>
bool standsIn(const VELHLSDocument& document, const Place& place) {
    if (place.line < 1 || place.line > document.lineCount() || place.column < 1) return false;
    return place.column - 1 + place.length <= document.line(place.line).text.size();
}

void expectPlaces(const Versions& versions, const VELHLSComparison& comparison) {
    for (const VELHLSFinding& finding : comparison.findings) {
        fuzz::expect(standsIn(versions.now, finding), "findings stand in the new version", finding.message);
        fuzz::expect(finding.related.size() == 1, "findings name a place in the old version",
                     finding.message);
        fuzz::expect(standsIn(versions.old, finding.related.front()), "that place is there", finding.message);
    }
    for (const VELHLSChange& change : comparison.changes) {
        fuzz::expect(change.oldLine <= versions.old.lineCount(), "changes have lines of the old version",
                     change.path);
        fuzz::expect(change.newLine <= versions.now.lineCount(), "changes have lines of the new version",
                     change.path);
    }
}

}  // namespace

VELHLS_FUZZ_TARGET(comparison) {
    const Versions versions = versionsIn(text);
    constexpr fuzz::Cost cost = {512, std::size_t{1} << 20};
    const auto compare = [](const VELHLSDocument& old, const VELHLSDocument& now) {
        return VELHLSComparison::compare(old, now, {30.0});
    };
    const auto comparison =
        fuzz::bounded(text.size(), cost, [&] { return compare(versions.old, versions.now); });
    if (comparison) expectPlaces(versions, *comparison);
    const auto same = VELHLSComparison::compare(versions.now, versions.now);
    if (same) {
        fuzz::expect(same->changes.empty(), "a version has not changed against itself", text);
        fuzz::expect(same->findings.empty(), "nothing is forbidden where nothing changed", text);
    }
    fuzz::expectBoundedWhenProlonged(text, cost, [&](const std::string& longText) {
        const Versions prolonged = versionsIn(longText);
        return compare(prolonged.old, prolonged.now);
    });
}
