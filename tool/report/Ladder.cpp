#include "tool/report/Ladder.h"

#include <algorithm>
#include <set>
#include <tuple>
#include <utility>

#include "tool/Describe.h"
#include "tool/report/Limits.h"
#include "tool/report/Words.h"

namespace tool::report {
namespace {

constexpr std::string_view groupTypes[] = {"AUDIO", "VIDEO", "SUBTITLES", "CLOSED-CAPTIONS"};

std::optional<std::string> valueOf(const VELHLSLine& line, std::string_view name) {
    const auto attribute = line.attributes().find(name);
    return attribute ? std::optional(cut(attribute->value, mostTextBytes)) : std::nullopt;
}

std::optional<double> numberIn(const VELHLSLine& line, std::string_view name) {
    const auto attribute = line.attributes().find(name);
    const auto number = attribute ? VELHLSSyntax::readDecimalInteger(attribute->value) : std::nullopt;
    return number && *number > 0 ? std::optional(static_cast<double>(*number)) : std::nullopt;
}

/// "avc1 + mp4a" of "mp4a.40.2,avc1.64001f": in the order of their letters.
std::string familyOf(const std::optional<std::string>& codecs) {
    if (!codecs) return "codecs not told";
    std::set<std::string> names;
    for (std::size_t start = 0; start <= codecs->size();) {
        const std::size_t end = std::min(codecs->find(',', start), codecs->size());
        std::string name = codecs->substr(start, end - start);
        name.erase(0, std::min(name.find_first_not_of(' '), name.size()));
        names.insert(name.substr(0, name.find('.')));
        start = end + 1;
    }
    std::string family;
    for (const std::string& name : names)
        family += (family.empty() ? "" : " + ") + name;
    return family;
}

class LadderReader {
  public:
    LadderReader(Ladder& ladder, const VELHLSDocument& document, const FollowedLinks& links)
        : ladder_(ladder), document_(document), links_(links) {}

    void read() {
        readVariants();
        sortRungs();
        readRenditions();
        readGroups();
    }

  private:
    [[nodiscard]] Link linkOf(std::string_view uri) const {
        const auto found = links_.byUri.find(uri);
        Link link = found == links_.byUri.end() ? Link{{}, {}, links_.whyNoOther} : found->second;
        link.uri = cut(uri, mostTextBytes);
        return link;
    }

    void readVariants() {
        const VELHLSStructure structure(document_);
        for (const VELHLSStructure::Variant& variant : structure.variants()) {
            const std::string_view uri =
                variant.uriLine == 0 ? std::string_view() : document_.line(variant.uriLine).value;
            addRung(document_.line(variant.tagLine), false, uri);
        }
        for (const VELHLSLine& line : document_.linesNamed("EXT-X-I-FRAME-STREAM-INF")) {
            const auto uri = line.attributes().find("URI");
            addRung(line, true, uri ? uri->value : std::string_view());
        }
    }

    void addRung(const VELHLSLine& line, bool isIFrames, std::string_view uri) {
        Rung rung;
        rung.line = line.number;
        rung.isIFrames = isIFrames;
        rung.peak = numberIn(line, "BANDWIDTH");
        rung.average = numberIn(line, "AVERAGE-BANDWIDTH");
        rung.measured = measuredAt(line.number);
        rung.resolution = valueOf(line, "RESOLUTION");
        rung.frameRate = valueOf(line, "FRAME-RATE");
        rung.codecs = valueOf(line, "CODECS");
        rung.videoRange = valueOf(line, "VIDEO-RANGE");
        for (const std::string_view type : groupTypes) {
            if (const auto group = valueOf(line, type)) rung.groups.emplace(type, *group);
        }
        rung.link = linkOf(uri);
        if (uri.empty()) rung.link.whyNot = "no URI";
        if (rung.resolution) {
            const auto size = VELHLSSyntax::readDecimalResolution(*rung.resolution);
            if (size) rung.height = static_cast<double>(size->height);
        }
        rung.family = isIFrames ? "I-frames" : familyOf(rung.codecs);
        ladder_.rungs.push_back(std::move(rung));
    }

    [[nodiscard]] std::optional<VELHLSPresentation::MeasuredRates> measuredAt(std::size_t line) const {
        const auto found = std::lower_bound(links_.measured.begin(), links_.measured.end(), line,
                                            [](const VELHLSPresentation::MeasuredRates& each,
                                               std::size_t number) { return each.line < number; });
        return found != links_.measured.end() && found->line == line ? std::optional(*found) : std::nullopt;
    }

