#include "tool/report/FindingTables.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <utility>

#include "tool/FindingText.h"
#include "tool/RuleLinks.h"
#include "tool/RulePages.h"
#include "tool/report/HtmlTable.h"
#include "tool/report/Limits.h"
#include "tool/report/Words.h"

namespace tool::report {
namespace {

/// The rule as its profile has it, or a comparison.
std::optional<VELHLSRule> ruleOf(const std::string& profile, const std::string& id) {
    const auto in = [&id](const std::vector<VELHLSRule>& rules) -> std::optional<VELHLSRule> {
        const auto found =
            std::find_if(rules.begin(), rules.end(), [&id](const VELHLSRule& rule) { return rule.id == id; });
        return found == rules.end() ? std::nullopt : std::optional(*found);
    };
    const auto known = VELHLSDiagnostics::profileNamed(profile);
    if (const auto rule = known ? in(VELHLSDiagnostics::rules(*known)) : std::nullopt) return rule;
    if (const auto rule = VELHLSDiagnostics::ruleNamed(id)) return rule;
    return in(VELHLSComparison::rules());
}

std::string ruleAnchor(const std::string& id) {
    return "rule:" + id;
}

void appendRuleLink(Markup& page, const std::string& id) {
    page.leaf("a", id, {{"href", "#" + ruleAnchor(id)}});
}

/// A rule in all playlists.
struct RulePlaces {
    std::size_t count = 0;
    /// Paths and lines.
    std::vector<std::pair<std::string, std::size_t>> places;
};

/// By profile, the gravest severity first, and rule.
using FoundRules = std::map<std::tuple<std::size_t, int, std::string, std::string>, RulePlaces>;

std::size_t orderOf(const std::string& profile) {
    const auto known = VELHLSDiagnostics::profileNamed(profile);
    return known ? static_cast<std::size_t>(*known) : VELHLSDiagnostics::profiles().size();
}

FoundRules rulesIn(const std::vector<Source>& sources) {
    FoundRules rules;
    for (const Source& source : sources) {
        for (const auto& [key, found] : source.rules) {
            const auto& [profile, id] = key;
            RulePlaces& rule = rules[{orderOf(profile), -static_cast<int>(found.severity), profile, id}];
            rule.count += found.count;
            for (const std::size_t line : found.lines) {
                if (rule.places.size() < mostPlaces) rule.places.emplace_back(source.path, line);
            }
        }
    }
    return rules;
}

Cell severityCell(VELHLSFinding::Severity severity) {
    const std::string word(VELHLSFinding::textOf(severity));
    Markup content;
    content.leaf("span", word, {{"class", word}});
    return {content};
}

Cell placesCell(const RulePlaces& rule, const PageNames& names) {
    Markup content;
    bool isFirst = true;
    for (const auto& [path, line] : rule.places) {
        if (!isFirst) content.text(", ");
        names.appendLine(content, path, line, names.nameOf(path) + ":" + std::to_string(line));
        isFirst = false;
    }
    if (rule.count > rule.places.size())
        content.text(" and " + grouped(rule.count - rule.places.size()) + " more");
    return {content};
}

// -- The lines.

class SourceWriter {
  public:
    SourceWriter(Markup& page, const Source& source, const PageNames& names)
        : page_(page), source_(source), names_(names), name_(names.nameOf(source.path)) {}

    void write() {
        page_.open("section", {{"id", names_.sourceAnchor(source_.path)}}).leaf("h3", name_);
        page_.leaf("p", summary(), {{"class", "soft"}});
        if (source_.rejected)
            page_.leaf("p", describeRejection(name_, *source_.rejected), {{"class", "warning"}});
        page_.open("div", {{"class", "code scroll"},
                           {"tabindex", "0"},
                           {"role", "region"},
                           {"aria-label", "Lines of " + name_}});
        page_.verbatim("\n");
        std::size_t next = 1;
        for (const SourceLine& line : source_.lines) {
            writeGap(next, line.number);
            writeLine(line);
            next = line.number + 1;
        }
        writeGap(next, source_.lineCount + 1);
        for (const Note& note : source_.notes) {
            if (note.line > source_.lineCount) writeNote(note);
        }
        page_.close().close().verbatim("\n");
    }

  private:
    [[nodiscard]] std::string summary() const {
        std::string text = numberOf(source_.lineCount, "line");
        for (const auto severity : {VELHLSFinding::Error, VELHLSFinding::Warning, VELHLSFinding::Note}) {
            const std::size_t count = source_.counts.of(severity);
            if (count > 0) text += ", " + numberOf(count, VELHLSFinding::textOf(severity));
        }
        std::size_t listed = 0;
        for (const auto& [key, rule] : source_.rules)
            listed += rule.count;
        const std::size_t beside = source_.notes.size();
        if (listed > beside)
            text += "; " + grouped(listed - beside) + " findings of rules with many are counted alone";
        return text;
    }

    /// What is left out between two lines.
    void writeGap(std::size_t from, std::size_t to) {
        if (from >= to) return;
        const std::string lines =
            to - from == 1 ? "line " + grouped(from) : "lines " + grouped(from) + " to " + grouped(to - 1);
        page_.leaf("div", "\xE2\x8B\xAF " + lines, {{"class", "left"}}).verbatim("\n");
    }

