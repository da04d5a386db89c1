// Internal to libvelhls-c, not installed: both models as texts.
#pragma once

#include <cstddef>
#include <memory>
#include <sstream>
#include <string>

#include "Calls.h"

namespace velhls_c {

/// What was written to the stream, which ran out of memory if it is bad.
inline velhls_status giveWritten(const std::ostringstream& out, velhls_text** text) {
    if (!out) return VELHLS_OUT_OF_MEMORY;
    auto written = std::make_unique<velhls_text>();
    written->text = out.str();
    *text = written.release();
    return VELHLS_OK;
}

/// Stores what the models' `render` writes of a playlist.
template <typename Playlist>
velhls_status render(const Playlist& playlist, velhls_text** text) {
    return guarded([&] {
        std::ostringstream out;
        if (playlist.render(out) != 0) return velhls_status{VELHLS_REFUSED};
        return giveWritten(out, text);
    });
}

/// The options as far as the caller's structure has them.
inline VELHLSWriterOptions optionsOf(const velhls_write_options& given) {
    VELHLSWriterOptions options;
    options.cueMarkers = given.cue_markers != 0;
    options.everyDate = given.every_date != 0;
    options.clearInitializationSections = given.clear_initialization_sections != 0;
    options.noClosedCaptions = given.no_closed_captions != 0;
    options.nominalBitrates = given.nominal_bitrates != 0;
    return options;
}

/// Stores what VELHLSPlaylistWriter writes of a playlist.
template <typename Playlist>
velhls_status write(const Playlist& playlist, const velhls_write_options* given, velhls_text** text,
                    velhls_error** error) {
    if (given != nullptr && given->size < sizeof(velhls_write_options)) return VELHLS_INVALID_ARGUMENT;
    return guarded([&] {
        const VELHLSWriterOptions options = given == nullptr ? VELHLSWriterOptions() : optionsOf(*given);
        std::ostringstream out;
        if (const auto refused = VELHLSPlaylistWriter::write(playlist, out, options)) {
            return refuse(error, 0, *refused);
        }
        return giveWritten(out, text);
    });
}

}  // namespace velhls_c
