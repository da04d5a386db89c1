// Internal to libvelhls-c, not installed: what checking and mending share, findings and whose they are.
#pragma once

#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include "Calls.h"

struct velhls_findings {
    std::vector<VELHLSFinding> findings;
};

struct velhls_report {
    velhls_kind kind;
    velhls_findings findings;
    std::optional<VELHLSReason> rejected;
};

namespace velhls_c {

/// A report that can be lent or given.
inline velhls_report reportOf(VELHLSDiagnostics::Report report) {
    return {report.kind, {std::move(report.findings)}, std::move(report.rejected)};
}

/// A bit of velhls_profiles, and what stands for it.
struct NamedProfile {
    velhls_profiles bit;
    VELHLSDiagnostics::Profile profile;
};

inline constexpr NamedProfile allProfiles[] = {
    {VELHLS_PROFILE_RFC8216, VELHLSDiagnostics::Profile::rfc8216},
    {VELHLS_PROFILE_RFC8216BIS, VELHLSDiagnostics::Profile::rfc8216bis},
    {VELHLS_PROFILE_APPLE, VELHLSDiagnostics::Profile::apple},
    {VELHLS_PROFILE_LIBRARY, VELHLSDiagnostics::Profile::library},
};

/// Those profiles of the table that are asked for; nothing when others are asked for too.
template <typename Row, std::size_t count>
auto profilesOf(velhls_profiles asked, const Row (&rows)[count])
    -> std::optional<std::vector<decltype(Row::profile)>> {
    std::vector<decltype(Row::profile)> profiles;
    for (const Row& row : rows) {
        if ((asked & row.bit) != 0) profiles.push_back(row.profile);
        asked &= ~row.bit;
    }
    if (asked != 0) return std::nullopt;
    return profiles;
}

/// Stores whose rules are asked for, and of what kind of playlist; false for a profile or a kind that is none.
template <typename Options>
bool ask(Options& asked, velhls_profiles profiles, velhls_kind kind) {
    auto known = profilesOf(profiles, allProfiles);
    if (!known || kind < VELHLS_KIND_NEITHER || kind > VELHLS_KIND_MEDIA) return false;
    asked.profiles = *std::move(known);
    asked.kind = static_cast<VELHLSDiagnostics::PlaylistKind>(kind);
    return true;
}

}  // namespace velhls_c
