// Internal to the library, not installed: the line loop of a master playlist.
#pragma once

#include <istream>
#include <memory>
#include <string>

#include "velhls/common/LineReader.h"
#include "velhls/common/TagLine.h"
#include "velhls/manifest/VELHLSParsedManifest.h"

namespace velhls {

/// Reads the lines of one master playlist and files what their tags say in a manifest. What binds the records
/// to each other is not looked at here.
class ManifestReader {
  public:
    explicit ManifestReader(std::istream& input) : lines_(input) {}

    /// Reads to the end of the playlist. Null when a line is rejected; reading stops behind that line.
    [[nodiscard]] std::shared_ptr<VELHLSParsedManifest> read();

  private:
    /// What a line means for the lines behind it.
    enum class Outcome { goOn, playlistEnds, rejected };

    Outcome takeLine();
    Outcome takeBareTag();
    Outcome takeTag(const TagLine& tagLine);
    Outcome takeVendorTag(const TagLine& tagLine);
    Outcome takeRendition();
    Outcome takeVariant(bool isIFrame);
    Outcome takeSessionData();
    Outcome takeSessionKey();
    Outcome takeStart(const TagLine& tagLine);

    LineReader lines_;
    std::string line_;
    std::shared_ptr<VELHLSParsedManifest> manifest_ = std::make_shared<VELHLSParsedManifest>();
};

}  // namespace velhls
