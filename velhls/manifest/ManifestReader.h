// Internal to the library, not installed: the line loop of a master playlist.
#pragma once

#include <istream>
#include <memory>
#include <string>

#include "velhls/common/LineReader.h"
#include "velhls/common/RecordMaker.h"
#include "velhls/common/Recorder.h"
#include "velhls/common/TagLine.h"
#include "velhls/manifest/VELHLSParsedManifest.h"

namespace velhls {

/// Reads the lines of one master playlist and files what their tags say in a manifest. What binds the records
/// to each other is not looked at here.
class ManifestReader {
  public:
    ManifestReader(std::istream& input, Recorder* recorder) : lines_(input), recorder_(recorder) {}

    /// Reads to the end of the playlist. Null when a line is rejected; reading stops behind that line. With a
    /// recorder it goes on, and what was not rejected comes back.
    [[nodiscard]] std::shared_ptr<VELHLSParsedManifest> read();

  private:
    /// What a line means for the lines behind it.
    enum class Outcome { goOn, playlistEnds, rejected };

    void noteLine(std::string_view line);
    Outcome takeLine();
    Outcome takeLineWithoutThrowing();
    Outcome takeBareTag(const TagLine& tagLine);
    Outcome takeTag(const TagLine& tagLine);
    Outcome takeVendorTag(const TagLine& tagLine);
    Outcome takeRendition();
    Outcome takeVariant(bool isIFrame);
    Outcome takeSessionData();
    Outcome takeSessionKey();
    Outcome takeStart(const TagLine& tagLine);

    LineReader lines_;
    Recorder* recorder_;
    RecordMaker recordMaker_;
    std::string line_;
    std::shared_ptr<VELHLSParsedManifest> manifest_ = std::make_shared<VELHLSParsedManifest>();
};

}  // namespace velhls
