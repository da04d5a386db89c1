#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velhls/VELHLSCheck.h"

#include "tool/FindingChoice.h"
#include "tool/PlaylistKind.h"

namespace tool::report {

/// What mends a finding.
struct FixNote {
    std::string fixClass;
    std::string sentence;
    /// The lines of the difference that go and come, "-…" and "+…", and how many more there are.
    std::vector<std::string> difference;
    std::size_t more = 0;
};

/// Another place that a finding speaks of.
struct RelatedNote {
    /// Empty for the same playlist.
    std::string path;
    std::size_t line = 0;
    std::string message;
};

/// A finding beside its line.
struct Note {
    VELHLSFinding::Severity severity = VELHLSFinding::Note;
    std::string ruleId;
    std::string profile;
    std::size_t line = 0;
    std::string message;
    /// How many columns of the shown line stand before the place, and how many it has.
    std::size_t indent = 0;
    std::size_t width = 1;
    std::vector<RelatedNote> related;
    std::vector<FixNote> fixes;
};

/// How many findings a rule has in a playlist, and where.
struct RuleCount {
    VELHLSFinding::Severity severity = VELHLSFinding::Note;
    std::size_t count = 0;
    /// The lines of the first ones, which are all shown.
    std::vector<std::size_t> lines;
};

struct SourceLine {
    std::size_t number = 0;
    /// Of a long line the part around its finding, or its start.
    std::string text;
};

/// A playlist with its findings, as far as it is shown.
struct Source {
    std::string path;
    PlaylistKind kind = PlaylistKind::Detect;
    std::size_t lineCount = 0;
    /// In the order of their numbers; some may be left out between them.
    std::vector<SourceLine> lines;
    /// In the order of their places.
    std::vector<Note> notes;
    /// By profile and rule.
    std::map<std::pair<std::string, std::string>, RuleCount> rules;
    /// All findings, those that are not shown among them.
    FindingCounts counts;
    /// Why the models reject it, if they do.
    std::optional<VELHLSReason> rejected;
};

/// Reads what is shown of a playlist: both ends, the lines of `linked`, and its findings with the lines around them.
[[nodiscard]] Source readSource(const std::string& path, const VELHLSDocument& document,
                                const std::vector<VELHLSFinding>& findings,
                                const std::vector<std::size_t>& linked);

}  // namespace tool::report
