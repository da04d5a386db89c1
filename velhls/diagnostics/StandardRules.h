// Internal to the library, not installed: the rules of RFC 8216 that no reader looks at.
#pragma once

#include <bitset>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "velhls/common/AttributeList.h"
#include "velhls/common/TagLine.h"
#include "velhls/diagnostics/FindingList.h"
#include "velhls/diagnostics/TextLines.h"
#include "velhls/diagnostics/VELHLSDiagnostics.h"

class VELHLSMediaStream;
class VELHLSParsedManifest;

namespace velhls {

class FindingRecorder;

/// Looks at what the readers read as RFC 8216 does. Nothing of it rejects a playlist.
class StandardRules {
  public:
    StandardRules(VELHLSDiagnostics::PlaylistKind kind, const TextLines& lines, FindingList& findings)
        : kind_(kind), lines_(lines), findings_(findings) {}

    void lineRead(std::size_t lineNumber);
    void tagRead(const TagLine& tagLine, const Place& name, const Place& value);
    void tagIgnored(const TagLine& tagLine, const Place& name);
    void attributeRead(std::string_view tagName, const Attribute& attribute, const Place& name,
                       const Place& value);
    void attributesRead(std::string_view tagName, const AttributeList& attributes, const Place& name);

    /// The playlist was read, or as much of it as was not rejected.
    void masterRead(const VELHLSParsedManifest& manifest, const FindingRecorder& places);
    void mediaRead(const VELHLSMediaStream& stream, const FindingRecorder& places);

  private:
    /// What needs the highest version so far.
    struct Need {
        int version = 1;
        std::string feature;
        Place place;
    };

    void headerRead(const Place& name);
    void countTag(const TagLine& tagLine, const Place& name);
    void checkType(const Attribute& attribute, std::string_view name, const Place& value);
    void checkDefault(const Attribute& attribute, std::string_view name, const Place& place);
    void needVersion(int version, std::string_view feature, const Place& place);
    void needVersionForAttribute(std::string_view name, std::string_view text, const Place& place);
    void checkDuration(std::string_view value, const Place& place);
    void checkHeader();
    void checkVersion(int version);
    void checkOrderOfRenditions(const VELHLSParsedManifest& manifest, const FindingRecorder& places);
    void checkTargetDuration(const VELHLSMediaStream& stream, const FindingRecorder& places);

    VELHLSDiagnostics::PlaylistKind kind_;
    const TextLines& lines_;
    FindingList& findings_;

    bool headerSeen_ = false;
    bool segmentSeen_ = false;
    bool startSeen_ = false;
    bool iFramesOnly_ = false;
    /// False when the last target duration was rejected.
    bool targetDurationIsKnown_ = false;
    /// One bit for each tag that may stand once.
    std::bitset<16> seenTags_;
    std::optional<Place> version_;
    std::optional<Place> targetDuration_;
    std::optional<Place> mediaSequence_;
    std::optional<Place> discontinuitySequence_;
    std::optional<Place> map_;
    Need need_;
};

}  // namespace velhls
