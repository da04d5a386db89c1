#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "velhls/common/Names.h"
#include "velhls/comparison/Compare.h"
#include "velhls/comparison/KeyedMatch.h"
#include "velhls/comparison/Values.h"
#include "velhls/standard/CheckedPlaylist.h"

namespace velhls {
namespace {

/// A variant, a rendition, or a line of session data: what the list of such things has.
struct Item {
    VELHLSLine tag;
    /// Of a variant; without a number where it has none.
    VELHLSLine uri;

    [[nodiscard]] std::string valueOf(std::string_view name) const {
        if (name == attribute::uri && uri.number != 0) return std::string(uri.value);
        return std::string(velhls::valueOf(tag, name).value_or(""));
    }
};

using Items = std::vector<Item>;
using Names = std::vector<std::string_view>;

Items itemsNamed(const VELHLSDocument& document, std::string_view name) {
    Items items;
    for (const VELHLSLine& line : document.linesNamed(name))
        items.push_back({line, {}});
    return items;
}

Items variantsOf(const VELHLSStructure& structure) {
    Items items;
    for (const VELHLSStructure::Variant& variant : structure.variants()) {
        items.push_back({structure.document().line(variant.tagLine), {}});
        if (variant.uriLine != 0) items.back().uri = structure.document().line(variant.uriLine);
    }
    return items;
}

/// Of the items with these places the values of the attributes, as one text.
std::vector<std::string> keysOf(const Items& items, const std::vector<std::size_t>& places,
                                const Names& names) {
    std::vector<std::string> keys;
    for (const std::size_t place : places) {
        std::string key;
        for (const std::string_view name : names)
            key.append(items[place].valueOf(name)).push_back('\n');
        keys.push_back(std::move(key));
    }
    return keys;
}

std::vector<std::size_t> allPlaces(const Items& items) {
    std::vector<std::size_t> places(items.size());
    for (std::size_t place = 0; place < places.size(); ++place)
        places[place] = place;
    return places;
}

/// Items are the same by the first list of attributes under which they agree, and under no other.
std::vector<KeyedPair> matchItems(const Items& before, const Items& now, const std::vector<Names>& lists) {
    std::vector<KeyedPair> pairs;
    std::vector<std::size_t> old = allPlaces(before);
    std::vector<std::size_t> fresh = allPlaces(now);
    for (const Names& names : lists) {
        std::vector<std::size_t> oldLeft;
        std::vector<std::size_t> newLeft;
        for (const KeyedPair& pair : matchByKey(keysOf(before, old, names), keysOf(now, fresh, names))) {
            if (pair.now == KeyedPair::none) {
                oldLeft.push_back(old[pair.before]);
            } else if (pair.before == KeyedPair::none) {
                newLeft.push_back(fresh[pair.now]);
            } else {
                pairs.push_back({old[pair.before], fresh[pair.now]});
            }
        }
        old = std::move(oldLeft);
        fresh = std::move(newLeft);
    }
    for (const std::size_t place : fresh)
        pairs.push_back({KeyedPair::none, place});
    std::sort(pairs.begin(), pairs.end(),
              [](const KeyedPair& left, const KeyedPair& right) { return left.now < right.now; });
    for (const std::size_t place : old)
        pairs.push_back({place, KeyedPair::none});
    return pairs;
}

/// One kind of things that a master playlist lists.
struct Listing {
    std::string_view word;
    /// What its path says.
    Names path;
    /// See matchItems.
    std::vector<Names> keys;
};

class MasterComparer {
  public:
    explicit MasterComparer(Differences& differences) : differences_(differences) {}

    /// The pairs of what is in both, in the order of the new list.
    std::vector<KeyedPair> compare(const Listing& listing, const Items& before, const Items& now) {
        std::vector<KeyedPair> common;
        for (const KeyedPair& pair : matchItems(before, now, listing.keys)) {
            if (pair.before == KeyedPair::none) {
                addAlone(listing, now[pair.now], true);
            } else if (pair.now == KeyedPair::none) {
                addAlone(listing, before[pair.before], false);
            } else {
                compareItems(listing, before[pair.before], now[pair.now]);
                common.push_back(pair);
            }
        }
        return common;
    }

