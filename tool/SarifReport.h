#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "tool/Check.h"

namespace tool {

/// The findings as SARIF 2.1.0 (OASIS), with the rules of the profiles asked for.
class SarifReport {
  public:
    /// With the rules of these profiles.
    explicit SarifReport(const std::vector<VELHLSDiagnostics::Profile>& profiles);

    /// The text of the file must still be there.
    void add(const CheckedFile& file);

    /// The whole report of the files, which were checked with this exit status.
    [[nodiscard]] std::string text(ExitStatus status) const;

  private:
    std::map<std::string, std::size_t> ruleIndices_;
    nlohmann::ordered_json rules_;
    nlohmann::ordered_json results_ = nlohmann::ordered_json::array();
    nlohmann::ordered_json notifications_ = nlohmann::ordered_json::array();
};

}  // namespace tool
