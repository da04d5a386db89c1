#pragma once

#include <string>

#include "tool/ComparedPair.h"

namespace tool {

/// How many of the changes are in the text.
enum class Changes { Listed, LeftOut };

/// A change in a line: "segment 268433: duration 6.006 → 5.005".
[[nodiscard]] std::string changeAsText(const VELHLSChange& change);

/// The changes, a line each, and then the findings at both places: "segment 268433: duration 6.006 → 5.005".
[[nodiscard]] std::string comparisonAsText(const ComparedPair& pair, Changes changes);

/// The summary of a series in one line or two.
[[nodiscard]] std::string summaryAsText(const SeriesSummary& summary);

/// The pair as JSON: the members of one step of a series, or of the whole. The schema is docs/schemas/compare-1.schema.json.
[[nodiscard]] std::string comparisonAsJson(const ComparedPair& pair);

/// A series as JSON, in parts, so that no more than one step is held.
class SeriesJson {
  public:
    /// What stands before the first step.
    [[nodiscard]] static std::string start();
    /// The next step.
    [[nodiscard]] std::string step(const ComparedPair& pair);
    /// What stands after the last step.
    [[nodiscard]] std::string end(const SeriesSummary& summary) const;

  private:
    bool isFirst_ = true;
};

}  // namespace tool
