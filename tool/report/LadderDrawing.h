#pragma once

#include "tool/report/Drawing.h"
#include "tool/report/Ladder.h"

namespace tool::report {

/// The rungs of a ladder over a logarithmic axis of bit rates. Nothing without a rung that has a rate.
[[nodiscard]] std::optional<Drawing> drawLadder(const Ladder& ladder, const std::string& name);

}  // namespace tool::report
