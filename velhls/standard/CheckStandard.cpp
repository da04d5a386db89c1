#include "velhls/standard/CheckStandard.h"

#include <array>
#include <iterator>
#include <optional>

#include "velhls/common/Names.h"
#include "velhls/common/TextScan.h"
#include "velhls/document/VELHLSStructure.h"
#include "velhls/standard/CheckedPlaylist.h"
#include "velhls/standard/StandardFindings.h"
#include "velhls/standard/TextCharacters.h"

namespace velhls {
namespace {

template <typename Subject>
void findAll(const StandardTable<Subject>& table, const Subject& subject, StandardFindings& findings) {
    for (const StandardEntry<Subject>& entry : table)
        entry.find(subject, Tell(findings, entry.rule));
}

enum class DurationForm { other, whole, decimals };

/// Of "6," and what follows, and of "6.006,": of these there is nothing to find.
DurationForm formOfDuration(std::string_view value) {
    const auto skipDigits = [value](std::size_t place) {
        while (place < value.size() && isDigit(value[place]))
            ++place;
        return place;
    };
    std::size_t place = skipDigits(0);
    if (place == 0) return DurationForm::other;
    const bool hasPoint = place < value.size() && value[place] == '.';
    if (hasPoint) place = skipDigits(place + 1);
    if (place == value.size() || value[place] != ',') return DurationForm::other;
    return hasPoint ? DurationForm::decimals : DurationForm::whole;
}

/// Goes through the lines with the rules that look at one line.
class LineRun {
  public:
    LineRun(CheckedPlaylist& playlist, StandardFindings& findings)
        : playlist_(playlist), findings_(findings) {}

    void run() {
        for (const VELHLSLine line : playlist_.document().lines())
            check(line);
    }

  private:
    void check(const VELHLSLine& line) {
        playlist_.add(line);
        attributes_.clear();
        rows_.clear();
        const bool isTag = line.definition != nullptr && playlist_.knows(*line.definition);
        if (isTag && line.definition->form == VELHLSTagDefinition::AttributeList) {
            readAttributes(line);
        }
        const CheckedLine checked = {playlist_,   line,  trimmed(line.value), isTag ? noteTag(line) : 0,
                                     attributes_, rows_, variantOf(line)};
        if (playlist_.profile() == StandardProfile::apple) {
            if (!attributes_.empty()) findAll(authoringLineRules(), checked, findings_);
        } else {
            if (!isPlain(line.text)) findAll(textRules(), checked, findings_);
            if (line.kind == VELHLSLine::Uri) findAll(uriRules(), checked, findings_);
            const bool mayBeTag = line.kind == VELHLSLine::Tag || line.kind == VELHLSLine::Comment;
            if (mayBeTag && line.definition == nullptr) findAll(unknownTagRules(), checked, findings_);
            if (isTag) checkTag(checked);
        }
        if (line.kind == VELHLSLine::Uri) ++segment_;
    }

    /// The lines come in the order of the variants.
    const VELHLSStructure::Variant* variantOf(const VELHLSLine& line) {
        const auto& variants = playlist_.structure().variants();
        while (variant_ + 1 < variants.size() && variants[variant_ + 1].tagLine <= line.number)
            ++variant_;
        if (variant_ == variants.size()) return nullptr;
        const VELHLSStructure::Variant& variant = variants[variant_];
        return line.number == variant.tagLine || line.number == variant.uriLine ? &variant : nullptr;
    }

    void readAttributes(const VELHLSLine& line) {
        for (const VELHLSAttribute& attribute : line.attributes()) {
            const VELHLSAttributeDefinition* const row = line.definition->findAttribute(attribute.name);
            attributes_.push_back(attribute);
            rows_.push_back(row != nullptr && playlist_.knows(*row) ? row : nullptr);
        }
        playlist_.keep(line, attributes_);
    }

