#pragma once

/// @file
/// The models: all of velhls::velhls. What looks at texts (velhls::check) has velhls/VELHLSCheck.h.
///
/// Two things hold for all of velhls, and are said here alone:
///
/// **Kept as is** in a docstring marks a behaviour that may surprise and is deliberate: playlists are in the
/// world that count on it, and it stays as long as the major version does. docs/guide/surprises.md shows each
/// with a run of the command, and says what to do where it is not wanted.
///
/// **URIs** are texts of the playlist. None is resolved against another, unescaped, checked or fetched: a
/// relative one means something only together with the URI that the playlist itself was fetched from, which
/// nothing here knows. examples/absolute_uris.cpp resolves them all.

#include "velhls/common/VELHLSParsingError.h"
#include "velhls/common/VELHLSParsingMetrics.h"
#include "velhls/common/VELHLSParsingStatus.h"
#include "velhls/common/VELHLSReason.h"
#include "velhls/common/VELHLSStopWatch.h"
#include "velhls/common/VELHLSUtility.h"
#include "velhls/common/VELHLSVersion.h"
#include "velhls/manifest/VELHLSManifestSessionData.h"
#include "velhls/manifest/VELHLSMediaStreamRendition.h"
#include "velhls/manifest/VELHLSMediaVariant.h"
#include "velhls/manifest/VELHLSParsedManifest.h"
#include "velhls/manifest/VELHLSZORStreamInformation.h"
#include "velhls/media/VELHLSByteRange.h"
#include "velhls/media/VELHLSMISMap.h"
#include "velhls/media/VELHLSMediaPattern.h"
#include "velhls/media/VELHLSMediaSegment.h"
#include "velhls/media/VELHLSMediaStream.h"
#include "velhls/media/VELHLSProtectionData.h"
#include "velhls/writer/VELHLSPlaylistWriter.h"
#include "velhls/writer/VELHLSWriterOptions.h"
