// Internal to the library, not installed: how a rule of the standard is stated.
#pragma once

#include <cstddef>
#include <string_view>

#include "velhls/document/VELHLSRule.h"
#include "velhls/standard/VELHLSStandard.h"

namespace velhls {

using StandardProfile = VELHLSStandard::Profile;

/// A rule of the standard.
struct StandardRule {
    VELHLSRule rule;
    /// The key word of the clause: "MUST", "MUST NOT", "REQUIRED", "SHALL NOT", "SHOULD", "SHOULD NOT"; "SYN" for a format
    /// that is given without one; "REC" for what is recommended in passing.
    std::string_view level;
};

/// What comes after the last blank of a rule's source: "4.3.2.1" of "RFC 8216, section 4.3.2.1".
[[nodiscard]] constexpr std::string_view clauseOf(std::string_view source) {
    return source.substr(source.find_last_of(' ') + 1);
}

class Tell;

/// A rule, and beside it the one function that finds it.
template <typename Subject>
struct StandardEntry {
    StandardRule rule;
    void (*find)(const Subject& subject, const Tell& tell);
};

template <typename Subject>
struct StandardTable {
    const StandardEntry<Subject>* first;
    std::size_t count;

    [[nodiscard]] const StandardEntry<Subject>* begin() const { return first; }
    [[nodiscard]] const StandardEntry<Subject>* end() const { return first + count; }
};

// So that an entry says in few words how much it weighs. What a clause only lets one infer is no error.
inline constexpr auto error = VELHLSFinding::Error;
inline constexpr auto warning = VELHLSFinding::Warning;
inline constexpr auto note = VELHLSFinding::Note;

}  // namespace velhls
