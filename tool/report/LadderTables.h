#pragma once

#include "tool/report/Ladder.h"
#include "tool/report/Markup.h"
#include "tool/report/PageNames.h"

namespace tool::report {

/// The ladder's picture, which has the id, and its tables: variants, renditions, groups, languages.
void appendLadder(Markup& page, const std::string& id, const Ladder& ladder, const PageNames& names);

}  // namespace tool::report