    void sortRungs() {
        std::map<std::string_view, std::size_t> order;
        for (const Rung& rung : ladder_.rungs) {
            if (!rung.isIFrames) order.emplace(rung.family, order.size());
        }
        const auto key = [&order](const Rung& rung) {
            const std::size_t family = rung.isIFrames ? order.size() : order.at(rung.family);
            return std::tuple(rung.isIFrames, family, -rung.peak.value_or(0.0), -rung.height);
        };
        // The keys of the map look into the rungs, which move.
        std::vector<std::pair<decltype(key(Rung())), std::size_t>> places;
        places.reserve(ladder_.rungs.size());
        for (std::size_t place = 0; place < ladder_.rungs.size(); ++place)
            places.emplace_back(key(ladder_.rungs[place]), place);
        std::sort(places.begin(), places.end());
        std::vector<Rung> sorted;
        sorted.reserve(places.size());
        for (const auto& [ignored, place] : places)
            sorted.push_back(std::move(ladder_.rungs[place]));
        ladder_.rungs = std::move(sorted);
    }

    void readRenditions() {
        for (const VELHLSLine& line : document_.linesNamed("EXT-X-MEDIA")) {
            Rendition rendition;
            rendition.line = line.number;
            rendition.type = valueOf(line, "TYPE").value_or("");
            rendition.group = valueOf(line, "GROUP-ID").value_or("");
            rendition.name = valueOf(line, "NAME");
            rendition.language = valueOf(line, "LANGUAGE");
            rendition.channels = valueOf(line, "CHANNELS");
            std::vector<std::string> flags;
            for (const char* const flag : {"DEFAULT", "AUTOSELECT", "FORCED"}) {
                if (valueOf(line, flag) == "YES") flags.emplace_back(flag);
            }
            rendition.flags = joined(flags);
            rendition.characteristics = valueOf(line, "CHARACTERISTICS").value_or("");
            const auto uri = line.attributes().find("URI");
            if (uri) rendition.link = linkOf(uri->value);
            ladder_.renditions.push_back(std::move(rendition));
        }
    }

    /// First those that have members, in the order of their lines.
    void readGroups() {
        std::map<std::pair<std::string, std::string>, std::size_t> places;
        const auto groupOf = [&](const std::string& type, const std::string& id) -> Group& {
            const auto [place, isNew] = places.emplace(std::pair(type, id), ladder_.groups.size());
            if (isNew) ladder_.groups.push_back({type, id, 0, 0, {}});
            return ladder_.groups[place->second];
        };
        for (const Rendition& rendition : ladder_.renditions) {
            Group& group = groupOf(rendition.type, rendition.group);
            ++group.members;
            const bool isNew = rendition.language && group.languages.size() < mostRows &&
                               std::find(group.languages.begin(), group.languages.end(),
                                         *rendition.language) == group.languages.end();
            if (isNew) group.languages.push_back(*rendition.language);
        }
        for (const Rung& rung : ladder_.rungs) {
            for (const auto& [type, id] : rung.groups) {
                if (id != "NONE") ++groupOf(type, id).users;
            }
        }
    }

    Ladder& ladder_;
    const VELHLSDocument& document_;
    const FollowedLinks& links_;
};

}  // namespace

Ladder readLadder(const std::string& path, const VELHLSDocument& document, const FollowedLinks& links) {
    Ladder ladder;
    ladder.path = path;
    LadderReader(ladder, document, links).read();
    return ladder;
}

std::string labelOf(const Rung& rung) {
    if (!rung.resolution) return rung.codecs ? cut(*rung.codecs, 24) : "no RESOLUTION";
    std::string label = cut(*rung.resolution, 16);
    if (rung.frameRate) label += ", " + cut(*rung.frameRate, 8) + " fps";
    if (rung.videoRange && *rung.videoRange != "SDR") label += ", " + cut(*rung.videoRange, 5);
    return label;
}

std::optional<double> ratioToNext(const std::vector<Rung>& rungs, std::size_t place) {
    if (place + 1 >= rungs.size() || rungs[place].family != rungs[place + 1].family) return std::nullopt;
    if (!rungs[place].peak || !rungs[place + 1].peak) return std::nullopt;
    return *rungs[place].peak / *rungs[place + 1].peak;
}

}  // namespace tool::report
