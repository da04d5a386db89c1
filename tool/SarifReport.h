#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "tool/JsonArrayText.h"
#include "tool/Report.h"

namespace tool {

/// The findings as SARIF 2.1.0 (OASIS), with the rules of the profiles. Which files cannot be read, and which the models reject,
/// are notifications of the run.
class SarifReport : public Report {
  public:
    explicit SarifReport(const std::vector<VELHLSDiagnostics::Profile>& profiles);
    void add(const CheckedFile& file) override;
    void end(const CheckSummary& summary) override;

  private:
    std::map<std::string, std::size_t> ruleIndices_;
    nlohmann::ordered_json log_;
    JsonArrayText text_;
    nlohmann::ordered_json notifications_ = nlohmann::ordered_json::array();
};

}  // namespace tool
