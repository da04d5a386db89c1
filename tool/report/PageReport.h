#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "tool/Report.h"
#include "tool/report/Page.h"

namespace tool::report {

/// Makes a page of what is checked. It holds what the page shows, and no text of a playlist.
class PageReport : public Report {
  public:
    /// Throws a Failure for a file that was named and is no playlist.
    void add(const CheckedFile& file) override;
    void end(const CheckSummary& summary) override { page_.summary = summary; }

    /// Adds a version of a series, with what was found in it; the comparison is null for the first.
    void addVersion(const CheckedFile& file, const VELHLSDocument& document,
                    const VELHLSComparison* comparison);

    [[nodiscard]] const Page& page() const { return page_; }

  private:
    void addPresentation(const CheckedFile& master, const VELHLSDocument& document);
    const std::vector<Timeline>& goToTimelineOf(const CheckedFile& file, const VELHLSDocument& document);
    void addSource(const CheckedFile& file, const VELHLSDocument& document,
                   const std::vector<std::size_t>& linked);
    [[nodiscard]] std::vector<std::size_t> linesOfEvents(const CheckedFile& file,
                                                         const VELHLSDocument& document);

    Page page_;
    /// Each file is shown once.
    std::set<std::string> paths_;
    /// The place of the part that playlists without a master playlist are in.
    std::optional<std::size_t> alone_;
    /// The place of the timeline of the file that came last.
    std::size_t timeline_ = 0;
};

}  // namespace tool::report
