#pragma once

#include "tool/JsonArrayText.h"
#include "tool/Report.h"

namespace tool {

/// The findings as JSON. The schema is docs/schemas/check-2.schema.json.
class JsonReport : public Report {
  public:
    JsonReport();
    void add(const CheckedFile& file) override;
    void end(const CheckSummary& summary) override;

  private:
    JsonArrayText text_;
};

/// One object a file, in a line of its own: the members of "files" in the whole report.
class JsonLinesReport : public Report {
  public:
    void add(const CheckedFile& file) override;
    void end(const CheckSummary& summary) override;
};

}  // namespace tool
