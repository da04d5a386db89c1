#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "velhls/VELHLSCheck.h"

#include "fuzz/Playlists.h"
#include "tests/support/PageElements.h"
#include "tool/Check.h"
#include "tool/report/PageReport.h"

namespace {

using tool::report::PageReport;

/// A file named by the start of its text, with all that is found in it.
tool::CheckedFile checked(const std::string& text) {
    VELHLSDiagnostics::Options options;
    options.profiles = VELHLSDiagnostics::profiles();
    options.fixes = true;
    VELHLSDiagnostics::Report report = VELHLSDiagnostics::check(text, options);
    tool::CheckedFile file;
    file.path = text.substr(0, 60);
    file.name = file.path;
    file.text = text;
    file.kind = report.kind;
    file.rejected = std::move(report.rejected);
    tool::FindingChoice all;
    all.leastShown = VELHLSFinding::Note;
    tool::choose(file, std::move(report.findings), all);
    return file;
}

/// The texts between NUL bytes are versions of one playlist; one alone is a playlist. False for what is none.
bool read(const std::string& text, PageReport& report) {
    std::unique_ptr<VELHLSDocument> before;
    std::size_t start = 0;
    for (std::size_t end = text.find('\0'); end != std::string::npos; end = text.find('\0', start)) {
        auto now = std::make_unique<VELHLSDocument>(text.substr(start, end - start));
        std::optional<VELHLSComparison> comparison;
        if (before != nullptr) comparison = VELHLSComparison::compare(*before, *now);
        if (before != nullptr && !comparison) return false;
        report.addVersion(checked(now->text()), *now, comparison ? &*comparison : nullptr);
        before = std::move(now);
        start = end + 1;
    }
    const tool::CheckedFile last = checked(text.substr(start));
    if (last.kind == tool::PlaylistKind::Detect) return false;
    report.add(last);
    report.end({});
    return true;
}

/// Every text and every value is escaped: no element and no attribute comes out of a playlist, and no link leads to what it names.
void expectHarmless(const std::string& markup, const std::string& withoutType) {
    for (const std::string& element : page::elementsOf(withoutType)) {
        fuzz::expect(element != "broken", "a page is well-formed", markup);
        fuzz::expect(element.rfind("script", 0) != 0, "a page runs nothing", element);
        fuzz::expect(element.find(" on") == std::string::npos, "no element of a page runs anything", element);
    }
    const std::string link = "href=\"";
    for (std::size_t place = markup.find(link); place != std::string::npos;
         place = markup.find(link, place + 1)) {
        const std::string target = markup.substr(place + link.size(), 8);
        fuzz::expect(target.front() == '#' || target == "https://", "links lead to the page or the rules",
                     target);
    }
    for (const char character : markup)
        fuzz::expect(static_cast<unsigned char>(character) >= ' ' || character == '\n',
                     "no control characters", markup);
}

}  // namespace

VELHLS_FUZZ_TARGET(report) {
    if (fuzz::holdsSlowPattern(text)) return;
    PageReport report;
    if (!read(text, report)) return;
    constexpr fuzz::Cost cost = {512, std::size_t{4} << 20};
    const std::string html = fuzz::bounded(text.size(), cost, [&] { return pageAsHtml(report.page()); });
    expectHarmless(html, html);
    try {
        const std::string svg = fuzz::bounded(text.size(), cost, [&] { return pageAsSvg(report.page()); });
        expectHarmless(svg, "\n" + svg);
    } catch (const tool::Failure&) {
        // There is nothing to draw.
    }
}