    void checkTag(const CheckedLine& checked) {
        const auto ownKind = playlist_.isMaster() ? VELHLSTagDefinition::Master : VELHLSTagDefinition::Media;
        const bool isStray = checked.line.definition->playlist != VELHLSTagDefinition::Either &&
                             checked.line.definition->playlist != ownKind;
        if (isStray || checked.earlierLine != 0) findAll(placeRules(), checked, findings_);
        if (checked.line.definition->form == VELHLSTagDefinition::Duration) {
            checkDuration(checked);
        } else {
            findAll(valueRules(), checked, findings_);
        }
        if (checked.line.definition->form == VELHLSTagDefinition::DateTime)
            findAll(dateRules(), checked, findings_);
        if (checked.line.definition->form == VELHLSTagDefinition::AttributeList) checkList(checked);
    }

    void checkDuration(const CheckedLine& checked) {
        const DurationForm form = formOfDuration(checked.line.value);
        if (form == DurationForm::other) findAll(durationRules(), checked, findings_);
        const bool isKnown = form == DurationForm::whole ? playlist_.firstWholeDuration() != 0
                                                         : playlist_.firstDecimals() != 0;
        if (!isKnown) playlist_.noteDuration(checked.line);
    }

    /// Remembers the tag, and returns the line that had it before.
    std::size_t noteTag(const VELHLSLine& line) {
        if (!line.definition->once) return 0;
        Seen& seen = seen_[static_cast<std::size_t>(line.definition - tagTable.data())];
        const bool isOfSegment = line.definition->reach == VELHLSTagDefinition::Segment;
        const std::size_t earlier = isOfSegment && seen.segment != segment_ ? 0 : seen.line;
        seen = {line.number, segment_};
        return earlier;
    }

    void checkList(const CheckedLine& checked) {
        findAll(uriRules(), checked, findings_);
        findAll(attributeRules(), checked, findings_);
        if (playlist_.profile() == StandardProfile::rfc8216bis) findAll(laterLineRules(), checked, findings_);
        const std::string_view tag = checked.line.definition->name;
        if (tag == tag::key || tag == tag::sessionKey) findAll(keyRules(), checked, findings_);
        if (tag == "EXT-X-DATERANGE") findAll(dateRangeRules(), checked, findings_);
        if (tag == tag::media) findAll(renditionRules(), checked, findings_);
        if (tag == tag::streamInf || tag == tag::iFrameStreamInf) findAll(variantRules(), checked, findings_);
        if (tag == tag::sessionKey || tag == tag::sessionData) findAll(sessionRules(), checked, findings_);
    }

    /// The last line with a tag, and how many URIs came before it.
    struct Seen {
        std::size_t line = 0;
        std::size_t segment = 0;
    };

