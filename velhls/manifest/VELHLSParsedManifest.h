#pragma once

#include <cstdint>
#include <istream>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "velhls/common/VELHLSExport.h"
#include "velhls/common/VELHLSParsingStatus.h"
#include "velhls/common/VELHLSReason.h"
#include "velhls/manifest/VELHLSManifestSessionData.h"
#include "velhls/manifest/VELHLSMediaStreamRendition.h"
#include "velhls/manifest/VELHLSMediaVariant.h"
#include "velhls/manifest/VELHLSZORStreamInformation.h"
#include "velhls/media/VELHLSProtectionData.h"

/// One master playlist (RFC 8216, section 4.3.4): its variants, renditions, session data and keys.
///
///     #EXTM3U                                                    hasHeader
///     #EXT-X-VERSION:6                                           version
///     #EXT-X-INDEPENDENT-SEGMENTS                                independentSegments
///     #EXT-X-START:TIME-OFFSET=2.5,PRECISE=YES                   startTimeOffset, startPrecise
///     #EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID="aac",NAME="English"      renditions[Audio]["aac"]["English"]
///     #ZOR-STREAM-INF:NOMINAL_VIDEO_BITRATE=700000               zorStreamInformation[0]
///     #EXT-X-STREAM-INF:BANDWIDTH=800000,AUDIO="aac"             streamVariants[0], variants under 800000
///     low.m3u8
///     #EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=90000,URI="i.m3u8"     variants under 90000
///     #EXT-X-SESSION-DATA:VALUE="",DATA-ID="a",URI="a.json"      sessionData[0]
///     #EXT-X-SESSION-KEY:METHOD=AES-128,URI="k"                  sessionKeys[0]
///
/// A manifest owns its records through shared pointers. Nothing in the library changes it once it was
/// returned, but for the caller's own calls; it may be read from several threads.
class VELHLS_API VELHLSParsedManifest {
  public:
    /// The renditions of one group, by NAME.
    using RenditionsByName = std::map<std::string, std::shared_ptr<VELHLSMediaStreamRendition>>;
    /// The groups of one rendition type, by GROUP-ID.
    using RenditionGroups = std::map<std::string, RenditionsByName>;

    /// Reads a master playlist from the stream, which is left after the last line that was read. Returns
    /// null when the playlist is rejected: the overload that takes a text says why and where. `status` may be null.
    ///
    /// On success the status' error is set to VELHLSParsingErrorNone; a rejection leaves its error and
    /// message as they were. Its metrics are written in both cases. The exceptions of number conversion
    /// (std::invalid_argument, std::out_of_range) are not caught: for such values as a VERSION that is no
    /// number, a BANDWIDTH beyond 64 bits or a TIME-OFFSET of "+-" they leave this function, and then the
    /// metrics are not written. The exceptions of a stream that was told to throw leave it too. When memory
    /// runs out std::bad_alloc leaves it, and error, message and metrics are as they were.
    ///
    /// A playlist is rejected for: a line that is no tag, no comment, not blank and no variant's URI; a line
    /// that begins with "#EXT", has no colon and is not "#EXTM3U" or "#EXT-X-INDEPENDENT-SEGMENTS", so also
    /// "#EXT-X-ENDLIST"; a rendition, variant, session data or session key that does not parse; an
    /// EXT-X-START without a TIME-OFFSET made of the characters "+-0123456789."; and at the end whatever
    /// `validate` rejects.
    ///
    /// Kept as is:
    /// - "#EXTM3U" is not required, and a second one ends the playlist: nothing after it is read.
    /// - The line after EXT-X-STREAM-INF is its URI whatever it holds, a tag included.
    /// - Of two renditions with the same type, GROUP-ID and NAME the second is dropped.
    /// - Unknown tags with a colon, and tags of media playlists with one, are ignored.
    /// - PRECISE=YES is not undone by a later EXT-X-START; PRECISE values other than YES and NO are not
    ///   rejected.
    /// - ZOR-STREAM-INF lines that do not parse are dropped, and all of them are when their number is not
    ///   that of the EXT-X-STREAM-INF tags.
    /// - Carriage returns are removed wherever they stand; other white space is not, so " #EXTM3U" is
    ///   rejected.
    /// - A stream that breaks off is read as one that ends there: ask input.bad().
    [[nodiscard]] static std::shared_ptr<VELHLSParsedManifest> parseManifest(std::istream& input,
                                                                             VELHLSParsingStatus* status);

    /// The same of a text in memory, which need not outlive the manifest: no stream is made, and nothing is copied but
    /// what the manifest keeps. Throws std::bad_alloc alone: a number that cannot be converted is a reason as any other,
    /// and null. Only a rejected text is read a second time, up to the place of the reason, to say where that is;
    /// `reason` may be null, and is left as it was when the playlist is accepted.
    [[nodiscard]] static std::shared_ptr<VELHLSParsedManifest> parseManifest(std::string_view text,
                                                                             VELHLSReason* reason = nullptr);

