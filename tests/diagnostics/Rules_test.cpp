#include <algorithm>
#include <filesystem>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/VELHLSCheck.h"

#include "tests/support/PlaylistText.h"

namespace {

using playlist::contentOf;

std::string pagePath(std::string_view id) {
    return VELHLS_RULE_PAGES "/" + std::string(id) + ".md";
}

/// The text with its escapes, "\r" and "\xNN", as the bytes that they stand for.
std::string unescaped(const std::string& text) {
    std::string bytes;
    for (std::size_t position = 0; position < text.size(); ++position) {
        if (text.compare(position, 2, "\\r") == 0) {
            bytes += '\r';
            position += 1;
        } else if (text.compare(position, 2, "\\x") == 0) {
            bytes += static_cast<char>(std::stoi(text.substr(position + 2, 2), nullptr, 16));
            position += 3;
        } else {
            bytes += text[position];
        }
    }
    return bytes;
}

/// The playlist in a page's block of the given kind.
std::string blockOf(const std::string& page, const std::string& kind) {
    const std::string opening = "```m3u8 " + kind;
    const std::size_t start = page.find(opening);
    if (start == std::string::npos) return "no block";
    const std::size_t lineEnd = page.find('\n', start);
    const std::string flags = page.substr(start + opening.size(), lineEnd - start - opening.size());
    std::string text = page.substr(lineEnd + 1, page.find("```", lineEnd) - lineEnd - 1);
    if (flags.find("escaped") != std::string::npos) text = unescaped(text);
    if (flags.find("without-final-line-feed") != std::string::npos) text.pop_back();
    return text;
}

/// The rules that a page says come with its own.
std::set<std::string> companionsOf(const std::string& page) {
    std::set<std::string> companions;
    std::istringstream lines(page);
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("- Comes with: ", 0) != 0) continue;
        for (std::size_t open = line.find('['); open != std::string::npos; open = line.find('[', open + 1))
            companions.insert(line.substr(open + 1, line.find(']', open) - open - 1));
    }
    return companions;
}

std::set<std::string> rulesFound(const std::string& text, VELHLSFinding::Severity least) {
    std::set<std::string> found;
    for (const VELHLSFinding& finding : VELHLSDiagnostics::check(text)) {
        if (finding.severity >= least) found.insert(finding.ruleId);
    }
    return found;
}

TEST(Rules, HaveIdsThatAreUnique) {
    std::set<std::string_view> ids;
    for (const VELHLSRule& rule : VELHLSDiagnostics::rules())
        EXPECT_TRUE(ids.insert(rule.id).second) << rule.id;
}

TEST(Rules, AreFoundByTheirIds) {
    for (const VELHLSRule& rule : VELHLSDiagnostics::rules()) {
        const auto found = VELHLSDiagnostics::ruleNamed(std::string(rule.id));
        ASSERT_TRUE(found.has_value());
        EXPECT_EQ(found->summary, rule.summary);
    }
    EXPECT_FALSE(VELHLSDiagnostics::ruleNamed("no-such-rule").has_value());
    EXPECT_FALSE(VELHLSDiagnostics::ruleNamed("").has_value());
}

TEST(Rules, HavePagesThatSayWhatTheTableSays) {
    for (const VELHLSRule& rule : VELHLSDiagnostics::rules()) {
        SCOPED_TRACE(rule.id);
        const std::string page = contentOf(pagePath(rule.id));
        std::string words = page;
        std::replace(words.begin(), words.end(), '\n', ' ');
        const std::string head = "# " + std::string(rule.id) + "  " + std::string(rule.summary) +
                                 "  - Severity: " + std::string(VELHLSFinding::textOf(rule.severity)) +
                                 " - Source: " + std::string(rule.source) + " ";
        EXPECT_EQ(words.substr(0, head.size()), head);
        const bool saysLost =
            page.find("\n- What the library writes does not hold it any more.\n") != std::string::npos;
        EXPECT_EQ(saysLost, rule.isLostWhenWritten);
    }
}

TEST(Rules, HaveNoPagesWithoutThem) {
    std::set<std::string> pages;
    for (const auto& entry : std::filesystem::directory_iterator(VELHLS_RULE_PAGES))
        pages.insert(entry.path().stem().string());
    pages.erase("README");
    for (const VELHLSRule& rule : VELHLSDiagnostics::rules())
        pages.erase(std::string(rule.id));
    EXPECT_EQ(pages, std::set<std::string>());
}

TEST(Rules, AreListedInTheIndexInTheirOrder) {
    const std::string index = contentOf(pagePath("README"));
    std::size_t position = 0;
    for (const VELHLSRule& rule : VELHLSDiagnostics::rules()) {
        const std::string id(rule.id);
        const std::string row = "| [" + id + "](" + id + ".md) | " +
                                std::string(VELHLSFinding::textOf(rule.severity)) + " | " +
                                std::string(rule.summary) + " |\n";
        const std::size_t found = index.find(row, position);
        ASSERT_NE(found, std::string::npos) << row;
        position = found + row.size();
    }
    EXPECT_EQ(position, index.size());
}

/// Of a warning's and an error's page nothing else is found that weighs as much as a warning; of a note's page
/// nothing else at all.
TEST(Rules, AreAllThatIsFoundInTheFailingPlaylistsOfTheirPages) {
    for (const VELHLSRule& rule : VELHLSDiagnostics::rules()) {
        SCOPED_TRACE(rule.id);
        const std::string page = contentOf(pagePath(rule.id));
        std::set<std::string> expected = companionsOf(page);
        expected.insert(std::string(rule.id));
        const auto least = std::min(rule.severity, VELHLSFinding::Warning);
        EXPECT_EQ(rulesFound(blockOf(page, "failing"), least), expected) << blockOf(page, "failing");
    }
}

TEST(Rules, AreNotFoundInTheGoodPlaylistsOfTheirPages) {
    for (const VELHLSRule& rule : VELHLSDiagnostics::rules()) {
        SCOPED_TRACE(rule.id);
        const std::string good = blockOf(contentOf(pagePath(rule.id)), "good");
        EXPECT_NE(good, "no block");
        const std::set<std::string> found = rulesFound(good, VELHLSFinding::Note);
        EXPECT_EQ(found.count(std::string(rule.id)), 0U) << good;
        for (const std::string& id : found) {
            EXPECT_NE(VELHLSDiagnostics::ruleNamed(id)->severity, VELHLSFinding::Error) << id;
        }
    }
}

TEST(Rules, HaveTheFailingPlaylistsOfTheirPagesAmongTheExamples) {
    for (const VELHLSRule& rule : VELHLSDiagnostics::rules()) {
        const std::string example = VELHLS_EXAMPLE_FINDINGS "/" + std::string(rule.id) + ".m3u8";
        EXPECT_EQ(contentOf(example), blockOf(contentOf(pagePath(rule.id)), "failing")) << rule.id;
    }
}

}  // namespace
