#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <string>

#include "velhls/common/Names.h"
#include "velhls/common/ReasonText.h"
#include "velhls/common/TextScan.h"
#include "velhls/presentation/JsonSyntax.h"
#include "velhls/presentation/Presentation.h"
#include "velhls/standard/Codecs.h"
#include "velhls/standard/UriSuffix.h"

// What the URIs of a master playlist name.

namespace velhls {
namespace {

using Kind = MasterUse::Kind;

/// Goes through what was not read, each once.
template <typename Visit>
void forEachUnread(const Presentation& presentation, Visit visit) {
    std::set<const VELHLSPresentation::Resource*> seen;
    for (const MasterUse& use : presentation.uses()) {
        const bool isUnread = use.resource != nullptr && use.resource->document == nullptr;
        if (isUnread && seen.insert(use.resource).second) visit(use);
    }
}

void findUnread(const Presentation& presentation, const TellPresentation& tell) {
    forEachUnread(presentation, [&](const MasterUse& use) {
        const std::string& why = use.resource->whyNotRead;
        if (!why.empty()) tell(use.uri, quoted(use.uri.piece) + ": " + why);
    });
}

void findMissingPlaylist(const Presentation& presentation, const TellPresentation& tell) {
    forEachUnread(presentation, [&](const MasterUse& use) {
        if (use.resource->whyNotRead.empty() && use.kind != Kind::sessionData)
            tell(use.uri, quoted(use.uri.piece) + ", and nothing there");
    });
}

void findMissingData(const Presentation& presentation, const TellPresentation& tell) {
    forEachUnread(presentation, [&](const MasterUse& use) {
        if (use.resource->whyNotRead.empty() && use.kind == Kind::sessionData)
            tell(use.uri, quoted(use.uri.piece) + ", and nothing there");
    });
}

/// Once, at the first of the uses that name a master playlist.
template <typename IsOfRule>
void findMasterNamed(const Presentation& presentation, const TellPresentation& tell, std::string_view what,
                     IsOfRule isOfRule) {
    BrokenPlaces broken;
    broken.what = what;
    const PresentationText* named = nullptr;
    for (const MasterUse& use : presentation.uses()) {
        if (!isOfRule(use.kind)) continue;
        ++broken.total;
        if (use.text == nullptr || use.text->document.kind() != VELHLSDocument::Master) continue;
        if (named == nullptr) named = use.text;
        broken.add(use.uri, quoted(use.uri.piece) + ", a master playlist");
    }
    PresentationWords words;
    if (named != nullptr) {
        const VELHLSLine first = named->document.line(1);
        words.related = {named, first, first.text.substr(0, 0)};
        words.relatedSeen = "a master playlist";
    }
    tell(broken, words);
}

void findMasterOfVariant(const Presentation& presentation, const TellPresentation& tell) {
    findMasterNamed(presentation, tell, "variants", [](Kind kind) { return kind == Kind::variant; });
}

void findMasterOfRendition(const Presentation& presentation, const TellPresentation& tell) {
    findMasterNamed(presentation, tell, "renditions", [](Kind kind) {
        return kind == Kind::audio || kind == Kind::video || kind == Kind::subtitles;
    });
}

/// At the playlist, unless it is no media playlist at all.
void findIFramesMissing(const Presentation& presentation, const TellPresentation& tell) {
    BrokenPlaces broken;
    broken.what = "I-frame variants";
    PresentationWords words;
    for (const MasterUse& use : presentation.uses()) {
        if (use.kind != Kind::iFrames) continue;
        ++broken.total;
        if (use.text == nullptr) continue;
        const bool isMaster = use.text->document.kind() == VELHLSDocument::Master;
        if (!isMaster && (use.playlist == nullptr || use.playlist->isIFrames())) continue;
        if (broken.places.empty() && !isMaster) {
            words.related = use.uri;
            words.relatedSeen = "the I-frame variant that names it";
        }
        if (isMaster) broken.add(use.uri, quoted(use.uri.piece) + ", a master playlist");
        if (!isMaster) broken.add(use.playlist->top(), "none");
    }
    tell(broken, words);
}

/// The place in a text at an offset.
PresentationPlace placeAt(const PresentationText& text, std::size_t offset) {
    const VELHLSLine line = text.document.line(text.document.lineAt(offset));
    return {&text, line, line.text.substr(std::min(offset - line.offset, line.text.size()), 0)};
}

void findOtherThanJson(const Presentation& presentation, const TellPresentation& tell) {
    std::set<const PresentationText*> seen;
    for (const MasterUse& use : presentation.uses()) {
        // A later attribute says that it is something else.
        const bool isJson = use.kind == Kind::sessionData && use.value("FORMAT") != "RAW";
        if (!isJson || use.text == nullptr || !seen.insert(use.text).second) continue;
        const auto fault = findJsonFault(use.text->document.text());
        if (!fault) continue;
        PresentationWords words;
        if (use.text->document.lineCount() > 0) {
            words.related = placeAt(*use.text, *fault);
            words.relatedSeen = "what is no JSON";
        }
        tell(use.uri, quoted(use.uri.piece) + ", which is no JSON", words);
    }
}

/// What the end of a segment's URI tells of its format, and the beginnings of the codecs that name it.
struct FormatOfSuffix {
    std::string_view suffix;
    std::string_view name;
    /// With commas between them.
    std::string_view codecs;
};

constexpr FormatOfSuffix formats[] = {
    {"ec3", "ec-3", "ec-3,mp4a.a6,mp4a.A6"},
    {"eac3", "ec-3", "ec-3,mp4a.a6,mp4a.A6"},
    {"ac3", "ac-3", "ac-3,mp4a.a5,mp4a.A5"},
    {"aac", "mp4a.40", "mp4a.40,mp4a.66,mp4a.67,mp4a.68"},
    {"mp3", "mp4a.40.34", "mp4a.40.34,mp4a.69,mp4a.6b,mp4a.6B,mp3"},
};

const FormatOfSuffix* formatOfFirst(const PresentationPlaylist& playlist) {
    if (playlist.segments().empty()) return nullptr;
    const std::string_view suffix = suffixOf(playlist.uriOf(playlist.segments().front()).piece);
    for (const FormatOfSuffix& format : formats) {
        if (format.suffix == suffix) return &format;
    }
    return nullptr;
}

bool namesFormat(std::string_view codecs, const FormatOfSuffix& format) {
    bool names = false;
    forEachPart(codecs, ',', [&](std::string_view codec) {
        forEachPart(format.codecs, ',',
                    [&](std::string_view start) { names = names || startsWith(trimmed(codec), start); });
    });
    return names;
}

/// The playlists of a group that tell a format, one for each.
using Formats = std::vector<std::pair<const FormatOfSuffix*, const PresentationPlaylist*>>;

Formats formatsOf(const RenditionGroup& group) {
    Formats found;
    for (const MasterUse* const member : group.members) {
        const FormatOfSuffix* const format = member->playlist ? formatOfFirst(*member->playlist) : nullptr;
        bool isNew = format != nullptr;
        for (const auto& known : found)
            isNew = isNew && known.first->name != format->name;
        if (isNew) found.emplace_back(format, member->playlist);
    }
    return found;
}

void findFormatUnnamed(const Presentation& presentation, const TellPresentation& tell) {
    std::map<const RenditionGroup*, Formats> formatsOfGroups;
    std::map<std::pair<const RenditionGroup*, std::string_view>, BrokenPlaces> broken;
    std::map<const RenditionGroup*, std::size_t> variantsOfGroups;
    std::vector<std::pair<const RenditionGroup*, std::string_view>> order;
    for (const MasterUse& use : presentation.uses()) {
        const auto codecs = valueOf(use.line, attribute::codecs);
        const RenditionGroup* const group =
            use.kind == Kind::variant ? presentation.groupOf(use, attribute::audio) : nullptr;
        if (group == nullptr || !codecs) continue;
        ++variantsOfGroups[group];
        const auto [known, isNew] = formatsOfGroups.try_emplace(group);
        if (isNew) known->second = formatsOf(*group);
        for (const auto& [format, playlist] : known->second) {
            if (namesFormat(*codecs, *format)) continue;
            BrokenPlaces& places = broken[{group, format->name}];
            if (places.places.empty()) order.emplace_back(group, format->name);
            places.add(presentation.inMaster(use.line, *codecs));
        }
    }
    for (const auto& key : order) {
        BrokenPlaces& places = broken[key];
        places.total = variantsOfGroups[key.first];
        places.what = "variants that name the group";
        PresentationWords words;
        words.expected = std::string(key.second) + " among the codecs, as segments of the group are named";
        for (const auto& [format, playlist] : formatsOfGroups[key.first]) {
            if (format->name == key.second) words.related = playlist->uriOf(playlist->segments().front());
        }
        tell(places, words);
    }
}

// clang-format off
constexpr PresentationEntry ofUnread[] = {
    {{{"resource-not-read", warning, "What the master playlist names was not read.",
       "a URI that may be followed", "library behaviour", false}, ""}, findUnread},
};

constexpr PresentationEntry rules[] = {
    {{{"variant-names-master-playlist", error, "The URI of a variant names a master playlist.",
       "a media playlist", "RFC 8216, section 4.1", false}, "MUST"}, findMasterOfVariant},
    {{{"rendition-names-master-playlist", error, "The URI of a rendition names a master playlist.",
       "a media playlist", "RFC 8216, section 4.3.4.1", false}, "SYN"}, findMasterOfRendition},
    {{{"i-frame-variant-without-i-frames", error, "The playlist of an I-frame variant has no EXT-X-I-FRAMES-ONLY.",
       "EXT-X-I-FRAMES-ONLY in the playlist of an I-frame variant", "RFC 8216, section 4.3.4.3", false}, "MUST"}, findIFramesMissing},
    {{{"playlist-missing", warning, "A playlist that the master playlist names is not there.",
       "a playlist that is there", "RFC 8216, section 6.2.1", false}, "MUST"}, findMissingPlaylist},
    {{{"session-data-not-json", error, "The resource that EXT-X-SESSION-DATA names is not JSON.",
       "a resource that is JSON", "RFC 8216, section 4.3.4.4", false}, "MUST"}, findOtherThanJson},
    {{{"session-data-missing", note, "The resource that EXT-X-SESSION-DATA names is not there.",
       "a resource that is there", "RFC 8216, section 4.3.4.4", false}, "MUST"}, findMissingData},
    {{{"variant-codecs-without-format-of-group", warning, "CODECS of a variant does not name a format that a rendition of its group seems to have.",
       "the formats of all renditions of the group", "RFC 8216, section 4.3.4.1.1", false}, "MUST"}, findFormatUnnamed},
};
// clang-format on

}  // namespace

PresentationTable unreadResourceRules() {
    return {ofUnread, std::size(ofUnread)};
}

PresentationTable referenceRules() {
    return {rules, std::size(rules)};
}

}  // namespace velhls
