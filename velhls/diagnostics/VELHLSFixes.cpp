#include "velhls/diagnostics/VELHLSFixes.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <utility>

#include "velhls/common/TextScan.h"
#include "velhls/diagnostics/BoundedCheck.h"
#include "velhls/diagnostics/ComposedEdits.h"
#include "velhls/diagnostics/KindDetection.h"
#include "velhls/document/VELHLSDocument.h"
#include "velhls/manifest/VELHLSParsedManifest.h"
#include "velhls/media/VELHLSMediaStream.h"

namespace {

using PlaylistKind = VELHLSDiagnostics::PlaylistKind;

/// What the models read of a text, as far as no safe fix may change it.
struct ReadRecords {
    bool isAccepted = false;
    /// The URIs of all segments or variants.
    std::vector<std::string> uris;

    [[nodiscard]] bool mayBecome(const ReadRecords& other) const {
        return !isAccepted || (other.isAccepted && uris == other.uris);
    }
};

std::string_view withoutBlanksBefore(std::string_view text) {
    while (!text.empty() && velhls::blanks.holds(text.front()))
        text.remove_prefix(1);
    return text;
}

ReadRecords recordsOf(const std::string& text, PlaylistKind kind) {
    ReadRecords records;
    VELHLSReason reason;
    if (kind == VELHLSDiagnostics::Master) {
        const auto manifest = VELHLSParsedManifest::parseManifest(text, &reason);
        records.isAccepted = manifest != nullptr;
        if (manifest == nullptr) return records;
        for (const auto& [bandwidth, variant] : manifest->variants)
            records.uris.emplace_back(withoutBlanksBefore(variant->uri));
        return records;
    }
    const auto stream = VELHLSMediaStream::parseMediaStream(text, &reason);
    records.isAccepted = stream != nullptr;
    if (stream == nullptr) return records;
    for (const auto& segment : stream->segments)
        records.uris.emplace_back(withoutBlanksBefore(segment->uri));
    return records;
}

/// A fix that may be taken, and whose it is.
struct Candidate {
    const VELHLSFinding* finding = nullptr;
    const VELHLSFix* fix = nullptr;
};

/// Edits that were taken, so that others can be asked whether they touch one.
class TakenEdits {
  public:
    explicit TakenEdits(std::string_view text) : text_(text) {}

    /// Takes all edits of a fix, or none of them.
    bool take(const std::vector<VELHLSEdit>& edits) {
        for (const VELHLSEdit& edit : edits) {
            if (touches(edit)) return false;
        }
        for (const VELHLSEdit& edit : edits) {
            if (edit.length > 0) {
                replaced_[edit.offset] = {edit.offset + edit.length, isOfLines(edit)};
            } else {
                const auto place = insertions_.emplace(edit.offset, true).first;
                place->second = place->second && isOfLines(edit);
            }
        }
        return true;
    }

  private:
    struct End {
        std::size_t end = 0;
        bool isOfLines = false;
    };

    [[nodiscard]] bool beginsLine(std::size_t offset) const {
        return offset == 0 || offset == text_.size() || text_[offset - 1] == '\n';
    }

    /// Whole lines that come or go: these may stand beside each other.
    [[nodiscard]] bool isOfLines(const VELHLSEdit& edit) const {
        const bool makesLines = edit.replacement.empty() || edit.replacement.back() == '\n';
        return makesLines && beginsLine(edit.offset) && beginsLine(edit.offset + edit.length);
    }

    [[nodiscard]] bool touches(const VELHLSEdit& edit) const {
        return touchesInsertion(edit) || touchesReplaced(edit);
    }

    [[nodiscard]] bool touchesInsertion(const VELHLSEdit& edit) const {
        const std::size_t end = edit.offset + edit.length;
        auto place = insertions_.lower_bound(edit.offset);
        for (; place != insertions_.end() && place->first <= end; ++place) {
            const bool isInside = place->first > edit.offset && place->first < end;
            if (isInside || !place->second || !isOfLines(edit)) return true;
        }
        return false;
    }

    [[nodiscard]] bool touchesReplaced(const VELHLSEdit& edit) const {
        const std::size_t end = edit.offset + edit.length;
        const auto next = replaced_.upper_bound(edit.offset);
        if (next != replaced_.end() && next->first <= end) {
            if (next->first < end || !next->second.isOfLines || !isOfLines(edit)) return true;
        }
        if (next == replaced_.begin()) return false;
        const auto& [start, before] = *std::prev(next);
        if (before.end < edit.offset) return false;
        const bool overlaps = before.end > edit.offset && (edit.length > 0 || start < edit.offset);
        return overlaps || !before.isOfLines || !isOfLines(edit);
    }

