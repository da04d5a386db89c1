#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "velhls/common/VELHLSExport.h"
#include "velhls/common/VELHLSReason.h"
#include "velhls/document/VELHLSDocument.h"

class VELHLSManifestSessionData;
class VELHLSMediaSegment;
class VELHLSMediaStream;
class VELHLSMediaStreamRendition;
class VELHLSMediaVariant;
class VELHLSParsedManifest;
class VELHLSProtectionData;

/// Which lines of a document the models made each record of: to find by the model, and to edit in the document.
///
///     const VELHLSDocument document(text);
///     VELHLSRecordLines lines;
///     const auto manifest = lines.parseManifest(document);
///     if (manifest == nullptr) return;
///     const VELHLSMediaVariant& best = *manifest->variants.rbegin()->second;
///     const VELHLSEdit edit = document.changeAttributes(lines.of(best)->first, {{"SCORE", "1"}});
///
/// A record is a variant, a rendition, an entry of session data, a session key or a segment. VELHLSStructure tells of lines
/// too, by RFC 8216 and of any text; here it is what the parse took for a record.
///
/// It tells of the records that its last parse made, as long as they live. Of any other record there are no lines, unless that
/// was made in the memory of one that has gone. It holds 16 bytes for each record, and neither the document nor the model. It
/// may be asked by several threads at once.
class VELHLS_CHECK_API VELHLSRecordLines {
  public:
    /// The lines of one record, all that lie between them included. Counted from 1, as those of the document.
    struct Lines {
        /// Of a variant its tag; of a segment its first tag.
        std::size_t first = 0;
        /// Of a variant and of a segment its URI line; otherwise `first`.
        std::size_t last = 0;
    };

    /// Parses the document's text as VELHLSParsedManifest::parseManifest does that takes a text: null, and the reason if it is
    /// wanted, when that rejects it. There are no lines then. Throws nothing but std::bad_alloc.
    [[nodiscard]] std::shared_ptr<VELHLSParsedManifest> parseManifest(const VELHLSDocument& document,
                                                                      VELHLSReason* reason = nullptr);

    /// The same as VELHLSMediaStream::parseMediaStream.
    [[nodiscard]] std::shared_ptr<VELHLSMediaStream> parseMediaStream(const VELHLSDocument& document,
                                                                      VELHLSReason* reason = nullptr);

    /// The lines that the record was made of; nothing when the last parse did not make it.
    [[nodiscard]] std::optional<Lines> of(const VELHLSMediaVariant& variant) const { return find(&variant); }
    /// Of a rendition.
    [[nodiscard]] std::optional<Lines> of(const VELHLSMediaStreamRendition& rendition) const {
        return find(&rendition);
    }
    /// Of an entry of session data.
    [[nodiscard]] std::optional<Lines> of(const VELHLSManifestSessionData& entry) const {
        return find(&entry);
    }
    /// Of a session key. Nothing of a segment's key, which segments share.
    [[nodiscard]] std::optional<Lines> of(const VELHLSProtectionData& sessionKey) const {
        return find(&sessionKey);
    }
    /// Of a media pattern's segments each has the lines in its body, which those of all passes share.
    [[nodiscard]] std::optional<Lines> of(const VELHLSMediaSegment& segment) const { return find(&segment); }

  private:
    struct Place {
        const void* record = nullptr;
        std::uint32_t first = 0;
        std::uint32_t last = 0;
    };

    [[nodiscard]] std::optional<Lines> find(const void* record) const;

    /// In the order of the records' addresses.
    std::vector<Place> places_;
};
