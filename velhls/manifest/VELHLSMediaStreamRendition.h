#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <string_view>

#include "velhls/common/VELHLSExport.h"

class VELHLSMediaStream;

/// One alternative rendition of a master playlist: EXT-X-MEDIA (RFC 8216, section 4.3.4.1).
///
///     #EXT-X-MEDIA:TYPE=AUDIO,                        type             Audio
///                  GROUP-ID="aac",                    groupId
///                  NAME="English",                    name
///                  URI="audio/en.m3u8",               uri
///                  LANGUAGE="en",                     language
///                  ASSOC-LANGUAGE="en-GB",            assocLanguage
///                  DEFAULT=YES,                       isDefault        (sets autoSelect too)
///                  AUTOSELECT=YES,                    autoSelect
///                  FORCED=NO,                         forced
///                  CHARACTERISTICS="b,a,b"            characteristics  {"a", "b"}
class VELHLS_API VELHLSMediaStreamRendition {
  public:
    /// TYPE.
    enum RenditionType : std::uint32_t {
        Audio = 0,             ///< "AUDIO"
        Video = 1,             ///< "VIDEO"
        Subtitles = 2,         ///< "SUBTITLES"
        ClosedCaptions = 3,    ///< "CLOSED-CAPTIONS"
        Unknown = 0xFFFFFFFF,  ///< TYPE has not been read; such a rendition is never valid
    };

    /// The text of a TYPE, as a playlist has it: "AUDIO", "VIDEO", "SUBTITLES" or "CLOSED-CAPTIONS"; a
    /// variant names its groups by the same texts. Empty for Unknown, and for a value that is no type.
    [[nodiscard]] static std::string_view textOf(RenditionType type) noexcept;

    /// A rendition without anything, to be filled member by member; it validates once it has a type, GROUP-ID and NAME.
    VELHLSMediaStreamRendition() = default;

    /// Stores its arguments and checks nothing; `characteristics` starts empty. The media stream is shared.
    ///
    ///     VELHLSMediaStreamRendition english(VELHLSMediaStreamRendition::Audio,
    ///                                        "audio/en.m3u8",    // uri
    ///                                        nullptr,            // mediaStream: none attached
    ///                                        "aac",              // groupId
    ///                                        "en",               // language
    ///                                        "",                 // assocLanguage: absent
    ///                                        "English",          // name
    ///                                        true,               // isDefault
    ///                                        true,               // autoSelect: needed for a default
    ///                                        false,              // forced
    ///                                        "",                 // instreamId: for ClosedCaptions alone
    ///                                        "");                // audioTrackType
    VELHLSMediaStreamRendition(RenditionType type, const std::string& uri,
                               std::shared_ptr<VELHLSMediaStream> mediaStream, const std::string& groupId,
                               const std::string& language, const std::string& assocLanguage,
                               const std::string& name, bool isDefault, bool autoSelect, bool forced,
                               const std::string& instreamId, const std::string& audioTrackType);

    /// Reads a whole EXT-X-MEDIA line. Returns a new rendition, which validates, or null when the line is not
    /// acceptable: another tag, a malformed attribute list, a TYPE that is none of the four, a DEFAULT,
    /// AUTOSELECT or FORCED other than exactly "YES" or "NO", or a rendition that does not validate. Which of these it was
    /// tells the parse of a playlist: see VELHLSReason.
    ///
    /// Kept as is: DEFAULT=YES sets AUTOSELECT, whatever AUTOSELECT says. CHARACTERISTICS is sorted and loses
    /// its repeats; empty pieces are kept. The forms of INSTREAM-ID, LANGUAGE and URI are not checked.
    [[nodiscard]] static std::shared_ptr<VELHLSMediaStreamRendition> parse(const std::string& line);

    /// Appends the EXT-X-MEDIA line. Returns 0, or -1 with nothing appended when the rendition does not
    /// validate.
    ///
    /// Kept as is: AUDIO-TRACK-TYPE is never written, nor is a flag that is NO. A `type` that is neither
    /// Unknown nor one of the four gives -1 after "#EXT-X-MEDIA:TYPE=" was appended; parsing never makes one.
    [[nodiscard]] std::int32_t render(std::string& out) const;

    /// True when the type is known; GROUP-ID and NAME are not empty; INSTREAM-ID is set for CLOSED-CAPTIONS
    /// and for nothing else; URI is empty for CLOSED-CAPTIONS; FORCED is set for SUBTITLES only; and DEFAULT
    /// comes with AUTOSELECT. A rendition without URI is valid for every type.
    [[nodiscard]] bool validate() const;

    /// True when the two renditions could stand for each other in two groups of one type: type, LANGUAGE,
    /// ASSOC-LANGUAGE, NAME, DEFAULT, AUTOSELECT, FORCED, INSTREAM-ID and CHARACTERISTICS are the same, byte
    /// for byte. URI, GROUP-ID, AUDIO-TRACK-TYPE and the media stream are not compared. False for null.
    [[nodiscard]] bool equalExceptURIAndGroupID(std::shared_ptr<VELHLSMediaStreamRendition> other) const;

    /// TYPE.
    RenditionType type = Unknown;

    /// URI of the rendition's media playlist, not resolved (VELHLS.h); empty when the media lies in the
    /// variants' own playlists.
    std::string uri;

    /// The rendition's media playlist, once a caller has attached it by assignment; null after parsing.
    std::shared_ptr<VELHLSMediaStream> mediaStream;

    /// GROUP-ID.
    std::string groupId;

    /// LANGUAGE (RFC 5646); empty when absent.
    std::string language;

    /// ASSOC-LANGUAGE; empty when absent.
    std::string assocLanguage;

    /// NAME.
    std::string name;

    /// DEFAULT.
    bool isDefault = false;

    /// AUTOSELECT.
    bool autoSelect = false;

    /// FORCED.
    bool forced = false;

    /// INSTREAM-ID of a closed-caption rendition; empty for all others.
    std::string instreamId;

    /// AUDIO-TRACK-TYPE (vendor extension); kept for the caller, not written by `render`, not compared.
    std::string audioTrackType;

    /// CHARACTERISTICS, cut at its commas.
    std::set<std::string> characteristics;
};
