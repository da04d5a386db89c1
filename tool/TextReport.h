#pragma once

#include <string>

#include "tool/FindingText.h"
#include "tool/Report.h"

namespace tool {

/// The findings for a person: a line each, on a terminal with the line of the playlist; then a line for all files.
class TextReport : public Report {
  public:
    TextReport(const std::string& colour, VELHLSFinding::Severity leastShown);
    void add(const CheckedFile& file) override;
    void end(const CheckSummary& summary) override;

  private:
    FindingStyle findingStyle_;
    VELHLSFinding::Severity leastShown_;
};

}  // namespace tool
