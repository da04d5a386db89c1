#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include "tool/Check.h"

namespace tool {

/// The findings as JSON. The schema is docs/schemas/check-2.schema.json.
class JsonReport {
  public:
    void add(const CheckedFile& file);

    /// The whole report.
    [[nodiscard]] std::string text() const;

  private:
    nlohmann::ordered_json files_ = nlohmann::ordered_json::array();
};

}  // namespace tool
