#include "velhls/document/VELHLSStructure.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <string_view>

#include "velhls/common/Names.h"
#include "velhls/common/TextScan.h"
#include "velhls/document/LineCode.h"
#include "velhls/document/VELHLSSyntax.h"

namespace {

using velhls::LineCode;
namespace code = velhls::line_code;

constexpr std::uint64_t noOffset = std::numeric_limits<std::uint64_t>::max();

/// Bounded, so that dates can be added to it; what is no number too.
std::int64_t toMicroseconds(double seconds) {
    constexpr double most = 4e12;
    return std::llround((seconds < most ? seconds : most) * 1e6);
}

/// Seconds; 0 when they cannot be read.
double readDuration(std::string_view value) {
    return VELHLSSyntax::readDecimalFloatingPoint(value.substr(0, value.find(','))).value_or(0.0);
}

constexpr bool isOfSegment(const VELHLSTagDefinition& tag) {
    return tag.reach == VELHLSTagDefinition::Segment || tag.reach == VELHLSTagDefinition::FromSegment;
}

constexpr std::array<bool, 256> codesOfSegmentTags() {
    std::array<bool, 256> codes = {};
    for (std::size_t index = 0; index < velhls::tagTable.size(); ++index) {
        codes[LineCode::ofTag(index).number()] = isOfSegment(velhls::tagTable[index]);
    }
    return codes;
}

/// Which codes are those of a segment's tags: this is asked for each line.
constexpr std::array<bool, 256> segmentTagCodes = codesOfSegmentTags();

bool staysWhenRemoved(LineCode lineCode) {
    const VELHLSTagDefinition* const tag = lineCode.definition();
    return tag != nullptr && tag->reach == VELHLSTagDefinition::FromSegment;
}

}  // namespace

/// Walks over the lines once and writes down what they make.
class VELHLSStructure::Finder {
  public:
    explicit Finder(VELHLSStructure& structure) : structure_(structure), document_(structure.document_) {}

    void find() {
        reserve();
        for (std::size_t line = 1; line <= document_.lineCount(); ++line)
            readLine(line, document_.codes_[line - 1]);
        if (segment_.firstLine != 0) endSegment(segment_.lastLine, false);
    }

  private:
    /// Lets every list grow to its size at once.
    void reserve() {
        std::array<std::size_t, 256> counts = {};
        for (const std::uint8_t number : document_.codes_)
            ++counts[number];
        const auto count = [&counts](LineCode lineCode) { return counts[lineCode.number()]; };
        structure_.variants_.reserve(count(code::streamInf));
        const std::size_t uris = count(code::uri);
        structure_.segments_.reserve(uris - std::min(uris, count(code::streamInf)) + 1);
        structure_.changes_.reserve(count(code::key) + count(code::map) + count(code::programDateTime));
        structure_.keyLines_.reserve(count(code::key));
    }

    void readLine(std::size_t line, std::uint8_t number) {
        if (segmentTagCodes[number]) belongsToSegment(line);
        switch (number) {
            case code::uri.number():
                return readUri(line);
            case code::extInf.number():
                duration_ = readDuration(value(line));
                return;
            case code::byteRange.number():
                rangeLine_ = line;
                return;
            case code::discontinuity.number():
                ++discontinuities_;
                return;
            case code::key.number():
                return readKey(line);
            case code::map.number():
                change(line).mapLine = static_cast<std::uint32_t>(line);
                return;
            case code::programDateTime.number():
                return readDate(line);
            case code::streamInf.number():
                structure_.variants_.push_back({static_cast<std::uint32_t>(line), 0});
                isVariantOpen_ = true;
                return;
            case code::mediaSequence.number():
            case code::discontinuitySequence.number():
            case code::skip.number():
                return readSequence(line, LineCode(number));
            default:
                return;
        }
    }

    void belongsToSegment(std::size_t line) {
        segment_.lastLine = static_cast<std::uint32_t>(line);
        if (segment_.firstLine == 0) segment_.firstLine = segment_.lastLine;
    }

    void readUri(std::size_t line) {
        if (isVariantOpen_) {
            structure_.variants_.back().uriLine = static_cast<std::uint32_t>(line);
            isVariantOpen_ = false;
            return;
        }
        belongsToSegment(line);
        endSegment(line, true);
    }

    void endSegment(std::size_t line, bool hasUri) {
        segment_.changes = static_cast<std::uint32_t>(structure_.changes_.size());
        segment_.discontinuities = discontinuities_;
        segment_.startTime = startTime_;
        segment_.rangeOffset = rangeLine_ == 0 ? noOffset : readRange(hasUri ? line : 0);
        if (rangeLine_ == 0) before_ = {};
        structure_.segments_.push_back(segment_);
        startTime_ += duration_;
        duration_ = 0.0;
        rangeLine_ = 0;
        segment_ = {};
    }

