#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "velhls/common/VELHLSExport.h"
#include "velhls/document/VELHLSDocument.h"
#include "velhls/document/VELHLSFinding.h"
#include "velhls/document/VELHLSRule.h"
#include "velhls/standard/VELHLSStandard.h"

/// Checks a whole presentation: what a master playlist and the playlists that it names must keep together, and none of them
/// shows alone.
///
///     const VELHLSDocument master(masterText);
///     std::map<std::string, VELHLSDocument> documents;
///     std::vector<VELHLSPresentation::Resource> resources;
///     for (const VELHLSPresentation::Reference& reference : VELHLSPresentation::references(master)) {
///         const std::string uri(reference.uri);                             // "low/video.m3u8"
///         const auto place = documents.emplace(uri, textOf(uri)).first;     // as the caller fetches it
///         resources.push_back({uri, &place->second});
///     }
///     for (const VELHLSFinding& finding : VELHLSPresentation::check({"master.m3u8", &master}, resources,
///                                                                   {VELHLSStandard::Profile::rfc8216}))
///         std::cout << finding.uri << ":" << finding.line << ": " << finding.message << "\n";
///
/// Nothing is fetched and no file is opened: what is not given is not looked at. What one text alone breaks, VELHLSStandard
/// finds.
class VELHLS_CHECK_API VELHLSPresentation {
  public:
    VELHLSPresentation() = delete;

    /// What a URI of a master playlist names.
    enum class Use : std::uint8_t {
        Playlist,     ///< a media playlist: of a variant, an I-frame variant or a rendition
        SessionData,  ///< the JSON of EXT-X-SESSION-DATA
    };

    /// A URI of a master playlist.
    struct Reference {
        /// As it stands in the document, variables ("{$name}") not replaced.
        std::string_view uri;
        /// What it names.
        Use use = Use::Playlist;
        /// The line that it stands in first.
        std::size_t line = 1;
    };

    /// What the master playlist names, each URI once, in the order of the lines; nothing for another text. Keys and
    /// segments are not among them.
    [[nodiscard]] static std::vector<Reference> references(const VELHLSDocument& master);

    /// A text of the presentation, and its name.
    struct Resource {
        /// Of the master playlist any URI or path, for findings to name it and relative URIs to be compared. Of all others the
        /// URI as the master playlist writes it.
        std::string uri;
        /// The text, which must live as long as the check takes; session data's too. Null where there is none. Two URIs that
        /// name one playlist have one document.
        const VELHLSDocument* document = nullptr;
        /// Without a document: why it was not read, in a few words, "it is no regular file". Empty when it is known that nothing
        /// is there.
        std::string whyNotRead = {};
    };

    /// What the profiles find in the presentation: first in the master playlist, then in the other texts in the order in which
    /// the master playlist names them, in each in the order of the places. Each names its text (VELHLSFinding::uri) and, where
    /// two texts disagree, a place of the other one (VELHLSFinding::related). What several variants break in one way is told once, at the
    /// first of them, with how many of how many; the others are related places.
    ///
    /// Resources that the master playlist does not name are left alone, and what it names and is not among the resources
    /// too. Of one rule there are at most 100 findings. Takes time linear in the texts but for sorting; throws nothing but
    /// std::bad_alloc.
    [[nodiscard]] static std::vector<VELHLSFinding> check(
        const Resource& master, const std::vector<Resource>& resources,
        const std::vector<VELHLSStandard::Profile>& profiles);

    /// What the segments of a variant come to, as far as EXT-X-BYTERANGE and EXT-X-BITRATE tell.
    struct MeasuredRates {
        /// The line of its EXT-X-STREAM-INF or EXT-X-I-FRAME-STREAM-INF in the master playlist, counted from 1.
        std::size_t line = 1;
        /// Bits per second: the peak segment bit rates (RFC 8216, section 4.1) of its playlist and of the largest rendition of
        /// each of its groups, summed up. What BANDWIDTH has to be.
        double peak = 0.0;
        /// The same of the average segment bit rates: AVERAGE-BANDWIDTH.
        double average = 0.0;
        /// False when a playlist counts for nothing, since it was not given or does not tell the sizes of all its segments.
        bool isWhole = false;
    };

    /// Measures the variants and I-frame variants of which anything is known, in the order of their lines. Takes time linear in
    /// the texts but for sorting; throws nothing but std::bad_alloc.
    [[nodiscard]] static std::vector<MeasuredRates> measure(const Resource& master,
                                                            const std::vector<Resource>& resources);

    /// All rules that the profile may find, in the order of the documentation; last that of resources that were not read, which is
    /// told whatever profiles are asked for, as one of the profile library.
    [[nodiscard]] static std::vector<VELHLSRule> rules(VELHLSStandard::Profile profile);
};
