#include "tool/VariantFilter.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace tool {
namespace {

/// TYPE and GROUP-ID.
using Group = std::pair<std::string, std::string>;

constexpr std::string_view groupAttributes[] = {"AUDIO", "VIDEO", "SUBTITLES", "CLOSED-CAPTIONS"};

bool begins(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

std::string valueOf(const VELHLSLine& line, std::string_view name) {
    const auto attribute = line.attributes().find(name);
    return attribute ? std::string(attribute->value) : std::string();
}

/// True when an entry of the list begins so.
bool holdsCodec(std::string_view codecs, const std::string& prefix) {
    while (!codecs.empty()) {
        codecs.remove_prefix(std::min(codecs.find_first_not_of(" ,"), codecs.size()));
        if (!codecs.empty() && begins(codecs, prefix)) return true;
        codecs.remove_prefix(std::min(codecs.find(','), codecs.size()));
    }
    return false;
}

bool isOutside(const VELHLSLine& variant, const VariantFilter& filter) {
    if (!filter.leastBandwidth && !filter.mostBandwidth) return false;
    const auto bandwidth = VELHLSSyntax::readDecimalInteger(valueOf(variant, "BANDWIDTH"));
    if (!bandwidth) throw UnjudgedVariant{variant.number, "expected a BANDWIDTH to judge the variant by"};
    return *bandwidth < filter.leastBandwidth.value_or(0) ||
           *bandwidth > filter.mostBandwidth.value_or(*bandwidth);
}

bool isDropped(const VELHLSLine& variant, const VariantFilter& filter) {
    const std::string codecs = valueOf(variant, "CODECS");
    const bool hasDroppedCodec =
        std::any_of(filter.droppedCodecs.begin(), filter.droppedCodecs.end(),
                    [&codecs](const std::string& prefix) { return holdsCodec(codecs, prefix); });
    return isOutside(variant, filter) || hasDroppedCodec;
}

void addGroups(const VELHLSLine& variant, std::set<Group>& groups) {
    for (const std::string_view type : groupAttributes) {
        const auto attribute = variant.attributes().find(type);
        if (attribute && attribute->quoted) groups.emplace(type, attribute->value);
    }
}

/// Which groups variants named, and which the remaining ones name.
struct Groups {
    std::set<Group> before;
    std::set<Group> after;

    void add(const VELHLSLine& variant, bool isDropped) {
        addGroups(variant, before);
        if (!isDropped) addGroups(variant, after);
    }
};

}  // namespace

std::set<std::size_t> linesToDrop(const VELHLSStructure& structure, const VariantFilter& filter) {
    const VELHLSDocument& document = structure.document();
    std::set<std::size_t> lines;
    Groups groups;
    const std::vector<VELHLSLine> information = document.linesNamed("ZOR-STREAM-INF");
    for (std::size_t place = 0; place < structure.variants().size(); ++place) {
        const VELHLSStructure::Variant& variant = structure.variants()[place];
        const VELHLSLine tag = document.line(variant.tagLine);
        const bool goes = isDropped(tag, filter);
        groups.add(tag, goes);
        if (!goes) continue;
        for (const std::size_t line : VELHLSStructure::linesOf(variant))
            lines.insert(line);
        if (place < information.size()) lines.insert(information[place].number);
    }
    for (const VELHLSLine& tag : document.linesNamed("EXT-X-I-FRAME-STREAM-INF")) {
        const bool goes = isDropped(tag, filter);
        groups.add(tag, goes);
        if (goes) lines.insert(tag.number);
    }
    for (const VELHLSLine& rendition : document.linesNamed("EXT-X-MEDIA")) {
        const Group group(valueOf(rendition, "TYPE"), valueOf(rendition, "GROUP-ID"));
        if (groups.before.count(group) != 0 && groups.after.count(group) == 0) lines.insert(rendition.number);
    }
    return lines;
}

}  // namespace tool