    std::string_view text_;
    /// Where something was inserted, and whether it was whole lines alone.
    std::map<std::size_t, bool> insertions_;
    /// What is replaced: by its start its end.
    std::map<std::size_t, End> replaced_;
};

/// Mends one text.
class Mender {
  public:
    Mender(std::string_view text, const VELHLSFixes::Options& options)
        : options_(options), text_(text), composed_(text.size()), largest_(2 * text.size() + growth) {
        document_ = std::make_unique<VELHLSDocument>(text_);
        kind_ = options.kind == VELHLSDiagnostics::Detect ? velhls::kindOf(*document_) : options.kind;
    }

    /// The text is the one that was given.
    VELHLSFixes::Result run(std::string_view text) {
        if (kind_ != VELHLSDiagnostics::Detect) {
            records_ = recordsOf(text_, kind_);
            while (result_.rounds < VELHLSFixes::maximumRounds && mendOnce())
                ++result_.rounds;
        }
        VELHLSDiagnostics::Options options;
        options.kind = options_.kind;
        options.profiles = options_.profiles;
        options.fixes = true;
        result_.left = VELHLSDiagnostics::check(text_, options);
        result_.edits = composed_.edits();
        findLines(text);
        result_.text = std::move(text_);
        return std::move(result_);
    }

  private:
    static constexpr std::size_t growth = std::size_t{64} << 10U;
    /// So often a set of fixes is tried that may have to be left out.
    static constexpr std::size_t mostTrials = 64;

    [[nodiscard]] bool isAskedFor(const VELHLSFix& fix) const {
        if (fix.fixClass == VELHLSFix::Guess) return options_.guess;
        return fix.fixClass == VELHLSFix::Safe || options_.lossy;
    }

    /// The fix of the finding that is to be taken; null for none.
    [[nodiscard]] const VELHLSFix* chosenOf(const VELHLSFinding& finding) const {
        const auto fix = std::find_if(finding.fixes.begin(), finding.fixes.end(),
                                      [this](const VELHLSFix& each) { return isAskedFor(each); });
        return fix == finding.fixes.end() ? nullptr : &*fix;
    }

    /// The fixes of one class that are to be taken and do not touch each other. What is safe comes first, in rounds of its
    /// own: it may show that what else is found only follows from it.
    [[nodiscard]] std::vector<Candidate> candidates(const std::vector<VELHLSFinding>& findings,
                                                    VELHLSFix::Class fixClass) const {
        std::vector<Candidate> chosen;
        std::set<std::pair<std::size_t, std::string_view>> insertions;
        TakenEdits taken(text_);
        for (const VELHLSFinding& finding : findings) {
            const VELHLSFix* const fix = chosenOf(finding);
            if (fix == nullptr || fix->fixClass != fixClass) continue;
            // Several findings may want the same line inserted.
            const VELHLSEdit& first = fix->edits.front();
            const bool inserts = fix->edits.size() == 1 && first.length == 0;
            if (inserts && insertions.count({first.offset, first.replacement}) != 0) continue;
            if (!taken.take(fix->edits)) continue;
            if (inserts) insertions.emplace(first.offset, first.replacement);
            chosen.push_back({&finding, fix});
        }
        return chosen;
    }

    /// True when something was mended.
    bool mendOnce() {
        const std::size_t most = VELHLSDiagnostics::maximumFindingsPerRule * 10 + text_.size() / 64;
        const std::vector<VELHLSFinding> findings =
            velhls::findingsToFix(*document_, kind_, options_.profiles, most);
        for (const auto fixClass : {VELHLSFix::Safe, VELHLSFix::Lossy, VELHLSFix::Guess}) {
            std::vector<Candidate> found = candidates(findings, fixClass);
            if (!found.empty() && settle(std::move(found))) return true;
        }
        return false;
    }

    /// Takes all of them, or as many as break nothing.
    bool settle(std::vector<Candidate> candidates) {
        if (!weights_) weights_ = weightsOf(*document_);
        std::vector<Candidate> kept;
        std::vector<std::vector<Candidate>> open = {std::move(candidates)};
        std::optional<Attempt> best;
        while (!open.empty()) {
            std::vector<Candidate> part = std::move(open.back());
            open.pop_back();
            std::vector<Candidate> tried = kept;
            tried.insert(tried.end(), part.begin(), part.end());
            std::optional<Attempt> attempt = tryOut(tried);
            if (attempt) {
                best = std::move(attempt);
                kept = std::move(tried);
            } else if (part.size() > 1 && trials_ < mostTrials) {
                const auto half = part.begin() + static_cast<std::ptrdiff_t>(part.size() / 2);
                open.emplace_back(half, part.end());
                open.emplace_back(part.begin(), half);
                ++trials_;
            }
        }
        if (!best) return false;
        take(kept, std::move(*best));
        return true;
    }

