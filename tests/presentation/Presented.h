#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "velhls/VELHLSCheck.h"

#include "tests/support/FindingText.h"

/// What the tests of presentations share: presentations that keep every rule, and what breaks one of them.
namespace presentation_test {

/// The texts of a presentation by their URIs, the master playlist first.
using Texts = std::vector<std::pair<std::string, std::string>>;

/// Of which no rule of RFC 8216 has anything to say, neither of the presentation nor of one of its texts.
Texts onDemand();
/// With byte ranges that give the bit rates.
Texts measured();
/// With EXT-X-BITRATE instead.
Texts estimated();
/// A window that has moved, with dates and without.
Texts live();
Texts liveWithoutDates();
/// Of which no authoring rule has anything to say.
Texts authored();
Texts authoredLive();

/// A presentation that breaks one clause: another one, in one of whose texts something is replaced where it stands first.
struct Breach {
    std::string what;
    Texts (*presentation)();
    std::string uri;
    std::string text;
    std::string replacement;
    /// The rules that find it, with commas between them, and the text and line of the first finding.
    std::string rules;
    std::string foundIn;
    std::size_t line;
    /// The text and line of its first related place; empty for none.
    std::string related;
    std::size_t relatedLine = 0;

    [[nodiscard]] Texts broken() const;
};

std::vector<Breach> breachesOfRfc8216();
std::vector<Breach> breachesOfAuthoringRules();

/// The texts with what stands in one of them replaced: where it stands first, or everywhere.
Texts replaced(Texts texts, const std::string& uri, const std::string& text, const std::string& replacement);
Texts replacedEverywhere(Texts texts, const std::string& uri, const std::string& text,
                         const std::string& replacement);
/// The text with this URI.
std::string& textOf(Texts& texts, const std::string& uri);

std::vector<VELHLSFinding> findingsIn(const Texts& texts,
                                      VELHLSStandard::Profile profile = VELHLSStandard::Profile::rfc8216);

using finding::rulesIn;

/// The findings one a line, for the message of a test that fails.
std::string shown(const std::vector<VELHLSFinding>& findings);

}  // namespace presentation_test
