// Signs every URI of a playlist that a CDN delivers, in lines and in attributes, and touches nothing else: not another byte,
// and not the URIs of keys that are fetched otherwise (skd:, data:).
//
//     example_document_sign_uris secret examples/document/live.m3u8
//
// By the models the date range and the bit rate are lost, the map and a date come before every segment, and each EXTINF and
// date is written anew.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "velhls/VELHLS.h"
#include "velhls/VELHLSCheck.h"

#include "examples/BesideTheModels.h"
#include "examples/RunOnFiles.h"

namespace {

/// Stands for the keyed hash that your CDN asks for: it keeps no secret.
std::string tokenOf(const std::string& uri, const std::string& secret) {
    std::uint32_t hash = 2166136261U;
    for (const char character : secret + uri)
        hash = (hash ^ static_cast<unsigned char>(character)) * 16777619U;
    return "token=" + std::to_string(hash);
}

/// Whether it is relative, or of HTTP.
bool isFetchedByHttp(const std::string& uri) {
    const std::size_t end = uri.find_first_of(":/?#");
    const bool hasScheme = end != std::string::npos && uri[end] == ':';
    return !hasScheme || uri.compare(0, end, "http") == 0 || uri.compare(0, end, "https") == 0;
}

/// The token ends the query, and so stands before what "#" begins.
std::string signedUri(const std::string& uri, const std::string& secret) {
    if (!isFetchedByHttp(uri)) return uri;
    const std::size_t end = std::min(uri.find('#'), uri.size());
    const std::string target = uri.substr(0, end);
    const char* const separator = target.find('?') == std::string::npos ? "?" : "&";
    return target + separator + tokenOf(uri, secret) + uri.substr(end);
}

std::string byDocument(const std::string& text, const std::string& secret) {
    const VELHLSDocument document(text);
    std::vector<VELHLSEdit> edits;
    for (const VELHLSUri& uri : document.uris())
        edits.push_back(document.replaceUri(uri, signedUri(std::string(uri.text), secret)));
    // Edits of different URIs never overlap.
    return document.apply(edits).text;
}

/// Maps are shared by segments, so each is signed when it is met first; keys would have to be treated likewise.
std::string byModels(const std::string& text, const std::string& secret) {
    const auto stream = VELHLSMediaStream::parseMediaStream(text);
    if (stream == nullptr) return "rejected\n";
    std::set<VELHLSMISMap*> maps;
    for (const auto& segment : stream->segments) {
        segment->uri = signedUri(segment->uri, secret);
        VELHLSMISMap* const map = segment->misMap.get();
        if (map != nullptr && maps.insert(map).second) map->uri = signedUri(map->uri, secret);
    }
    std::ostringstream output;
    return stream->render(output) == 0 ? output.str() : "not written\n";
}

}  // namespace

int main(int argumentCount, char** arguments) {
    return example::runOn(argumentCount, arguments, 3, "example_document_sign_uris SECRET MEDIA", [&] {
        const std::string text = example::contentOf(arguments[2]);
        example::printBeside(text, byDocument(text, arguments[1]), byModels(text, arguments[1]));
        return 0;
    });
}
