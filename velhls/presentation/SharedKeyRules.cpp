#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <tuple>

#include "velhls/common/Names.h"
#include "velhls/common/ReasonText.h"
#include "velhls/presentation/Presentation.h"
#include "velhls/presentation/ResolvedUri.h"

// Keys of the master playlist and of several media playlists.

namespace velhls {
namespace {

/// What EXT-X-KEY or EXT-X-SESSION-KEY says. Of equal ones in one text there is one.
struct Key {
    std::string_view uri;
    std::string_view method;
    std::string_view format;
    std::string_view versions;
    VELHLSLine line;
    /// What its URI names.
    std::string name;

    [[nodiscard]] auto values() const { return std::tie(uri, method, format, versions); }
};

/// Of a tag of these lines, without keys whose URI is not known.
std::vector<Key> keysOf(const PresentationText& text, const std::vector<std::uint32_t>& lines) {
    std::vector<Key> keys;
    for (const std::uint32_t number : lines) {
        Key key;
        key.format = "identity";
        key.versions = "1";
        key.line = text.document.line(number);
        for (const VELHLSAttribute& attribute : key.line.attributes()) {
            if (attribute.name == attribute::uri) key.uri = attribute.value;
            if (attribute.name == attribute::method) key.method = attribute.value;
            if (attribute.name == attribute::keyFormat) key.format = attribute.value;
            if (attribute.name == attribute::keyFormatVersions) key.versions = attribute.value;
        }
        const bool isVariable = key.uri.find("{$") != std::string_view::npos;
        if (key.uri.empty() || isVariable || key.method == fixed::none) continue;
        keys.push_back(std::move(key));
    }
    std::stable_sort(keys.begin(), keys.end(),
                     [](const Key& left, const Key& right) { return left.values() < right.values(); });
    keys.erase(std::unique(keys.begin(), keys.end(),
                           [](const Key& left, const Key& right) { return left.values() == right.values(); }),
               keys.end());
    for (Key& key : keys)
        key.name = resolvedUri(text.uri, key.uri);
    return keys;
}

/// The URI of a media playlist is written as seen from the master playlist, and so what it names is.
std::vector<Key> keysOf(const Presentation& presentation, const PresentationPlaylist& playlist) {
    const std::string uri = resolvedUri(presentation.masterText().uri, playlist.text().uri);
    const PresentationText text = {uri, playlist.text().document};
    return keysOf(text, playlist.tags().lines(tagIndexOf<tag::key>));
}

std::vector<Key> sessionKeysOf(const Presentation& presentation) {
    return keysOf(presentation.masterText(), presentation.master().lines(tagIndexOf<tag::sessionKey>));
}

/// The session keys with the URI of a key, as it is written or as what it names.
class SessionKeys {
  public:
    explicit SessionKeys(const Presentation& presentation) : keys_(sessionKeysOf(presentation)) {
        for (const Key& key : keys_) {
            for (const std::string_view uri : {key.uri, std::string_view(key.name)}) {
                byUri_.emplace(uri, &key);
                values_.emplace(uri, key.method, key.format, key.versions);
            }
        }
    }

    [[nodiscard]] const Key* find(const Key& key) const {
        const auto found = byUri_.find(key.name);
        if (found != byUri_.end()) return found->second;
        const auto written = byUri_.find(key.uri);
        return written == byUri_.end() ? nullptr : written->second;
    }

    [[nodiscard]] bool haveOneLike(const Key& key) const {
        return values_.count({key.name, key.method, key.format, key.versions}) != 0 ||
               values_.count({key.uri, key.method, key.format, key.versions}) != 0;
    }

