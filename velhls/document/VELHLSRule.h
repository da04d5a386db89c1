#pragma once

#include <string_view>

#include "velhls/document/VELHLSFinding.h"

/// One rule that VELHLSDiagnostics knows. All texts live as long as the program.
struct VELHLSRule {
    /// The rule's stable name: "variant-bandwidth-zero".
    std::string_view id;

    /// How much its findings weigh.
    VELHLSFinding::Severity severity;

    /// One sentence: what the rule finds.
    std::string_view summary;

    /// What its findings say was expected.
    std::string_view expected;

    /// Where the rule comes from: a section of a standard; of the library "vendor extension" or "library behaviour".
    std::string_view source;

    /// True when `render` leaves out what the rule finds.
    bool isLostWhenWritten;

    /// Of a rule of the standard the key word of its clause: "MUST", "MUST NOT", "REQUIRED", "SHALL NOT", "SHOULD",
    /// "SHOULD NOT"; "SYN" for a format that is given without one, "REC" for what is recommended in passing. Empty for
    /// all other rules.
    std::string_view level = {};

    /// The number of that clause: "4.3.2.1". Empty for all other rules.
    std::string_view clause = {};

    /// The profile that the rule was asked of: "rfc8216", "rfc8216bis", "apple" or "library".
    std::string_view profile = {};

    /// What its fixes do, each after its class: "safe: puts a line feed after the last line". Empty for a rule that has none.
    std::string_view fix = {};
};
