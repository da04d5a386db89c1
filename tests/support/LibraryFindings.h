#pragma once

#include <string_view>
#include <vector>

#include "velhls/VELHLSCheck.h"

/// What the library itself has to say of a text, for tests that ask for nothing else.
namespace library {

inline VELHLSDiagnostics::Options optionsFor(VELHLSDiagnostics::PlaylistKind kind) {
    return {kind, {VELHLSDiagnostics::Profile::library}};
}

inline std::vector<VELHLSFinding> findingsIn(
    std::string_view text, VELHLSDiagnostics::PlaylistKind kind = VELHLSDiagnostics::Detect) {
    return VELHLSDiagnostics::check(text, optionsFor(kind)).findings;
}

inline std::vector<VELHLSRule> rules() {
    return VELHLSDiagnostics::rules(VELHLSDiagnostics::Profile::library);
}

}  // namespace library
