#include "tool/report/PageReport.h"

#include <algorithm>
#include <map>
#include <utility>

#include "tool/Printable.h"
#include "tool/report/Limits.h"

namespace tool::report {
namespace {

[[noreturn]] void refuse(const CheckedFile& file) {
    throw Failure(rejected, file.name + ":" + std::to_string(file.rejected->line) + ": error: " +
                                printable(file.rejected->message) + " [" + file.rejected->ruleId + "]");
}

FollowedLinks linksOf(const PresentationFiles* presentation) {
    FollowedLinks links;
    if (presentation == nullptr) {
        links.whyNoOther = "not followed";
        return links;
    }
    links.whyNoOther = "not a local file";
    links.measured = presentation->measuredRates();
    const auto paths = presentation->paths();
    for (const VELHLSPresentation::Resource& resource : presentation->resources()) {
        Link link;
        if (resource.document != nullptr) {
            link.path = paths.at(resource.document);
        } else {
            link.whyNot = resource.whyNotRead.empty() ? "not there" : resource.whyNotRead;
        }
        links.byUri.emplace(resource.uri, std::move(link));
    }
    return links;
}

/// What the master playlist says of each playlist, by path.
struct Role {
    std::string text;
    bool isVariant = false;
};

std::map<std::string, Role> rolesIn(const Ladder& ladder) {
    std::map<std::string, Role> roles;
    for (const Rung& rung : ladder.rungs)
        roles.emplace(rung.link.path,
                      Role{(rung.isIFrames ? "I-frames, " : "variant, ") + labelOf(rung), !rung.isIFrames});
    for (const Rendition& rendition : ladder.renditions) {
        if (rendition.link)
            roles.emplace(rendition.link->path, Role{rendition.type + ", " + rendition.name.value_or("")});
    }
    return roles;
}

}  // namespace

void PageReport::addPresentation(const CheckedFile& master, const VELHLSDocument& document) {
    Part part;
    part.ladder = readLadder(master.path, document, linksOf(master.presentation));
    const std::map<std::string, Role> roles = rolesIn(*part.ladder);
    if (master.presentation != nullptr) {
        const auto count = master.presentation->files().size();
        for (const PresentationFile& file : master.presentation->files()) {
            if (file.document.kind() != VELHLSDocument::Media) continue;
            Timeline& timeline = part.timelines.emplace_back(readTimeline(file.path, file.document, count));
            const auto role = roles.find(file.path);
            if (role == roles.end()) continue;
            timeline.role = role->second.text;
            timeline.isVariant = role->second.isVariant;
        }
    }
    page_.parts.push_back(std::move(part));
    timeline_ = 0;
}

/// A playlist that came with a master playlist was read with that, and comes in the order of those.
const std::vector<Timeline>& PageReport::goToTimelineOf(const CheckedFile& file,
                                                        const VELHLSDocument& document) {
    if (file.presentation == nullptr) {
        if (!alone_) {
            alone_ = page_.parts.size();
            page_.parts.emplace_back();
        }
        std::vector<Timeline>& timelines = page_.parts[*alone_].timelines;
        timeline_ = timelines.size();
        timelines.push_back(readTimeline(file.path, document, 1));
        return timelines;
    }
    const std::vector<Timeline>& timelines = page_.parts.back().timelines;
    while (timeline_ < timelines.size() && timelines[timeline_].path != file.path)
        ++timeline_;
    return timelines;
}

/// The lines that the tables link to: of events that are listed with those of another playlist none.
std::vector<std::size_t> PageReport::linesOfEvents(const CheckedFile& file, const VELHLSDocument& document) {
    const std::vector<Timeline>& timelines = goToTimelineOf(file, document);
    std::vector<std::size_t> lines;
    if (timeline_ >= timelines.size() || firstWithEventsOf(timelines, timeline_) != timeline_) return lines;
    for (const Event& event : timelines[timeline_].events)
        lines.push_back(event.line);
    return lines;
}

void PageReport::add(const CheckedFile& file) {
    if (!file.failure.empty()) return;
    const bool wasNamed = file.presentation == nullptr || file.followed;
    if (file.kind == PlaylistKind::Detect && wasNamed) refuse(file);
    if (paths_.count(file.path) != 0) return;
    const VELHLSDocument document(file.text);
    std::vector<std::size_t> linked;
    if (file.kind == PlaylistKind::Master && wasNamed) {
        addPresentation(file, document);
        for (const Rung& rung : page_.parts.back().ladder->rungs)
            linked.push_back(rung.line);
        for (const Rendition& rendition : page_.parts.back().ladder->renditions)
            linked.push_back(rendition.line);
    } else if (file.presentation == nullptr || document.kind() == VELHLSDocument::Media) {
        linked = linesOfEvents(file, document);
    }
    linked.resize(std::min(linked.size(), mostRows));
    addSource(file, document, linked);
}

void PageReport::addSource(const CheckedFile& file, const VELHLSDocument& document,
                           const std::vector<std::size_t>& linked) {
    if (!paths_.insert(file.path).second) return;
    Source source = readSource(file.path, document, file.findings, linked);
    source.kind = file.kind;
    source.counts = file.counts;
    source.rejected = file.rejected;
    page_.sources.push_back(std::move(source));
}

/// Without findings a version is a row alone.
void PageReport::addVersion(const CheckedFile& file, const VELHLSDocument& document,
                            const VELHLSComparison* comparison) {
    page_.versions.push_back(readVersionRow(file.path, document, comparison));
    if (!file.findings.empty()) addSource(file, document, {});
    if (page_.versions.size() <= mostVersions) return;
    const std::string& path = page_.versions.front().path;
    if (!page_.sources.empty() && page_.sources.front().path == path)
        page_.sources.erase(page_.sources.begin());
    page_.versions.erase(page_.versions.begin());
    ++page_.versionsLeftOut;
}

}  // namespace tool::report
