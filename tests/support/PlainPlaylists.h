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
<<<<<<< HEAD
inline std::shared_ptr<VELHLSMISMap> map(const std::string& line) {
    if (!startsWith(line, "#EXT-X-MAP:")) return nullptr;
    const auto attributes = attributesOfTag(line);
    if (!attributes || attributes->count("URI") == 0) return nullptr;
    auto map = std::make_shared<VELHLSMISMap>();
    map->uri = attributes->at("URI");
    const auto range = attributes->find("BYTERANGE");
    if (range == attributes->end()) return map;
    const auto read = byteRange(range->second, '@', false);
    if (!read) return nullptr;
    map->byteRange = std::make_shared<VELHLSByteRange>(*read);
    return map;
}

/// The next line as it stands, and without carriage returns; empty when there is none.
inline std::string rawLine(std::istream& input) {
    std::string line;
    std::getline(input, line);
    return line;
}

inline std::string nextLine(std::istream& input) {
    std::string line = rawLine(input);
    line.erase(std::remove(line.begin(), line.end(), '\r'), line.end());
    return line;
}

/// The text between "#" and the first colon, and the text behind that; without a colon all and nothing.
inline std::pair<std::string, std::string> nameAndValue(const std::string& line) {
    const std::size_t colon = line.find(':');
    if (colon == none) return {line.substr(1), ""};
    return {line.substr(1, colon - 1), line.substr(colon + 1)};
}

/// The most names that a map of variables may have in one bucket.
inline std::size_t mostInABucket(const VELHLSDefineMap& defines) {
    std::size_t most = 0;
    for (std::size_t bucket = 0; bucket < defines.bucket_count(); ++bucket)
        most = std::max(most, defines.bucket_size(bucket));
    return most;
}

/// EXT-X-DEFINE; false when it is rejected.
inline bool define(const std::string& value, VELHLSDefineMap& defines) {
    const auto attributes = attributeMap(value);
    if (!attributes || attributes->count("NAME") == 0 || attributes->count("VALUE") == 0) return false;
    const std::string& name = attributes->at("NAME");
    const bool isNew = defines.count(name) == 0;
    // A full bucket takes no more, also where the map would have grown with the next name.
    const bool isFull = defines.bucket_size(defines.bucket(name)) >= VELHLSUtility::maximumCollidingNames;
    if (isNew && isFull) return false;
    defines[name] = attributes->at("VALUE");
    return mostInABucket(defines) <= VELHLSUtility::maximumCollidingNames;
}
=======
std::shared_ptr<VELHLSMISMap> map(const std::string& line);
>>>>>>> 8a29c095fcbd5d0296fce3353815aa094ad3913e

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