  private:
    std::vector<Key> keys_;
    std::map<std::string_view, const Key*> byUri_;
    std::set<std::tuple<std::string_view, std::string_view, std::string_view, std::string_view>> values_;
};

/// The first attribute in which the session key differs from the key.
std::string_view differingAttribute(const Key& sessionKey, const Key& key) {
    if (sessionKey.method != key.method) return attribute::method;
    return sessionKey.format != key.format ? attribute::keyFormat : attribute::keyFormatVersions;
}

/// The value of an attribute, or the name of the tag that lacks it.
PresentationPlace attributeIn(const PresentationText& text, const VELHLSLine& line, std::string_view name) {
    return {&text, line, valueOf(line, name).value_or(line.name)};
}

void findOtherSessionKey(const Presentation& presentation, const TellPresentation& tell) {
    const SessionKeys sessionKeys(presentation);
    std::set<const Key*> told;
    for (const PresentationPlaylist& playlist : presentation.playlists()) {
        for (const Key& key : keysOf(presentation, playlist)) {
            const Key* const sessionKey = sessionKeys.find(key);
            if (sessionKey == nullptr || sessionKeys.haveOneLike(key) || !told.insert(sessionKey).second)
                continue;
            const std::string_view name = differingAttribute(*sessionKey, key);
            const bool isThere = valueOf(sessionKey->line, name).has_value();
            PresentationWords words;
            words.expected = std::string(name) + " as EXT-X-KEY with the same URI has it";
            words.related = attributeIn(playlist.text(), key.line, name);
            tell(attributeIn(presentation.masterText(), sessionKey->line, name), isThere ? "" : "none",
                 words);
        }
    }
}

/// A key that is met in a playlist, and again in another one.
struct SharedKey {
    const PresentationPlaylist* first = nullptr;
    VELHLSLine firstLine;
    bool isShared = false;
};

void findSessionKeyMissing(const Presentation& presentation, const TellPresentation& tell) {
    const SessionKeys sessionKeys(presentation);
    std::map<std::pair<std::string, std::string_view>, SharedKey> keys;
    std::size_t count = 0;
    PresentationWords words;
    PresentationPlace second;
    for (const PresentationPlaylist& playlist : presentation.playlists()) {
        for (const Key& key : keysOf(presentation, playlist)) {
            if (sessionKeys.find(key) != nullptr) continue;
            SharedKey& shared = keys[{key.name, key.format}];
            if (shared.first == nullptr) {
                shared.first = &playlist;
                shared.firstLine = key.line;
            }
            if (shared.first == &playlist || shared.isShared) continue;
            shared.isShared = true;
            if (++count > 1) continue;
            words.related = attributeIn(shared.first->text(), shared.firstLine, attribute::uri);
            second = attributeIn(playlist.text(), key.line, attribute::uri);
        }
    }
    if (count == 0) return;
    BrokenPlaces broken;
    broken.add(presentation.topOfMaster(),
               "none for " + quoted(words.related.piece) +
                   (count > 1 ? " and " + std::to_string(count - 1) + " more keys" : ""));
    broken.add(second);
    tell(broken, words);
}

/// Of each level the keys are looked at once for each playlist, so that many variants may name one.
void findKeyOfOtherLevel(const Presentation& presentation, const TellPresentation& tell) {
    struct Owner {
        std::string_view level;
        const PresentationPlaylist* playlist;
        VELHLSLine line;
    };
    std::map<std::string, Owner> owners;
    std::set<std::pair<const PresentationPlaylist*, std::string_view>> seen;
    BrokenPlaces broken;
    broken.what = "variants with HDCP-LEVEL";
    PresentationWords words;
    for (const MasterUse& use : presentation.uses()) {
        const std::string_view level = use.value("HDCP-LEVEL");
        const bool isLevel = level == fixed::none || level == "TYPE-0" || level == "TYPE-1";
        if (!use.isVariant() || use.playlist == nullptr || !isLevel) continue;
        ++broken.total;
        if (!seen.insert({use.playlist, level}).second) continue;
        for (const Key& key : keysOf(presentation, *use.playlist)) {
            const auto [owner, isNew] = owners.emplace(key.name, Owner{level, use.playlist, key.line});
            if (isNew || owner->second.level == level) continue;
            if (broken.places.empty()) {
                words.related =
                    attributeIn(owner->second.playlist->text(), owner->second.line, attribute::uri);
                words.relatedSeen = "the same key, of a variant with " + std::string(owner->second.level);
            }
            broken.add(presentation.inMaster(use.line, level));
            break;
        }
    }
    tell(broken, words);
}

// clang-format off
constexpr PresentationEntry rules[] = {
    {{{"session-key-differs-from-key", error, "EXT-X-SESSION-KEY has another METHOD, KEYFORMAT or KEYFORMATVERSIONS than EXT-X-KEY with its URI.",
       "the attributes of EXT-X-KEY with the same URI", "RFC 8216, section 4.3.4.5", false}, "MUST"}, findOtherSessionKey},
    {{{"session-key-missing", warning, "Several media playlists use one key, and no EXT-X-SESSION-KEY names it.",
       "EXT-X-SESSION-KEY for a key that several media playlists use", "RFC 8216, section 4.3.4.5", false}, "SHOULD"}, findSessionKeyMissing},
    {{{"hdcp-levels-share-key", warning, "Encrypted variants of other HDCP-LEVELs have one key.",
       "other keys for another HDCP-LEVEL", "RFC 8216, section 4.3.4.2", false}, "SHOULD"}, findKeyOfOtherLevel},
};
// clang-format on

}  // namespace

PresentationTable sharedKeyRules() {
    return {rules, std::size(rules)};
}

}  // namespace velhls
