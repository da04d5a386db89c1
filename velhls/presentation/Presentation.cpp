#include "velhls/presentation/Presentation.h"

#include <algorithm>
#include <tuple>

#include "velhls/common/Names.h"
#include "velhls/common/TextScan.h"

namespace velhls {
namespace {

std::optional<MasterUse::Kind> kindOfRendition(std::string_view type) {
    if (type == attribute::audio) return MasterUse::Kind::audio;
    if (type == attribute::video) return MasterUse::Kind::video;
    if (type == attribute::subtitles) return MasterUse::Kind::subtitles;
    return std::nullopt;
}

std::string_view typeOf(MasterUse::Kind kind) {
    if (kind == MasterUse::Kind::audio) return attribute::audio;
    return kind == MasterUse::Kind::video ? attribute::video : attribute::subtitles;
}

void addRole(PresentationPlaylist::Roles& roles, MasterUse::Kind kind) {
    roles.isVariant |= kind == MasterUse::Kind::variant;
    roles.isIFrameVariant |= kind == MasterUse::Kind::iFrames;
    roles.isAudio |= kind == MasterUse::Kind::audio;
    roles.isVideo |= kind == MasterUse::Kind::video;
    roles.isSubtitles |= kind == MasterUse::Kind::subtitles;
}

}  // namespace

Presentation::Presentation(const VELHLSPresentation::Resource& master,
                           const std::vector<VELHLSPresentation::Resource>& resources)
    : masterText_{master.uri, *master.document},
      structure_(*master.document),
      master_(structure_, master.document->kind(), StandardProfile::rfc8216) {
    for (const VELHLSLine line : master.document->lines())
        master_.add(line);
    findUses();
    giveTexts(resources);
    findPlaylists();
    findGroups();
}

void Presentation::findUses() {
    if (!master_.isMaster()) return;
    const VELHLSDocument& document = masterText_.document;
    for (const VELHLSStructure::Variant& variant : structure_.variants()) {
        if (variant.uriLine == 0) continue;
        const VELHLSLine uriLine = document.line(variant.uriLine);
        addUse({MasterUse::Kind::variant, document.line(variant.tagLine), inMaster(uriLine, uriLine.value)});
    }
    const auto addAttributes = [&](std::size_t tag, const auto& kindOf) {
        for (const std::uint32_t number : master_.lines(tag)) {
            const VELHLSLine line = document.line(number);
            const std::optional<MasterUse::Kind> kind = kindOf(line);
            const auto uri = valueOf(line, attribute::uri);
            if (kind && uri) addUse({*kind, line, inMaster(line, *uri)});
        }
    };
    addAttributes(tagIndexOf<tag::media>, [](const VELHLSLine& line) {
        return kindOfRendition(valueOf(line, attribute::type).value_or(""));
    });
    addAttributes(tagIndexOf<tag::iFrameStreamInf>,
                  [](const VELHLSLine&) { return std::optional(MasterUse::Kind::iFrames); });
    addAttributes(tagIndexOf<tag::sessionData>,
                  [](const VELHLSLine&) { return std::optional(MasterUse::Kind::sessionData); });
}

void Presentation::addUse(MasterUse use) {
    if (!use.uri.piece.empty()) uses_.push_back(use);
}

/// The texts get the order in which the lines of the master playlist name them.
void Presentation::giveTexts(const std::vector<VELHLSPresentation::Resource>& resources) {
    std::map<std::string_view, const VELHLSPresentation::Resource*> byUri;
    for (const VELHLSPresentation::Resource& resource : resources)
        byUri.emplace(resource.uri, &resource);
    std::vector<MasterUse*> inOrder;
    for (MasterUse& use : uses_)
        inOrder.push_back(&use);
    std::stable_sort(inOrder.begin(), inOrder.end(), [](const MasterUse* left, const MasterUse* right) {
        return left->uri.line.number < right->uri.line.number;
    });
    std::map<const VELHLSDocument*, const PresentationText*> byDocument = {
        {&masterText_.document, &masterText_}};
    for (MasterUse* const use : inOrder) {
        const auto found = byUri.find(use->uri.piece);
        if (found == byUri.end()) continue;
        use->resource = found->second;
        const VELHLSDocument* const document = use->resource->document;
        if (document == nullptr) continue;
        const PresentationText*& text = byDocument[document];
        if (text == nullptr) {
            texts_.push_back(PresentationText{use->resource->uri, *document, texts_.size() + 1});
            text = &texts_.back();
        }
        use->text = text;
    }
}

void Presentation::findPlaylists() {
    std::map<const PresentationText*, PresentationPlaylist*> byText;
    for (MasterUse& use : uses_) {
        const bool isMedia = use.text != nullptr && use.kind != MasterUse::Kind::sessionData &&
                             use.text->document.kind() == VELHLSDocument::Media;
        if (!isMedia) continue;
        PresentationPlaylist*& playlist = byText[use.text];
        if (playlist == nullptr) playlist = &playlists_.emplace_back(*use.text);
        addRole(playlist->roles, use.kind);
        use.playlist = playlist;
    }
}

void Presentation::findGroups() {
    for (const MasterUse& use : uses_) {
        if (use.isVariant() || use.kind == MasterUse::Kind::sessionData) continue;
        RenditionGroup& group = groups_[{typeOf(use.kind), use.value(attribute::groupId)}];
        group.members.push_back(&use);
        group.isWhole = group.isWhole && use.playlist != nullptr;
    }
}

const RenditionGroup* Presentation::groupNamed(std::string_view type, std::string_view name) const {
    const auto group = groups_.find({type, name});
    return group == groups_.end() ? nullptr : &group->second;
}

const RenditionGroup* Presentation::groupOf(const MasterUse& variant, std::string_view type) const {
    const auto name = valueOf(variant.line, type);
    return name ? groupNamed(type, *name) : nullptr;
}

}  // namespace velhls