    /// Where the range of the segment begins if that is where the one before it ends. An offset that is written is read when
    /// it is asked for.
    std::uint64_t readRange(std::size_t uriLine) {
        const bool isWritten = value(rangeLine_).find('@') != std::string_view::npos;
        const bool follows =
            !isWritten && uriLine != 0 && before_.uriLine != 0 && value(before_.uriLine) == value(uriLine);
        const std::uint64_t offset = follows ? endOf(before_) : noOffset;
        before_ = {rangeLine_, uriLine, offset};
        return offset;
    }

    /// A segment's range: its tag, its URI, and where it begins unless that is written.
    struct Range {
        std::size_t line = 0;
        std::size_t uriLine = 0;
        std::uint64_t offset = noOffset;
    };

    /// noOffset when it is not known.
    [[nodiscard]] std::uint64_t endOf(const Range& before) const {
        const auto range = VELHLSSyntax::readByteRange(value(before.line));
        if (!range) return noOffset;
        const std::uint64_t offset = range->offset.value_or(before.offset);
        return offset != noOffset && range->length < noOffset - offset ? offset + range->length : noOffset;
    }

    void readKey(std::size_t line) {
        const VELHLSAttributes attributes(value(line));
        std::string_view format = "identity";
        bool endsAll = false;
        for (const VELHLSAttribute& attribute : attributes) {
            if (attribute.name == velhls::attribute::method) endsAll = attribute.value == velhls::fixed::none;
            if (attribute.name == velhls::attribute::keyFormat) format = attribute.value;
        }
        keys_.erase(std::remove_if(keys_.begin(), keys_.end(),
                                   [&](const Key& key) { return endsAll || key.format == format; }),
                    keys_.end());
        if (keys_.size() == maximumKeys) keys_.erase(keys_.begin());
        if (!endsAll) keys_.push_back({static_cast<std::uint32_t>(line), format});

        Change& changed = change(line);
        changed.firstKey = static_cast<std::uint32_t>(structure_.keyLines_.size());
        changed.keyCount = static_cast<std::uint32_t>(keys_.size());
        for (const Key& key : keys_)
            structure_.keyLines_.push_back(key.line);
    }

    void readDate(std::size_t line) {
        Change& changed = change(line);
        changed.dateLine = static_cast<std::uint32_t>(line);
        changed.dateStartTime = startTime_;
    }

    /// They number the first segment, so that they say nothing after it.
    void readSequence(std::size_t line, LineCode lineCode) {
        if (!structure_.segments_.empty()) return;
        if (lineCode == code::skip) {
            const auto skipped = VELHLSAttributes(value(line)).find("SKIPPED-SEGMENTS");
            if (skipped) skippedSegments_ = VELHLSSyntax::readDecimalInteger(skipped->value).value_or(0);
        } else {
            const std::uint64_t number = VELHLSSyntax::readDecimalInteger(value(line)).value_or(0);
            (lineCode == code::mediaSequence ? mediaSequence_ : structure_.firstDiscontinuitySequence_) =
                number;
        }
        structure_.firstMediaSequence_ = mediaSequence_ + skippedSegments_;
    }

    /// What is in force from this line on: to begin with, what was before.
    Change& change(std::size_t line) {
        Change next = structure_.changes_.empty() ? Change() : structure_.changes_.back();
        next.line = static_cast<std::uint32_t>(line);
        structure_.changes_.push_back(next);
        return structure_.changes_.back();
    }

    [[nodiscard]] std::string_view value(std::size_t line) const { return document_.valueOf(line); }

    struct Key {
        std::uint32_t line;
        std::string_view format;
    };

    VELHLSStructure& structure_;
    const VELHLSDocument& document_;
    /// The segment whose URI has not come.
    Place segment_;
    double duration_ = 0.0;
    std::size_t rangeLine_ = 0;
    bool isVariantOpen_ = false;
    // What goes on from segment to segment.
    double startTime_ = 0.0;
    std::uint32_t discontinuities_ = 0;
    std::vector<Key> keys_;
    /// Of the segment before; without a URI line when that has none.
    Range before_;
    std::uint64_t mediaSequence_ = 0;
    std::uint64_t skippedSegments_ = 0;
};

VELHLSStructure::VELHLSStructure(const VELHLSDocument& document) : document_(document) {
    Finder(*this).find();
}

VELHLSStructure::InForce VELHLSStructure::inForce(std::size_t changes) const {
    if (changes == 0) return {};
    const Change& change = changes_[changes - 1];
    return {{keyLines_.data() + change.firstKey, change.keyCount}, change.mapLine, change.dateLine};
}

VELHLSStructure::InForce VELHLSStructure::inForceAt(std::size_t line) const {
    const auto after =
        std::upper_bound(changes_.begin(), changes_.end(), line,
                         [](std::size_t at, const Change& change) { return at < change.line; });
    return inForce(static_cast<std::size_t>(after - changes_.begin()));
}