    /// Not for callers: what parseManifest times. The status' metrics are not touched.
    [[nodiscard]] static std::shared_ptr<VELHLSParsedManifest> internalParseManifest(
        std::istream& input, VELHLSParsingStatus* status);

    /// Writes the manifest as playlist text. Returns 0, or -1 with nothing written when it does not validate,
    /// or -1 with the output cut off after the last whole record when a record does not render. Write errors
    /// of the stream are not looked at: ask the stream. Each line that is not a record's is flushed.
    ///
    /// The order is: header, version, independent segments, start; renditions by type, GROUP-ID and NAME, in
    /// each group the FORCED ones last; variants of both kinds by bandwidth; session data.
    ///
    /// Kept as is: version 1 is not written. A `startTimeOffset` of 0 is not written, and the default of -1
    /// is: a playlist that had no EXT-X-START gets "#EXT-X-START:TIME-OFFSET=-1". The offset is written with
    /// the stream's precision and floating-point flags (six significant digits by default), and with a
    /// decimal point in every locale. Session keys, ZOR-STREAM-INF tags, comments and unknown tags are not
    /// written.
    [[nodiscard]] std::int32_t render(std::ostream& out) const;

    /// Checks the rules that bind the records to each other; it changes nothing and says nothing but true or
    /// false. A parsed manifest validates.
    ///
    /// 1. There is at least one variant, of either kind.
    /// 2. Each group that a variant names exists under its type and has a rendition.
    /// 3. All groups of one type, referenced or not, hold the same renditions, compared by NAME and
    ///    VELHLSMediaStreamRendition::equalExceptURIAndGroupID; at most one of them is DEFAULT.
    /// 4. No two session data entries have the same DATA-ID and LANGUAGE, compared as the text
    ///    "DATA-ID:LANGUAGE".
    /// 5. No two session keys are the same in METHOD, URI, IV, KEYFORMAT and KEYFORMATVERSIONS.
    ///
    /// A null record, which only a caller can have put there, fails the rule that meets it.
    [[nodiscard]] bool validate() const;

    /// Pairs ZOR-STREAM-INF entries with EXT-X-STREAM-INF variants: sets `hasZORStreamInformation` when there
    /// are as many of the ones as of the others, and otherwise drops the entries. Part of every parse; safe
    /// to repeat.
    void sanitize();

    /// Copies the nominal bit rates of the i-th ZOR-STREAM-INF entry into the i-th variant of
    /// `streamVariants`, when `hasZORStreamInformation` is set. Part of every parse; safe to repeat.
    void populateMetaData();

    /// "#EXTM3U" has been read. Nothing requires it.
    bool hasHeader = false;

    /// EXT-X-VERSION.
    std::int32_t version = 1;

    /// Renditions by type, GROUP-ID and NAME.
    std::map<VELHLSMediaStreamRendition::RenditionType, RenditionGroups> renditions;

    /// The EXT-X-STREAM-INF variants in the order of the playlist. I-frame variants are not among them.
    ///
    /// These are the objects that `variants` holds too: a variant that is changed here is changed there.
    /// Which variants there are is said by each of the two by itself: add a variant to both, and take it out
    /// of both (examples/drop_variants.cpp). `render` and `validate` look at `variants`; `sanitize` and
    /// `populateMetaData` at this one.
    std::vector<std::shared_ptr<VELHLSMediaVariant>> streamVariants;

    /// The variants of both kinds by bandwidth; equal bandwidths in the order of the playlist.
    ///
    /// The key is a copy: a variant whose bandwidth is changed stays under its old one, and `render` writes
    /// it in that one's place. Take it out before, and put it in again under the new one.
    std::multimap<std::uint64_t, std::shared_ptr<VELHLSMediaVariant>> variants;

    /// EXT-X-SESSION-DATA entries in the order of the playlist.
    std::vector<std::shared_ptr<VELHLSManifestSessionData>> sessionData;

    /// ZOR-STREAM-INF entries (vendor extension) in the order of the playlist.
    std::vector<std::shared_ptr<VELHLSZORStreamInformation>> zorStreamInformation;

    /// EXT-X-SESSION-KEY entries in the order of the playlist.
    std::vector<std::shared_ptr<VELHLSProtectionData>> sessionKeys;

    /// EXT-X-INDEPENDENT-SEGMENTS was read.
    bool independentSegments = false;

    /// TIME-OFFSET of EXT-X-START in seconds. Kept as is: -1 when there is none.
    double startTimeOffset = -1.0;

    /// PRECISE=YES of EXT-X-START.
    bool startPrecise = false;

    /// The ZOR-STREAM-INF entries pair one to one with the variants of `streamVariants`.
    bool hasZORStreamInformation = false;
};
