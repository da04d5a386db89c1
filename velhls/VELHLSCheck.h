#pragma once

/// @file
/// What looks at texts: all of velhls::check. The models (velhls::velhls) have velhls/VELHLS.h, where it also stands what
/// holds for all of velhls.

#include "velhls/comparison/VELHLSChange.h"
#include "velhls/comparison/VELHLSComparison.h"
#include "velhls/diagnostics/VELHLSDiagnostics.h"
#include "velhls/diagnostics/VELHLSFixes.h"
#include "velhls/document/VELHLSAttribute.h"
#include "velhls/document/VELHLSAttributeDefinition.h"
#include "velhls/document/VELHLSDocument.h"
#include "velhls/document/VELHLSEdit.h"
#include "velhls/document/VELHLSFinding.h"
#include "velhls/document/VELHLSFix.h"
#include "velhls/document/VELHLSLine.h"
#include "velhls/document/VELHLSProfile.h"
#include "velhls/document/VELHLSRows.h"
#include "velhls/document/VELHLSRule.h"
#include "velhls/document/VELHLSSequence.h"
#include "velhls/document/VELHLSStructure.h"
#include "velhls/document/VELHLSSyntax.h"
#include "velhls/document/VELHLSTagDefinition.h"
#include "velhls/presentation/VELHLSPresentation.h"
#include "velhls/records/VELHLSRecordLines.h"
#include "velhls/standard/VELHLSStandard.h"
