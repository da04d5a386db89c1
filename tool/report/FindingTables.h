#pragma once

#include <vector>

#include "tool/report/Markup.h"
#include "tool/report/PageNames.h"
#include "tool/report/Source.h"

namespace tool::report {

/// All rules that have findings, by profile and severity, with their places.
void appendFindings(Markup& page, const std::vector<Source>& sources, const PageNames& names);

/// The lines of each playlist with the findings beside them.
void appendSources(Markup& page, const std::vector<Source>& sources, const PageNames& names);

/// What each of the rules is about.
void appendRules(Markup& page, const std::vector<Source>& sources);

}  // namespace tool::report
