#pragma once

#include <cstddef>
#include <map>
#include <string>

#include <nlohmann/json.hpp>

#include "tool/Check.h"

namespace tool {

/// The findings as SARIF 2.1.0 (OASIS), with all rules.
class SarifReport {
  public:
    SarifReport();

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