VELHLSStructure::Segment VELHLSStructure::segment(std::size_t index) const {
    const Place& place = segments_.at(index);
    Segment segment;
    segment.index = index;
    segment.firstLine = place.firstLine;
    segment.lastLine = place.lastLine;
    segment.inForce = inForce(place.changes);
    segment.startTime = place.startTime;
    segment.mediaSequence = firstMediaSequence_ + index;
    segment.discontinuitySequence = firstDiscontinuitySequence_ + place.discontinuities;
    for (std::size_t line = place.firstLine; line <= place.lastLine; ++line) {
        const LineCode lineCode(document_.codes_[line - 1]);
        if (lineCode == code::extInf) segment.durationLine = line;
        if (lineCode == code::byteRange) segment.rangeLine = line;
        if (lineCode == code::programDateTime) segment.dateLine = line;
    }
    if (LineCode(document_.codes_[place.lastLine - 1]) == code::uri) segment.uriLine = place.lastLine;
    if (segment.durationLine != 0) segment.duration = readDuration(document_.valueOf(segment.durationLine));
    if (segment.rangeLine != 0) segment.rangeOffset = rangeOffset(segment.rangeLine, place);
    if (segment.inForce.dateLine != 0) segment.date = date(changes_[place.changes - 1], place.startTime);
    return segment;
}

std::optional<std::uint64_t> VELHLSStructure::rangeOffset(std::size_t line, const Place& place) const {
    const auto range = VELHLSSyntax::readByteRange(document_.valueOf(line));
    if (!range) return std::nullopt;
    if (range->offset || place.rangeOffset == noOffset) return range->offset;
    return place.rangeOffset;
}

/// The last date, and the time since.
std::optional<std::int64_t> VELHLSStructure::date(const Change& change, double startTime) const {
    const auto date = VELHLSSyntax::readDateTime(document_.valueOf(change.dateLine));
    if (!date || !date->hasTime) return std::nullopt;
    return date->microseconds + toMicroseconds(startTime - change.dateStartTime);
}

std::optional<std::size_t> VELHLSStructure::variantOf(std::size_t line) const {
    const auto after =
        std::upper_bound(variants_.begin(), variants_.end(), line,
                         [](std::size_t at, const Variant& variant) { return at < variant.tagLine; });
    if (after == variants_.begin()) return std::nullopt;
    const Variant& variant = *(after - 1);
    if (line != variant.tagLine && line != variant.uriLine) return std::nullopt;
    return static_cast<std::size_t>(after - variants_.begin()) - 1;
}

/// Of the lines between a segment's first and last one.
bool VELHLSStructure::belongsToSegment(std::size_t line) const {
    const LineCode lineCode(document_.codes_[line - 1]);
    return lineCode == LineCode::of(VELHLSLine::Tag) || segmentTagCodes[lineCode.number()];
}

std::optional<std::size_t> VELHLSStructure::segmentOf(std::size_t line) const {
    const auto place =
        std::lower_bound(segments_.begin(), segments_.end(), line,
                         [](const Place& segment, std::size_t at) { return segment.lastLine < at; });
    if (place == segments_.end() || line < place->firstLine) return std::nullopt;
    if (line != place->lastLine && !belongsToSegment(line)) return std::nullopt;
    return static_cast<std::size_t>(place - segments_.begin());
}

std::vector<std::size_t> VELHLSStructure::linesOf(const Segment& segment) const {
    std::vector<std::size_t> lines;
    for (std::size_t line = segment.firstLine; line <= segment.lastLine; ++line) {
        if (line == segment.lastLine || belongsToSegment(line)) lines.push_back(line);
    }
    return lines;
}

std::vector<std::size_t> VELHLSStructure::linesOf(const Variant& variant) {
    if (variant.uriLine == 0) return {variant.tagLine};
    return {variant.tagLine, variant.uriLine};
}

/// One edit for lines that follow each other.
std::vector<VELHLSEdit> VELHLSStructure::remove(const std::vector<std::size_t>& lines) const {
    std::vector<VELHLSEdit> edits;
    for (std::size_t place = 0; place < lines.size();) {
        const std::size_t first = lines[place];
        std::size_t last = first;
        while (++place < lines.size() && lines[place] == last + 1)
            ++last;
        edits.push_back(document_.removeLines(first, last));
    }
    return edits;
}

std::vector<VELHLSEdit> VELHLSStructure::remove(const Segment& segment) const {
    std::vector<std::size_t> lines = linesOf(segment);
    lines.erase(std::remove_if(lines.begin(), lines.end(),
                               [this](std::size_t line) {
                                   return staysWhenRemoved(LineCode(document_.codes_[line - 1]));
                               }),
                lines.end());
    return remove(lines);
}

std::vector<VELHLSEdit> VELHLSStructure::remove(const Variant& variant) const {
    return remove(linesOf(variant));
}
