// Internal to the library, not installed: variable substitution with its cost.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "velhls/common/VELHLSUtility.h"

namespace velhls {

/// What VELHLSUtility::substituteVariables gives back, and what it took.
struct Substitution {
    /// Empty when a reference could not be resolved.
    std::string text;
    /// Bytes of variables' values that were read or copied on the way, plus one for each reference. Together
    /// with the length of the text that was given it bounds the time that was taken.
    std::size_t insertedBytes = 0;
};

[[nodiscard]] Substitution substitute(std::string_view text, const VELHLSDefineMap& defines);

}  // namespace velhls
