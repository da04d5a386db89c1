#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "velhls/common/VELHLSExport.h"

/// One piece of session data of a master playlist: EXT-X-SESSION-DATA (RFC 8216, section 4.3.4.4).
///
///     #EXT-X-SESSION-DATA:LANGUAGE="en",              lost: the first attribute always is
///                         DATA-ID="com.example.t",    dataId
///                         VALUE="Title"               value
class VELHLS_API VELHLSManifestSessionData {
  public:
    /// An entry without anything, to be filled member by member.
    VELHLSManifestSessionData() = default;

    /// Stores its arguments and checks nothing.
    VELHLSManifestSessionData(const std::string& dataId, const std::string& value, const std::string& uri,
                              const std::string& language);

    /// Reads a whole EXT-X-SESSION-DATA line. Returns a new entry, which validates, or null for another tag,
    /// a malformed attribute list, or an entry that does not validate: which of these it was tells the parse of
    /// a playlist (VELHLSReason). Values are stored without any check.
    ///
    /// Kept as is: the attribute that stands first is lost, since its name is read with the tag's colon
    /// before it. So a tag whose DATA-ID comes first is rejected, although that is the usual order, and the
    /// one that `render` writes; put another attribute before it.
    [[nodiscard]] static std::shared_ptr<VELHLSManifestSessionData> parseSessionData(const std::string& line);

    /// Appends the EXT-X-SESSION-DATA line, DATA-ID first. Returns 0, or -1 with nothing appended when the
    /// entry does not validate. Kept as is: `parseSessionData` does not read this line back.
    [[nodiscard]] std::int32_t render(std::string& out) const;

    /// True when `dataId` is not empty and exactly one of `value` and `uri` is not empty.
    [[nodiscard]] bool validate() const;

    /// DATA-ID.
    std::string dataId;

    /// VALUE; empty when the data is given by URI.
    std::string value;

    /// URI of a JSON resource, not resolved (VELHLS.h); empty when the data is given by VALUE.
    std::string uri;

    /// LANGUAGE (RFC 5646); empty when absent.
    std::string language;
};