    void writeLine(const SourceLine& line) {
        const std::string anchor = anchorOf(name_, lineAnchor(line.number));
        page_.open("div", {{"id", anchor}});
        page_.leaf("a", std::to_string(line.number), {{"href", "#" + anchor}});
        page_.leaf("code", line.text).close().verbatim("\n");
        for (const Note& note : source_.notes) {
            if (note.line == line.number) writeNote(note);
        }
    }

    void writeNote(const Note& note) {
        page_.open("div", {{"class", "note"}});
        page_.leaf("code", std::string(note.indent, ' ') + "^" + std::string(note.width - 1, '~'),
                   {{"aria-hidden", "true"}});
        const std::string severity(VELHLSFinding::textOf(note.severity));
        page_.open("p")
            .leaf("span", severity, {{"class", severity}})
            .text(": " + cut(note.message, 2 * mostTextBytes) + " ");
        appendRuleLink(page_, note.ruleId);
        page_.close();
        for (const RelatedNote& related : note.related)
            writeRelated(related);
        for (const FixNote& fix : note.fixes)
            writeFix(fix);
        page_.close().verbatim("\n");
    }

    void writeRelated(const RelatedNote& related) {
        const std::string& path = related.path.empty() ? source_.path : related.path;
        page_.open("p").text("see ");
        names_.appendLine(page_, path, related.line,
                          names_.nameOf(path) + ":" + std::to_string(related.line));
        page_.text(": " + cut(related.message, mostTextBytes)).close();
    }

    void writeFix(const FixNote& fix) {
        page_.leaf("p", fix.fixClass + " fix: " + cut(fix.sentence, mostTextBytes));
        if (fix.difference.empty()) return;
        page_.open("pre");
        for (const std::string& line : fix.difference)
            page_.leaf(line.front() == '-' ? "del" : "ins", line).verbatim("\n");
        if (fix.more > 0) page_.text(grouped(fix.more) + " more lines");
        page_.close();
    }

    Markup& page_;
    const Source& source_;
    const PageNames& names_;
    std::string name_;
};

// -- The rules.

/// What stands below a heading of a page of Markdown, without the marks of links.
std::string sectionOf(std::string_view markdown, std::string_view heading) {
    const std::size_t start = markdown.find(heading);
    if (start == std::string_view::npos) return {};
    std::string_view section = markdown.substr(start + heading.size());
    section = section.substr(0, section.find("\n#"));
    std::string text;
    while (!section.empty()) {
        const std::size_t link = std::min(section.find("]("), section.size());
        text += section.substr(0, link);
        section.remove_prefix(link);
        if (section.empty()) break;
        section.remove_prefix(std::min(section.find(')') + 1, section.size()));
        text.erase(text.rfind('['), 1);
    }
    return text;
}

/// The texts between blank lines.
std::vector<std::string> paragraphsOf(const std::string& text) {
    std::vector<std::string> paragraphs;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find("\n\n", start), text.size());
        std::string paragraph = text.substr(start, end - start);
        std::replace(paragraph.begin(), paragraph.end(), '\n', ' ');
        paragraph.erase(0, std::min(paragraph.find_first_not_of(' '), paragraph.size()));
        paragraph.erase(paragraph.find_last_not_of(' ') + 1);
        if (!paragraph.empty()) paragraphs.push_back(std::move(paragraph));
        start = end + 2;
    }
    return paragraphs;
}

void appendRule(Markup& page, const std::string& profile, const std::string& id) {
    const auto rule = ruleOf(profile, id);
    page.open("section", {{"id", ruleAnchor(id)}}).leaf("h3", id);
    if (rule) {
        page.leaf("p", rule->summary);
        const std::string level = rule->level.empty() ? "" : ", " + std::string(rule->level);
        page.open("p", {{"class", "soft"}}).text(profile + ", ");
        const std::string uri = helpUriOf(*rule);
        if (uri.empty())
            page.text(rule->source);
        else
            page.leaf("a", rule->source, {{"href", uri}, {"rel", "noreferrer"}});
        page.text(level).close();
    }
    for (const std::string& paragraph : paragraphsOf(sectionOf(pageOf(id), "## Why\n")))
        page.leaf("p", paragraph);
    page.close().verbatim("\n");
}

}  // namespace

void appendFindings(Markup& page, const std::vector<Source>& sources, const PageNames& names) {
    HtmlTable table("Findings by profile and severity",
                    {"Rule", "Profile", "Severity", "What", "Count", "Where"});
    for (const auto& [key, found] : rulesIn(sources)) {
        const auto& [order, severity, profile, id] = key;
        const auto rule = ruleOf(profile, id);
        Markup link;
        appendRuleLink(link, id);
        table.addRow({Cell(link), profile, severityCell(static_cast<VELHLSFinding::Severity>(-severity)),
                      rule ? std::string(rule->summary) : "", numberCell(grouped(found.count)),
                      placesCell(found, names)});
    }
    table.appendTo(page);
}

void appendSources(Markup& page, const std::vector<Source>& sources, const PageNames& names) {
    for (const Source& source : sources)
        SourceWriter(page, source, names).write();
}

void appendRules(Markup& page, const std::vector<Source>& sources) {
    std::map<std::string, std::string> profiles;
    for (const auto& [key, found] : rulesIn(sources))
        profiles.emplace(std::get<3>(key), std::get<2>(key));
    for (const auto& [id, profile] : profiles)
        appendRule(page, profile, id);
}

}  // namespace tool::report
