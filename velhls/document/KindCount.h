// Internal to the library, not installed: which kind of playlist a text is, by its tags.
#pragma once

#include <cstddef>

#include "velhls/document/LineCode.h"
#include "velhls/document/VELHLSDocument.h"

namespace velhls {

/// Decides which kind of playlist a text is from its lines, one after the other: see VELHLSDocument::kind.
class KindCount {
  public:
    /// A line, counted from 1; 0 for none.
    struct Place {
        std::size_t line = 0;
        LineCode code = LineCode::of(VELHLSLine::Blank);
    };

    void add(std::size_t line, LineCode code) {
        const VELHLSTagDefinition* const tag = code.definition();
        if (tag == nullptr || tag->playlist == VELHLSTagDefinition::Either) return;
        Votes& votes = tag->playlist == VELHLSTagDefinition::Master ? master_ : media_;
        if (votes.first.line == 0) votes.first = {line, code};
        if (!isOfRecord(code)) return;
        if (votes.records == 0) votes.firstOfRecord = {line, code};
        ++votes.records;
    }

    [[nodiscard]] VELHLSDocument::Kind kind() const {
        if (master_.first.line == 0 && media_.first.line == 0) return VELHLSDocument::Neither;
        return isMedia() ? VELHLSDocument::Media : VELHLSDocument::Master;
    }

    /// The first line that speaks for the kind: of variants or segments, or else of that kind alone.
    [[nodiscard]] Place deciding() const { return (isMedia() ? media_ : master_).deciding(); }

  private:
    struct Votes {
        [[nodiscard]] Place deciding() const { return records == 0 ? first : firstOfRecord; }

        /// Tags of variants or segments.
        std::size_t records = 0;
        Place firstOfRecord;
        /// Of the tags that this kind alone has.
        Place first;
    };

    static bool isOfRecord(LineCode code) {
        return code == line_code::extInf || code == line_code::streamInf ||
               code == line_code::iFrameStreamInf;
    }

    [[nodiscard]] bool isMedia() const {
        if (media_.records != master_.records) return media_.records > master_.records;
        const std::size_t master = master_.deciding().line;
        return media_.deciding().line != 0 && (master == 0 || media_.deciding().line < master);
    }

    Votes master_;
    Votes media_;
};

}  // namespace velhls
