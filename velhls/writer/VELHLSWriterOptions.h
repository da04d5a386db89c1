#pragma once

/// What VELHLSPlaylistWriter writes where a model leaves a choice. Each default adds nothing that the model does
/// not hold.
struct VELHLSWriterOptions {
    /// Media playlists: write EXT-X-CUE-OUT, EXT-X-CUE-OUT-CONT and EXT-X-CUE-IN (vendor extensions).
    bool cueMarkers = true;

    /// Media playlists: write every date that is known, also where it follows from the segment before. For the window of a
    /// live playlist: a segment that becomes its first would gain a date otherwise, and the tags of a segment must not
    /// change (RFC 8216, section 6.2.1).
    bool everyDate = false;

    /// Media playlists: the initialization sections are not encrypted, whatever their segments are. A section that
    /// comes with a key is then declared before the key, and METHOD=NONE ends an earlier key first (RFC 8216,
    /// section 4.3.2.4).
    bool clearInitializationSections = false;

    /// Master playlists: say CLOSED-CAPTIONS=NONE in every EXT-X-STREAM-INF, which tells players to offer no captions
    /// that lie in the video either. Nothing is said when a variant names a group of captions: RFC 8216, section
    /// 4.3.4.2, allows NONE in all variants or in none.
    bool noClosedCaptions = false;

    /// Master playlists: write the nominal bit rates of each variant as ZOR-STREAM-INF (vendor extension). Nothing is
    /// written when no variant has any.
    bool nominalBitrates = false;
};
