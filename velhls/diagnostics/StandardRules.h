// Internal to the library, not installed: the rules of RFC 8216 that no reader looks at.
#pragma once

#include <bitset>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "velhls/common/Reading.h"
#include "velhls/diagnostics/VELHLSDiagnostics.h"
#include "velhls/document/FindingList.h"
#include "velhls/document/TextLines.h"
#include "velhls/losses/Loss.h"

class VELHLSMediaStream;
class VELHLSParsedManifest;

namespace velhls {

/// Looks at what the readers read as RFC 8216 does. Nothing of it rejects a playlist.
class StandardRules {
  public:
    StandardRules(VELHLSDiagnostics::PlaylistKind kind, const TextLines& lines, FindingList& findings)
        : kind_(kind), lines_(lines), findings_(findings) {}

    void lineRead(const LossLine& line);

    /// The playlist was read, or as much of it as was not rejected.
    void masterRead(const VELHLSParsedManifest& manifest, const Reading& reading);
    void mediaRead(const VELHLSMediaStream& stream, const Reading& reading);

    /// All of its rules.
    [[nodiscard]] static std::vector<VELHLSRule> rules();

  private:
    /// What needs the highest version so far.
    struct Need {
        int version = 1;
        std::string feature;
        Place place;
    };

    void checkCharacters(const LossLine& line);
    void tagRead(const LossLine& line);
    void tagIgnored(const LossLine& line);
    void attributesRead(const LossLine& line);
    void headerRead(const Place& name);
    void countTag(const LossLine& line);
    void checkType(const LossLine& line, const Attribute& attribute, std::string_view name);
    void checkDefault(const LossLine& line, const Attribute& attribute, std::string_view name);
    void needVersion(int version, std::string_view feature, const Place& place);
    void needVersionForAttribute(const LossLine& line, const Attribute& attribute, std::string_view name);
    void checkDuration(const LossLine& line);
    void checkHeader();
    void checkVersion(int version);
    void checkOrderOfRenditions(const VELHLSParsedManifest& manifest, const Reading& reading);
    void checkTargetDuration(const VELHLSMediaStream& stream, const Reading& reading);
    [[nodiscard]] Place placeOfDuration(const RecordLines& record) const;

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
