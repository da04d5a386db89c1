// Internal to the library, not installed: the text of media segments.
#pragma once

#include <string>

#include "velhls/common/TextBuffer.h"
#include "velhls/common/Timestamps.h"
#include "velhls/media/VELHLSMediaSegment.h"

namespace velhls {

/// Writes segments that follow each other, and asks before whether they are valid.
///
/// Runs of segments share one key and one map object: what is known of the last ones, that they are valid and
/// what their lines are, is kept. The segments, keys and maps must live and stay as they are as long as the
/// writer does.
class SegmentWriter {
  public:
    /// See VELHLSMediaSegment::validate.
    [[nodiscard]] bool isValid(const VELHLSMediaSegment& segment);

    /// See VELHLSMediaSegment::render. The segment must be valid.
    void write(TextBuffer& out, const VELHLSMediaSegment& segment, bool writeKey, bool writeMap);

  private:
    TimestampWriter timestamps_;
    const VELHLSProtectionData* validKey_ = nullptr;
    const VELHLSMISMap* validMap_ = nullptr;
    const VELHLSProtectionData* writtenKey_ = nullptr;
    const VELHLSMISMap* writtenMap_ = nullptr;
    std::string keyLine_;
    std::string mapLine_;
};

}  // namespace velhls
