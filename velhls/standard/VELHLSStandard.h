#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "velhls/common/VELHLSExport.h"
#include "velhls/document/VELHLSDocument.h"
#include "velhls/document/VELHLSFinding.h"
#include "velhls/document/VELHLSRule.h"

/// Checks a text against the standard, and not against what the models make of it.
///
///     const VELHLSDocument document(text);
///     for (const VELHLSFinding& finding : VELHLSStandard::check(document, VELHLSStandard::Profile::rfc8216)) {
///         std::cout << finding.line << ":" << finding.column << ": " << finding.message << "\n";
///     }
///
/// A playlist that the models reject is looked at from its first line to its last, and one that they accept may break rules.
class VELHLS_CHECK_API VELHLSStandard {
  public:
    VELHLSStandard() = delete;

    /// By what a text is checked.
    enum class Profile : std::uint8_t {
        rfc8216,  ///< RFC 8216
        rfc8216bis,  ///< RFC 8216 as its successor changes it (draft-pantos-hls-rfc8216bis), low latency included
        apple,  ///< Apple's authoring rules for its devices, as far as a text shows them, and nothing else
    };

    /// "rfc8216", "rfc8216bis" or "apple".
    [[nodiscard]] static std::string_view nameOf(Profile profile) noexcept;

    /// What the profile finds in the document, in the order of the places. An error is a clause that must be kept and is
    /// not, a warning one that should be. Of one rule there are at most 100 findings, and the last of them tells how many
    /// more there were. Takes time linear in the text but for sorting, and memory linear in it; throws nothing but
    /// std::bad_alloc.
    [[nodiscard]] static std::vector<VELHLSFinding> check(const VELHLSDocument& document, Profile profile);

    /// All rules that the profile may find, in the order of the documentation.
    [[nodiscard]] static std::vector<VELHLSRule> rules(Profile profile);
};
