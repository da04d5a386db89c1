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
        if (tag == nullptr) return;
        if (code == line_code::extInf) return media_.addOfRecord(line, code);
        if (code == line_code::streamInf || code == line_code::iFrameStreamInf)
            return master_.addOfRecord(line, code);
        if (tag->playlist == VELHLSTagDefinition::Master) master_.addOther(line, code);
        if (tag->playlist == VELHLSTagDefinition::Media) media_.addOther(line, code);
    }

    [[nodiscard]] VELHLSDocument::Kind kind() const {
        if (deciding().line == 0) return VELHLSDocument::Neither;
        return isMedia() ? VELHLSDocument::Media : VELHLSDocument::Master;
    }

    /// The first line that speaks for the kind: of variants or segments, or else of that kind alone.
    [[nodiscard]] Place deciding() const { return (isMedia() ? media_ : master_).deciding(); }

  private:
    /// The tags that one kind alone has.
    struct Votes {
        void addOfRecord(std::size_t line, LineCode code) {
            if (records++ == 0) firstOfRecord = {line, code};
        }
        void addOther(std::size_t line, LineCode code) {
            if (firstOther.line == 0) firstOther = {line, code};
        }
        [[nodiscard]] Place deciding() const { return records == 0 ? firstOther : firstOfRecord; }

        /// How many are of variants or segments.
        std::size_t records = 0;
        Place firstOfRecord;
        Place firstOther;
    };

    [[nodiscard]] bool isMedia() const {
        if (media_.records != master_.records) return media_.records > master_.records;
        const std::size_t master = master_.deciding().line;
        return media_.deciding().line != 0 && (master == 0 || media_.deciding().line < master);
    }

    Votes master_;
    Votes media_;
};

}  // namespace velhls
