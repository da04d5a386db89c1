// Internal to the library, not installed: what the rules of presentations look at.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "velhls/presentation/PresentationFindings.h"
#include "velhls/presentation/PresentationPlaylist.h"
#include "velhls/presentation/VELHLSPresentation.h"
#include "velhls/standard/StandardRule.h"

namespace velhls {

/// A tag of the master playlist that names something.
struct MasterUse {
    enum class Kind : std::uint8_t { variant, audio, video, subtitles, iFrames, sessionData };

    Kind kind = Kind::variant;
    /// The tag.
    VELHLSLine line;
    /// Where the URI stands.
    PresentationPlace uri;
    /// Null where nothing is known of it.
    const VELHLSPresentation::Resource* resource = nullptr;
    /// The text that it names, if that was given.
    const PresentationText* text = nullptr;
    /// The same where it is a media playlist.
    const PresentationPlaylist* playlist = nullptr;

    [[nodiscard]] std::string_view value(std::string_view name) const {
        return valueOf(line, name).value_or("");
    }
    [[nodiscard]] bool isVariant() const { return kind == Kind::variant || kind == Kind::iFrames; }
};

/// The renditions of one TYPE and one GROUP-ID that have a playlist of their own.
struct RenditionGroup {
    std::vector<const MasterUse*> members;
    /// Whether the playlists of all of them were given.
    bool isWhole = true;
};

/// A master playlist and what it names.
class Presentation {
  public:
    Presentation(const VELHLSPresentation::Resource& master,
                 const std::vector<VELHLSPresentation::Resource>& resources);
    Presentation(const Presentation&) = delete;
    Presentation& operator=(const Presentation&) = delete;

    [[nodiscard]] const PresentationText& masterText() const { return masterText_; }
    [[nodiscard]] const CheckedPlaylist& master() const { return master_; }
    /// All tags that name something, variants first, then renditions, I-frame variants and session data.
    [[nodiscard]] const std::vector<MasterUse>& uses() const { return uses_; }
    /// The media playlists that were given, each once, in that order.
    [[nodiscard]] const std::deque<PresentationPlaylist>& playlists() const { return playlists_; }
    /// Of these all for which the claim holds.
    template <typename Claim>
    [[nodiscard]] std::vector<const PresentationPlaylist*> playlistsThat(Claim claim) const {
        std::vector<const PresentationPlaylist*> chosen;
        for (const PresentationPlaylist& playlist : playlists_) {
            if (claim(playlist)) chosen.push_back(&playlist);
        }
        return chosen;
    }
    /// The group that a variant names with this attribute, whose name is the TYPE too; null where it names none or one without
    /// playlists.
    [[nodiscard]] const RenditionGroup* groupOf(const MasterUse& variant, std::string_view type) const;
    [[nodiscard]] const RenditionGroup* groupNamed(std::string_view type, std::string_view name) const;

    /// A piece of a line of the master playlist.
    [[nodiscard]] PresentationPlace inMaster(const VELHLSLine& line, std::string_view piece) const {
        return {&masterText_, line, piece};
    }
    /// The first line of the master playlist, for what is missing.
    [[nodiscard]] PresentationPlace topOfMaster() const {
        return inMaster(master_.top(), master_.top().text.substr(0, 0));
    }

  private:
    void findUses();
    void addUse(MasterUse use);
    void giveTexts(const std::vector<VELHLSPresentation::Resource>& resources);
    void findPlaylists();
    void findGroups();

    PresentationText masterText_;
    VELHLSStructure structure_;
    CheckedPlaylist master_;
    std::vector<MasterUse> uses_;
    std::deque<PresentationText> texts_;
    std::deque<PresentationPlaylist> playlists_;
    std::map<std::pair<std::string_view, std::string_view>, RenditionGroup> groups_;
};

/// A rule of presentations, and beside it the one function that finds it.
struct PresentationEntry {
    StandardRule rule;
    void (*find)(const Presentation& presentation, const TellPresentation& tell);
};

struct PresentationTable {
    const PresentationEntry* first;
    std::size_t count;

    [[nodiscard]] const PresentationEntry* begin() const { return first; }
    [[nodiscard]] const PresentationEntry* end() const { return first + count; }
};

// The tables. Each stands beside its functions, in the file of its name.
[[nodiscard]] PresentationTable unreadResourceRules();
[[nodiscard]] PresentationTable referenceRules();
[[nodiscard]] PresentationTable headerAgreementRules();
[[nodiscard]] PresentationTable sharedKeyRules();
[[nodiscard]] PresentationTable bandwidthRules();
[[nodiscard]] PresentationTable timelineRules();
[[nodiscard]] PresentationTable sharedDateRangeRules();
[[nodiscard]] PresentationTable authoringPresentationRules();

}  // namespace velhls
