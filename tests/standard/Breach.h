#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "velhls/VELHLSCheck.h"

#include "tests/support/FindingText.h"

/// What the tests of the standard's rules share: playlists that keep every rule, and what breaks one of them.
namespace standard_test {

/// Playlists of which no rule of RFC 8216 has more than a note.
extern const char* const vod;
extern const char* const live;
extern const char* const ranges;
extern const char* const fragments;
extern const char* const iFrames;
extern const char* const dateRanges;
extern const char* const master;
extern const char* const videoMaster;
/// One of low latency, of which no rule of its successor has more than a note.
extern const char* const lowLatency;
/// Of which no authoring rule has more than a note.
extern const char* const authoredMaster;
extern const char* const authoredVod;
extern const std::string authoredLive;

/// A playlist that breaks one clause: another one, in which a text is replaced where it stands first.
struct Breach {
    std::string what;
    std::string playlist;
    std::string text;
    std::string replacement;
    /// The rules that find it, with commas between them, and the line of the first finding.
    std::string rules;
    std::size_t line;

    [[nodiscard]] std::string broken() const;
};

// One table for each file of rules.
std::vector<Breach> textBreaches();
std::vector<Breach> tagBreaches();
std::vector<Breach> attributeBreaches();
std::vector<Breach> versionBreaches();
std::vector<Breach> segmentBreaches();
std::vector<Breach> keyBreaches();
std::vector<Breach> dateBreaches();
std::vector<Breach> dateRangeBreaches();
std::vector<Breach> mediaPlaylistBreaches();
std::vector<Breach> variantBreaches();
std::vector<Breach> renditionBreaches();
std::vector<Breach> sessionBreaches();
std::vector<Breach> laterBreaches();
std::vector<Breach> authoringBreaches();

/// All but those of the successor's and the authoring rules.
std::vector<Breach> breachesOfRfc8216();

std::vector<VELHLSFinding> findingsIn(const std::string& text, VELHLSStandard::Profile profile);

using finding::rulesIn;

/// The findings one a line, for the message of a test that fails.
std::string shown(const std::vector<VELHLSFinding>& findings);

}  // namespace standard_test
