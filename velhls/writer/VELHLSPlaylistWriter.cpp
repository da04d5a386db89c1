#include "velhls/writer/VELHLSPlaylistWriter.h"

#include "velhls/writer/MasterWriter.h"
#include "velhls/writer/MediaWriter.h"

std::optional<std::string> VELHLSPlaylistWriter::write(const VELHLSMediaStream& stream, std::ostream& out,
                                                       const VELHLSWriterOptions& options) {
    return velhls::MediaWriter(options).write(stream, out);
}

std::optional<std::string> VELHLSPlaylistWriter::write(const VELHLSParsedManifest& manifest,
                                                       std::ostream& out,
                                                       const VELHLSWriterOptions& options) {
    return velhls::MasterWriter(options).write(manifest, out);
}
