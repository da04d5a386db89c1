// Internal to the library, not installed: the text of master playlists as RFC 8216 wants it.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "velhls/manifest/VELHLSParsedManifest.h"
#include "velhls/writer/Header.h"
#include "velhls/writer/VELHLSWriterOptions.h"

namespace velhls {

/// Writes one master playlist, once all of its text has been put together. See VELHLSPlaylistWriter.
class MasterWriter {
  public:
    explicit MasterWriter(const VELHLSWriterOptions& options) : options_(options) {}

    /// Why the playlist is refused; nothing when it was written.
    [[nodiscard]] std::optional<std::string> write(const VELHLSParsedManifest& manifest, std::ostream& out);

  private:
    /// A value that stands in quotes, and its attribute.
    struct Quoted {
        std::string_view name;
        const std::string& value;
    };

    // Each is false when the playlist is refused, for the reason that is then set.
    [[nodiscard]] bool isSound(const VELHLSParsedManifest& manifest);
    [[nodiscard]] bool areInTheirPlaces(const VELHLSParsedManifest& manifest);
    [[nodiscard]] bool areSound(std::initializer_list<Quoted> values);
    [[nodiscard]] bool decideNominalBitrates(const VELHLSParsedManifest& manifest);
    [[nodiscard]] bool appendRenditions(const VELHLSParsedManifest& manifest);
    [[nodiscard]] bool append(const VELHLSMediaStreamRendition& rendition);
    [[nodiscard]] bool appendVariants(const VELHLSParsedManifest& manifest);
    [[nodiscard]] bool append(const VELHLSMediaVariant& variant);
    [[nodiscard]] bool appendSessionData(const VELHLSParsedManifest& manifest);
    [[nodiscard]] bool appendSessionKeys(const VELHLSParsedManifest& manifest);
    [[nodiscard]] bool refuse(std::string_view what, std::string_view why);

    void startRecords(std::string_view name);
    void appendNominalBitrates(const VELHLSMediaVariant& variant);
    [[nodiscard]] std::string header(const VELHLSParsedManifest& manifest) const;

    const VELHLSWriterOptions& options_;
    std::string body_;
    NeededVersion needed_;
    bool writesNoCaptions_ = false;
    bool writesNominalBitrates_ = false;
    /// What is being written, "variant", and which one, counted from 1; empty for the header.
    std::string_view recordName_;
    std::size_t number_ = 0;
    std::string refusal_;
};

}  // namespace velhls