    /// The first variant is the one that a player begins with, so that their order means something.
    void compareOrder(const std::vector<KeyedPair>& common, const Items& before, const Items& now) {
        std::vector<std::size_t> places;
        places.reserve(common.size());
        for (const KeyedPair& pair : common)
            places.push_back(pair.before);
        std::sort(places.begin(), places.end());
        for (std::size_t place = 0; place < places.size(); ++place) {
            if (places[place] == common[place].before) continue;
            const Item& old = before[places[place]];
            const Item& fresh = now[common[place].now];
            differences_.add(Aspect::masterPart, "variants", "order", spotOf(old.tag, old.tag.name),
                             spotOf(fresh.tag, fresh.tag.name), old.valueOf(attribute::uri),
                             fresh.valueOf(attribute::uri));
            return;
        }
    }

  private:
    static std::string pathOf(const Listing& listing, const Item& item) {
        std::string path(listing.word);
        for (const std::string_view name : listing.path) {
            const std::string value = item.valueOf(name);
            if (!value.empty()) path.append(" ").append(shortened(value));
        }
        return path;
    }

    void addAlone(const Listing& listing, const Item& item, bool isNow) {
        const Spot spot = spotOf(item.tag, item.tag.value);
        const std::string text(item.tag.value);
        differences_.add(Aspect::masterPart, pathOf(listing, item), {}, isNow ? Spot() : spot,
                         isNow ? spot : Spot(), isNow ? std::string() : text, isNow ? text : std::string());
    }

    void compareItems(const Listing& listing, const Item& before, const Item& now) {
        const std::string path = pathOf(listing, now);
        if (before.uri.value != now.uri.value) {
            differences_.add(Aspect::masterPart, path, "uri", uriSpotOf(before), uriSpotOf(now));
        }
        compareAttributes(before.tag, now.tag, Aspect::masterPart, path, differences_);
    }

    static Spot uriSpotOf(const Item& item) {
        if (item.uri.number == 0) return {item.tag.number, {}};
        return spotOf(item.uri, item.uri.value);
    }

    Differences& differences_;
};

}  // namespace

void compareMasters(const VELHLSStructure& before, const VELHLSStructure& now, Differences& differences) {
    const Names groups = {attribute::audio, attribute::video, attribute::subtitles,
                          attribute::closedCaptions};
    const auto with = [&groups](Names names, bool withGroups) {
        if (withGroups) names.insert(names.end(), groups.begin(), groups.end());
        return names;
    };
    const std::vector<Names> variantKeys = {
        with({attribute::uri, attribute::bandwidth, attribute::resolution, attribute::codecs}, true),
        {attribute::uri, attribute::bandwidth, attribute::resolution, attribute::codecs},
        with({attribute::uri}, true),
        {attribute::uri, attribute::bandwidth},
        {attribute::uri},
        with({attribute::bandwidth, attribute::resolution, attribute::codecs}, true)};
    const Listing variants = {"variant", {attribute::uri}, variantKeys};
    const Listing iFrames = {"I-frame variant", {attribute::uri}, variantKeys};
    const Listing renditions = {"rendition",
                                {attribute::type, attribute::groupId, attribute::name},
                                {{attribute::type, attribute::groupId, attribute::name}}};
    const Listing data = {"session data",
                          {attribute::dataId, attribute::language},
                          {{attribute::dataId, attribute::language}, {attribute::dataId}}};
    const Listing keys = {
        "session key", {attribute::uri}, {{attribute::uri, attribute::keyFormat}, {attribute::uri}}};

    MasterComparer comparer(differences);
    const auto compareNamed = [&](const Listing& listing, std::string_view name) {
        return comparer.compare(listing, itemsNamed(before.document(), name),
                                itemsNamed(now.document(), name));
    };
    const Items old = variantsOf(before);
    const Items fresh = variantsOf(now);
    comparer.compareOrder(comparer.compare(variants, old, fresh), old, fresh);
    compareNamed(iFrames, tag::iFrameStreamInf);
    compareNamed(renditions, tag::media);
    compareNamed(data, tag::sessionData);
    compareNamed(keys, tag::sessionKey);
}

}  // namespace velhls