    /// What comes of a set of fixes that breaks nothing.
    struct Attempt {
        std::vector<VELHLSEdit> edits;
        std::unique_ptr<VELHLSDocument> document;
        ReadRecords records;
        std::vector<std::size_t> weights;
    };

    [[nodiscard]] std::vector<std::size_t> weightsOf(const VELHLSDocument& document) const {
        return velhls::weightyFindings(document, kind_, options_.profiles);
    }

    [[nodiscard]] std::optional<Attempt> tryOut(const std::vector<Candidate>& candidates) const {
        Attempt attempt;
        for (const Candidate& candidate : candidates)
            attempt.edits.insert(attempt.edits.end(), candidate.fix->edits.begin(),
                                 candidate.fix->edits.end());
        VELHLSEditedText edited = document_->apply(attempt.edits);
        if (edited.overlap || edited.text.size() > largest_ || edited.text == text_) return std::nullopt;
        attempt.records = recordsOf(edited.text, kind_);
        if (!records_.mayBecome(attempt.records)) return std::nullopt;
        attempt.document = std::make_unique<VELHLSDocument>(std::move(edited.text));
        if (velhls::kindOf(*attempt.document) != velhls::kindOf(*document_)) return std::nullopt;
        attempt.weights = weightsOf(*attempt.document);
        for (std::size_t profile = 0; profile < attempt.weights.size(); ++profile) {
            if (attempt.weights[profile] > (*weights_)[profile]) return std::nullopt;
        }
        return attempt;
    }

    void take(const std::vector<Candidate>& candidates, Attempt attempt) {
        tell(candidates);
        // The order in which the document applies them.
        std::stable_sort(
            attempt.edits.begin(), attempt.edits.end(), [](const VELHLSEdit& left, const VELHLSEdit& right) {
                return std::pair(left.offset, left.length > 0) < std::pair(right.offset, right.length > 0);
            });
        composed_.edit(attempt.edits);
        document_ = std::move(attempt.document);
        text_ = document_->text();
        records_ = std::move(attempt.records);
        weights_ = std::move(attempt.weights);
    }

    void tell(std::vector<Candidate> candidates) {
        const auto place = [](const Candidate& candidate) { return candidate.fix->edits.front().offset; };
        std::stable_sort(
            candidates.begin(), candidates.end(),
            [place](const Candidate& left, const Candidate& right) { return place(left) < place(right); });
        std::vector<std::size_t> offsets;
        offsets.reserve(candidates.size());
        std::transform(candidates.begin(), candidates.end(), std::back_inserter(offsets), place);
        const std::vector<std::size_t> places = composed_.placesInFirst(offsets);
        for (std::size_t index = 0; index < candidates.size(); ++index) {
            const auto& [finding, fix] = candidates[index];
            doneAt_.push_back(places[index]);
            result_.done.push_back({finding->ruleId, finding->profile, fix->fixClass, fix->sentence, 1});
        }
    }

    void findLines(std::string_view text) {
        if (result_.done.empty()) return;
        const VELHLSDocument first{std::string(text)};
        for (std::size_t index = 0; index < doneAt_.size(); ++index)
            result_.done[index].line = std::max<std::size_t>(first.lineAt(doneAt_[index]), 1);
    }

    const VELHLSFixes::Options& options_;
    std::string text_;
    std::unique_ptr<VELHLSDocument> document_;
    PlaylistKind kind_ = VELHLSDiagnostics::Detect;
    ReadRecords records_;
    /// Of each profile of the standard; unknown until something is to be mended.
    std::optional<std::vector<std::size_t>> weights_;
    velhls::ComposedEdits composed_;
    std::size_t largest_;
    std::size_t trials_ = 0;
    std::vector<std::size_t> doneAt_;
    VELHLSFixes::Result result_;
};

}  // namespace

VELHLSFixes::Result VELHLSFixes::apply(std::string_view text, const Options& options) {
    return Mender(text, options).run(text);
}

VELHLSFixes::Result VELHLSFixes::forModels(std::string_view text) {
    Options options;
    options.profiles = {VELHLSDiagnostics::Profile::library};
    return apply(text, options);
}
