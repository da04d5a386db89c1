#include <deque>
#include <map>
#include <vector>

#include "velhls/VELHLSCheck.h"

#include "fuzz/Playlists.h"

namespace {

using Resource = VELHLSPresentation::Resource;

/// What stands between lines of "--": first the master playlist, then what its URIs name, in their order.
std::deque<VELHLSDocument> documentsOf(const std::string& text) {
    constexpr std::string_view separator = "\n--\n";
    std::deque<VELHLSDocument> documents;
    std::string_view rest = text;
    for (std::size_t end = rest.find(separator); end != std::string_view::npos; end = rest.find(separator)) {
        documents.emplace_back(std::string(rest.substr(0, end + 1)));
        rest.remove_prefix(end + separator.size());
    }
    documents.emplace_back(std::string(rest));
    return documents;
}

/// No URI is named as the master playlist is. For what has no text every other one is not there, and the others were not read.
std::vector<Resource> resourcesOf(const std::deque<VELHLSDocument>& documents) {
    std::vector<Resource> resources = {{"\n", &documents.front(), {}}};
    std::size_t line = 0;
    for (const VELHLSPresentation::Reference& reference : VELHLSPresentation::references(documents.front())) {
        fuzz::expect(reference.line >= line, "references come in the order of their lines");
        line = reference.line;
        const std::size_t place = resources.size();
        const bool isGiven = place < documents.size();
        resources.push_back({std::string(reference.uri), isGiven ? &documents[place] : nullptr,
                             place % 2 == 0 ? "it was not read" : ""});
    }
    return resources;
}

/// A place stands in a line of the text that it names.
void expectPlace(const std::vector<Resource>& resources, const std::string& uri, std::size_t line,
                 std::size_t column, std::size_t length) {
    const VELHLSDocument* document = nullptr;
    for (const Resource& resource : resources) {
        if (resource.uri == uri && document == nullptr) document = resource.document;
    }
    fuzz::expect(document != nullptr, "findings stand in texts that were given", uri);
    fuzz::expect(line >= 1 && line <= document->lineCount(), "findings stand in their texts", uri);
    fuzz::expect(column - 1 + length <= document->line(line).text.size(), "findings stand in their lines",
                 uri);
}

}  // namespace

VELHLS_FUZZ_TARGET(presentation) {
    using Profile = VELHLSStandard::Profile;
    constexpr fuzz::Cost cost = {128, std::size_t{1} << 20};
    const std::deque<VELHLSDocument> documents = documentsOf(text);
    const std::vector<Resource> resources = resourcesOf(documents);
    for (const Profile profile : {Profile::rfc8216, Profile::apple}) {
        const auto findings = fuzz::bounded(text.size(), cost, [&] {
            return VELHLSPresentation::check(resources.front(), resources, {profile});
        });
        std::map<std::string, std::size_t> counts;
        for (const VELHLSFinding& finding : findings) {
            expectPlace(resources, finding.uri, finding.line, finding.column, finding.length);
            fuzz::expect(++counts[finding.ruleId] <= 100, "findings of one rule are bounded", finding.ruleId);
            for (const VELHLSRelatedPlace& place : finding.related)
                expectPlace(resources, place.uri.empty() ? finding.uri : place.uri, place.line, place.column,
                            place.length);
        }
    }
}
