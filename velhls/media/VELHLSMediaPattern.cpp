#include "velhls/media/VELHLSMediaPattern.h"

#include <algorithm>
#include <utility>

#include "velhls/common/LineReader.h"
#include "velhls/common/WholeText.h"
#include "velhls/media/PatternExpander.h"
#include "velhls/media/PatternReader.h"

VELHLSMediaPattern::VELHLSMediaPattern(std::string name, std::string body, std::uint64_t repeatCount)
    : name(std::move(name)), body(std::move(body)), repeatCount(repeatCount) {}

std::shared_ptr<VELHLSMediaPattern> VELHLSMediaPattern::parseMediaPattern(const std::string& startLine,
                                                                          std::istream& prefix,
                                                                          std::istream& input,
                                                                          VELHLSParsingStatus* status) {
    velhls::LineReader lines(input);
    velhls::Reason ignored;
    return velhls::readPattern(startLine, velhls::readAll(prefix), lines, status, nullptr, ignored);
}

std::shared_ptr<std::stringstream> VELHLSMediaPattern::expandMediaPattern(
    const std::shared_ptr<VELHLSDefineMap>& defines) const {
    velhls::ExpansionAllowance allowance(maximumExpansionBytes);
    velhls::Reason ignored;
    velhls::PatternExpander expander(*this, defines.get(), allowance, ignored);
    if (!expander.expand()) return nullptr;
    return std::make_shared<std::stringstream>(std::string(expander.text()));
}

std::shared_ptr<std::vector<std::shared_ptr<VELHLSMediaSegment>>> VELHLSMediaPattern::createMediaSegments(
    const std::shared_ptr<VELHLSMediaSegment>& previous, std::uint64_t firstMediaSequenceNumber,
    std::uint64_t firstDiscontinuitySequenceNumber, std::shared_ptr<VELHLSDefineMap> defines,
    VELHLSParsingStatus* /*status*/) const {
    velhls::ExpansionAllowance allowance(maximumExpansionBytes);
    velhls::RecordMaker maker;
    auto segments = std::make_shared<std::vector<std::shared_ptr<VELHLSMediaSegment>>>();
    const velhls::SegmentOrigin origin{previous.get(), firstMediaSequenceNumber,
                                       firstDiscontinuitySequenceNumber};
    const velhls::SegmentSurroundings surroundings{&maker, std::move(defines), nullptr, nullptr};
    velhls::Reason ignored;
    if (!velhls::createSegments(*segments, *this, origin, surroundings, allowance, ignored)) return nullptr;
    // The caller's previous segment may hold a key or a map that is not valid.
    const bool allValid = std::all_of(segments->begin(), segments->end(),
                                      [](const auto& segment) { return segment->validate(); });
    return allValid ? segments : nullptr;
}
