// Internal to the library, not installed: the line loop of a master playlist.
#pragma once

#include <istream>
#include <memory>
#include <string>
#include <string_view>

#include "velhls/common/LineReader.h"
#include "velhls/common/Reading.h"
#include "velhls/common/Reason.h"
#include "velhls/common/RecordMaker.h"
#include "velhls/common/TagLine.h"
#include "velhls/manifest/VELHLSParsedManifest.h"

namespace velhls {

/// Reads the lines of one master playlist and files what their tags say in a manifest. What binds the records
/// to each other is not looked at here.
class ManifestReader : private LineReader::ViewKeeper {
  public:
    explicit ManifestReader(std::istream& input) : lines_(input) { lines_.tell(*this); }
    /// The reading may be null.
    ManifestReader(std::string_view text, Reading* reading) : lines_(text, reading), reading_(reading) {
        lines_.tell(*this);
    }

    /// Reads to the end of the playlist. Null when a line is rejected; reading stops after that line. A reading that goes
    /// on after rejections gives what was not rejected.
    [[nodiscard]] std::shared_ptr<VELHLSParsedManifest> read();

  private:
    void viewsEnd() override;
    bool readLine();
    bool readBareTag();
    bool readTag();
    bool readStreamInformation(const TagLine& tagLine);
    bool readRendition();
    bool readVariant(bool isIFrame);
    bool readSessionData();
    bool readSessionKey();
    void recordMade(const void* record);

    LineReader lines_;
    Reading* reading_ = nullptr;
    Reason why_;
    RecordMaker recordMaker_;
    /// A variant's URI is read while the line of its tag is still needed: it is copied if the view ends with that.
    std::string_view line_;
    /// Of a standard tag's line.
    TagLine tagLine_;
    std::string lineMemory_;
    /// The header of a second playlist was read, which ends the first.
    bool playlistEnded_ = false;
    std::shared_ptr<VELHLSParsedManifest> manifest_ = std::make_shared<VELHLSParsedManifest>();
};

}  // namespace velhls
