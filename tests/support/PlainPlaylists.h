#pragma once

#include <cstdint>
#include <istream>
#include <memory>
#include <string>

#include "velhls/VELHLS.h"

#include "tests/support/PlainForms.h"

/// The readers of the records and of both kinds of playlist in their plainest form: the documented rules one after the
/// other, on std::getline, the plain attribute map and the standard library's conversions. A list of segments that a
/// pattern makes is left to the library, since expansion has a plain form of its own.
namespace plain {

std::shared_ptr<VELHLSMediaVariant> variant(const std::string& tagLine, const std::string& uriLine);

std::shared_ptr<VELHLSMediaStreamRendition> rendition(const std::string& line);

std::shared_ptr<VELHLSManifestSessionData> sessionData(const std::string& line);

std::shared_ptr<VELHLSZORStreamInformation> streamInformation(const std::string& line);

std::shared_ptr<VELHLSProtectionData> noKey();

/// Null when the line is rejected.
std::shared_ptr<VELHLSProtectionData> key(const std::string& line);

/// Null when the line is rejected.
std::shared_ptr<VELHLSMISMap> map(const std::string& line);

/// VELHLSMediaSegment::parseNextSegment.
std::shared_ptr<VELHLSMediaSegment> nextSegment(const std::shared_ptr<VELHLSMediaSegment>& previous,
                                                std::string line, std::istream& input,
                                                std::shared_ptr<VELHLSMediaPattern>& pattern,
                                                std::uint64_t mediaSequence,
                                                std::uint64_t discontinuitySequence,
                                                std::shared_ptr<VELHLSDefineMap> defines,
                                                VELHLSParsingStatus* status);

/// VELHLSMediaStream::internalParseMediaStream, but for the bounds that all patterns of a playlist share.
std::shared_ptr<VELHLSMediaStream> mediaStream(std::istream& input, VELHLSParsingStatus* status);

/// VELHLSParsedManifest::internalParseManifest, with the library's own validation at the end.
std::shared_ptr<VELHLSParsedManifest> manifest(std::istream& input, VELHLSParsingStatus* status);

}  // namespace plain
