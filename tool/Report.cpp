#include "tool/Report.h"

#include "tool/Check.h"
#include "tool/GithubReport.h"
#include "tool/JsonReport.h"
#include "tool/SarifReport.h"
#include "tool/TextReport.h"

namespace tool {

std::unique_ptr<Report> reportOf(const CheckRequest& request) {
    const ReportStyle& style = request.style;
    if (style.format == "json") return std::make_unique<JsonReport>();
    if (style.format == "jsonl") return std::make_unique<JsonLinesReport>();
    if (style.format == "sarif") return std::make_unique<SarifReport>(request.options.profiles);
    if (style.format == "github") return std::make_unique<GithubReport>();
    return std::make_unique<TextReport>(style.colour, request.choice.leastShown);
}

}  // namespace tool