    CheckedPlaylist& playlist_;
    StandardFindings& findings_;
    std::vector<VELHLSAttribute> attributes_;
    std::vector<const VELHLSAttributeDefinition*> rows_;
    std::array<Seen, tagTable.size()> seen_ = {};
    std::size_t segment_ = 0;
    std::size_t variant_ = 0;
};

void checkSegments(const CheckedPlaylist& playlist, StandardFindings& findings) {
    const auto table =
        playlist.profile() == StandardProfile::apple ? authoringSegmentRules() : segmentRules();
    std::optional<VELHLSStructure::Segment> previous;
    std::string_view previousUri;
    SegmentFormat previousFormat = SegmentFormat::unknown;
    std::uint64_t discontinuities = playlist.number(tagIndexOf<tag::discontinuitySequence>).value_or(0);
    for (const VELHLSStructure::Segment& segment : playlist.structure().segments()) {
        if (segment.uriLine == 0) break;
        const VELHLSLine uri = playlist.document().line(segment.uriLine);
        const SegmentFormat format = formatOf(uri.value);
        const bool followsDiscontinuity = segment.discontinuitySequence != discontinuities;
        findAll(table,
                CheckedSegment{playlist, segment, uri, format, previousUri, previousFormat,
                               previous ? &*previous : nullptr, followsDiscontinuity},
                findings);
        discontinuities = segment.discontinuitySequence;
        previous = segment;
        previousUri = uri.value;
        previousFormat = format;
    }
}

void checkPlaylist(const CheckedPlaylist& playlist, StandardFindings& findings) {
    if (playlist.profile() == StandardProfile::apple)
        return findAll(playlist.isMaster() ? authoringMasterRules() : authoringMediaRules(), playlist,
                       findings);
    for (const auto& table :
         {headerRules(), versionRules(), lastSegmentRules(), keyRelationRules(), dateRangeRelationRules(),
          mediaPlaylistRules(), variantRelationRules(), groupRules(), sessionRelationRules()})
        findAll(table, playlist, findings);
    if (playlist.profile() == StandardProfile::rfc8216bis) findAll(laterPlaylistRules(), playlist, findings);
}

template <typename Subject>
void appendRules(const StandardTable<Subject>& table, std::vector<StandardRule>& rules) {
    for (const StandardEntry<Subject>& entry : table)
        rules.push_back(entry.rule);
}

}  // namespace

void checkStandard(const VELHLSDocument& document, VELHLSDocument::Kind kind, StandardProfile profile,
                   std::vector<VELHLSFinding>& findings, std::size_t mostOfOneRule) {
    // The rules speak of lines, and an empty text has none.
    if (document.lineCount() == 0) {
        const VELHLSDocument blank("\n");
        return checkStandard(blank, kind, profile, findings, mostOfOneRule);
    }
    StandardFindings found(profile, mostOfOneRule);
    const VELHLSStructure structure(document);
    CheckedPlaylist playlist(structure, kind, profile);
    if (isUtf16(document.text())) {
        // What it says in another encoding is nothing that rules of its lines could speak of.
        if (profile != StandardProfile::apple) findAll(encodingRules(), playlist, found);
    } else {
        LineRun(playlist, found).run();
        if (playlist.isMedia()) checkSegments(playlist, found);
        checkPlaylist(playlist, found);
    }
    std::vector<VELHLSFinding> all = found.takeAll();
    findings.insert(findings.end(), std::make_move_iterator(all.begin()), std::make_move_iterator(all.end()));
}

std::uint64_t neededVersion(const VELHLSDocument& document, VELHLSDocument::Kind kind,
                            StandardProfile profile) {
    StandardFindings found(profile);
    const VELHLSStructure structure(document);
    CheckedPlaylist playlist(structure, kind, profile);
    LineRun(playlist, found).run();
    return neededVersion(playlist);
}

std::vector<StandardRule> rulesOfStandard(StandardProfile profile) {
    std::vector<StandardRule> rules;
    if (profile == StandardProfile::apple) {
        appendRules(authoringMasterRules(), rules);
        appendRules(authoringLineRules(), rules);
        appendRules(authoringMediaRules(), rules);
        appendRules(authoringSegmentRules(), rules);
        return rules;
    }
    appendRules(encodingRules(), rules);
    appendRules(textRules(), rules);
    appendRules(headerRules(), rules);
    appendRules(placeRules(), rules);
    appendRules(uriRules(), rules);
    appendRules(unknownTagRules(), rules);
    appendRules(valueRules(), rules);
    appendRules(durationRules(), rules);
    appendRules(attributeRules(), rules);
    appendRules(versionRules(), rules);
    appendRules(segmentRules(), rules);
    appendRules(lastSegmentRules(), rules);
    appendRules(keyRules(), rules);
    appendRules(keyRelationRules(), rules);
    appendRules(dateRules(), rules);
    appendRules(dateRangeRules(), rules);
    appendRules(dateRangeRelationRules(), rules);
    appendRules(mediaPlaylistRules(), rules);
    appendRules(variantRules(), rules);
    appendRules(variantRelationRules(), rules);
    appendRules(renditionRules(), rules);
    appendRules(groupRules(), rules);
    appendRules(sessionRules(), rules);
    appendRules(sessionRelationRules(), rules);
    if (profile == StandardProfile::rfc8216bis) {
        appendRules(laterLineRules(), rules);
        appendRules(laterPlaylistRules(), rules);
    }
    return rules;
}

}  // namespace velhls
