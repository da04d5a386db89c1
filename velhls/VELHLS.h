#pragma once

/// @file
/// All of velhls.

#include "velhls/common/VELHLSParsingError.h"
#include "velhls/common/VELHLSParsingMetrics.h"
#include "velhls/common/VELHLSParsingStatus.h"
#include "velhls/common/VELHLSStopWatch.h"
#include "velhls/common/VELHLSUtility.h"
#include "velhls/common/VELHLSVersion.h"
#include "velhls/diagnostics/VELHLSDiagnostics.h"
#include "velhls/diagnostics/VELHLSFinding.h"
#include "velhls/diagnostics/VELHLSRule.h"
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
