#include "velhls/presentation/PresentationPlaylist.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "velhls/common/Names.h"
#include "velhls/document/VELHLSSyntax.h"
#include "velhls/presentation/SegmentRates.h"

namespace velhls {
namespace {

constexpr std::size_t bitRate = tagIndex("EXT-X-BITRATE");

bool hasDecimals(const VELHLSLine& extInf) {
    return extInf.value.substr(0, extInf.value.find(',')).find('.') != std::string_view::npos;
}

/// The value of the last of these tags at or before each line that is asked for, in rising order.
class BitRates {
  public:
    explicit BitRates(const CheckedPlaylist& playlist) : playlist_(playlist) {}

    /// Bits per second.
    [[nodiscard]] std::optional<double> at(std::size_t line) {
        const std::vector<std::uint32_t>& lines = playlist_.lines(bitRate);
        for (; next_ < lines.size() && lines[next_] <= line; ++next_) {
            const std::string_view value = trimmed(playlist_.document().line(lines[next_]).value);
            const auto kilobits = VELHLSSyntax::readDecimalInteger(value);
            rate_ = kilobits ? std::optional<double>(1000.0 * static_cast<double>(*kilobits)) : std::nullopt;
        }
        return rate_;
    }

  private:
    const CheckedPlaylist& playlist_;
    std::size_t next_ = 0;
    std::optional<double> rate_;
};

}  // namespace

PresentationPlaylist::PresentationPlaylist(const PresentationText& text)
    : text_(text),
      structure_(text.document),
      tags_(structure_, text.document.kind(), StandardProfile::rfc8216) {
    for (const VELHLSLine line : text_.document.lines())
        tags_.add(line);
    findSegments();
    findRates();
}

bool PresentationPlaylist::hasEnded() const {
    return has(tagIndexOf<tag::endList>);
}

bool PresentationPlaylist::isIFrames() const {
    return has(tagIndexOf<tag::iFramesOnly>);
}

std::string_view PresentationPlaylist::type() const {
    constexpr std::size_t playlistType = tagIndexOf<tag::playlistType>;
    return has(playlistType) ? trimmed(tags_.firstLine(playlistType).value) : std::string_view();
}

bool PresentationPlaylist::holdsItsStart() const {
    return !type().empty() || tags_.number(tagIndexOf<tag::mediaSequence>).value_or(0) == 0;
}

/// They are sorted by the numbers, which never fall.
std::size_t PresentationPlaylist::runEnd(std::size_t segment) const {
    const auto after = std::upper_bound(
        segments_.begin() + static_cast<std::ptrdiff_t>(segment), segments_.end(),
        segments_[segment].discontinuity,
        [](std::uint64_t number, const TimedSegment& each) { return number < each.discontinuity; });
    return static_cast<std::size_t>(after - segments_.begin());
}

double PresentationPlaylist::targetDuration() const {
    return static_cast<double>(tags_.targetDuration().value_or(0));
}

void PresentationPlaylist::findSegments() {
    if (has(tagIndex("EXT-X-SKIP"))) return;
    segments_.reserve(structure_.segmentCount());
    for (const VELHLSStructure::Segment& segment : structure_.segments()) {
        if (segment.uriLine == 0) break;
        if (segment.durationLine == 0 || !std::isfinite(segment.startTime + segment.duration)) {
            segments_.clear();
            return;
        }
        hasWholeDurations_ = hasWholeDurations_ && !hasDecimals(text_.document.line(segment.durationLine));
        segments_.push_back({segment.startTime, segment.duration, segment.discontinuitySequence, segment.date,
                             static_cast<std::uint32_t>(segment.uriLine)});
    }
}

void PresentationPlaylist::findRates() {
    constexpr double bitsOfByte = 8.0;
    if (segments_.empty() || duration() <= 0.0 || has(tagIndex("EXT-X-GAP"))) return;
    if (!has(tagIndexOf<tag::byteRange>) && !has(bitRate)) return;
    SegmentRates rates;
    BitRates bitRates(tags_);
    std::vector<SizedSegment> sizes;
    double bits = 0.0;
    for (const VELHLSStructure::Segment& segment : structure_.segments()) {
        if (segment.uriLine == 0) break;
        const auto estimate = bitRates.at(segment.lastLine);
        if (segment.rangeLine != 0) {
            const std::string_view value = trimmed(text_.document.line(segment.rangeLine).value);
            const auto range = VELHLSSyntax::readByteRange(value);
            if (!range) return;
            sizes.push_back({segment.duration, bitsOfByte * static_cast<double>(range->length)});
        } else {
            if (!estimate) return;
            rates.isEstimated = true;
            sizes.push_back({segment.duration, *estimate * segment.duration});
        }
        bits += sizes.back().bits;
    }
    rates.average = bits / duration();
    if (const auto peak = findPeakRate(sizes, targetDuration())) {
        rates.peak = peak->rate;
        rates.peakSegment = peak->first;
        rates.peakCount = peak->end - peak->first;
    }
    rates_ = rates;
}

PresentationPlace PresentationPlaylist::top() const {
    const VELHLSLine line = tags_.top();
    return {&text_, line, line.text.substr(0, 0)};
}

PresentationPlace PresentationPlaylist::valueOfTag(std::size_t tag) const {
    const VELHLSLine line = tags_.firstLine(tag);
    return {&text_, line, trimmed(line.value)};
}

PresentationPlace PresentationPlaylist::nameOfTag(std::size_t tag) const {
    const VELHLSLine line = tags_.firstLine(tag);
    return {&text_, line, line.name};
}

PresentationPlace PresentationPlaylist::dateOf(std::size_t segment) const {
    const std::size_t dateLine = structure_.segment(segment).inForce.dateLine;
    if (dateLine == 0) return uriOf(segments_[segment]);
    const VELHLSLine line = text_.document.line(dateLine);
    return {&text_, line, trimmed(line.value)};
}

PresentationPlace PresentationPlaylist::uriOf(const TimedSegment& segment) const {
    const VELHLSLine line = text_.document.line(segment.line);
    return {&text_, line, line.value};
}

}  // namespace velhls
