// Makes the relative URIs of a playlist absolute, as whoever serves it from another place has to.
//
//     example_absolute_uris https://example.com/show/master.m3u8 examples/presentation/master.m3u8

#include <iostream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "velhls/VELHLS.h"
#include "velhls/VELHLSCheck.h"

#include "examples/RunOnFiles.h"

namespace {

/// "https://example.com" of "https://example.com/show/master.m3u8".
std::string authorityOf(const std::string& uri) {
    const std::size_t host = uri.find("//");
    return uri.substr(0, host == std::string::npos ? 0 : uri.find('/', host + 2));
}

/// Takes "." and ".." out of a path (RFC 3986, section 5.2.4).
std::string withoutDots(const std::string& path) {
    std::vector<std::string> pieces;
    std::istringstream rest(path);
    std::string piece;
    std::getline(rest, piece, '/');
    bool endsInDots = false;
    while (std::getline(rest, piece, '/')) {
        endsInDots = piece == "." || piece == "..";
        if (piece == ".." && !pieces.empty()) pieces.pop_back();
        if (!endsInDots) pieces.push_back(piece);
    }
    std::string result;
    for (const std::string& each : pieces)
        result += "/" + each;
    return endsInDots || path.back() == '/' ? result + "/" : result;
}

/// Resolves URIs against that of the playlist they stand in (RFC 3986, section 5.2, without empty references).
class Base {
  public:
    explicit Base(std::string uri) : uri_(std::move(uri)), authority_(authorityOf(uri_)) {}

    void makeAbsolute(std::string& uri) const {
        if (uri.empty() || hasScheme(uri)) return;
        if (uri.compare(0, 2, "//") == 0) {
            uri = uri_.substr(0, uri_.find("//")) + uri;
            return;
        }
        const std::size_t query = uri.find_first_of("?#");
        const std::string path = uri.substr(0, query);
        const std::string rest = query == std::string::npos ? "" : uri.substr(query);
        const std::string basePath =
            uri_.substr(authority_.size(), uri_.find_first_of("?#") - authority_.size());
        const std::string folder = basePath.substr(0, basePath.rfind('/') + 1);
        uri = authority_ + withoutDots(path[0] == '/' ? path : (folder.empty() ? "/" : folder) + path) + rest;
    }

  private:
    static bool hasScheme(const std::string& uri) {
        const std::size_t colon = uri.find(':');
        return colon != std::string::npos && colon < uri.find_first_of("/?#");
    }

    std::string uri_;
    std::string authority_;
};

int rewrite(VELHLSParsedManifest& manifest, const Base& base) {
    // Every variant stands in `variants`, those of `streamVariants` too: they are the same objects.
    for (const auto& [bandwidth, variant] : manifest.variants)
        base.makeAbsolute(variant->uri);
    for (const auto& [type, groups] : manifest.renditions) {
        for (const auto& [groupId, group] : groups) {
            for (const auto& [name, rendition] : group)
                base.makeAbsolute(rendition->uri);
        }
    }
    for (const auto& data : manifest.sessionData)
        base.makeAbsolute(data->uri);
    return manifest.render(std::cout);
}

int rewrite(VELHLSMediaStream& stream, const Base& base) {
    std::set<std::string*> seen;
    const auto makeAbsoluteOnce = [&](std::string& uri) {
        if (seen.insert(&uri).second) base.makeAbsolute(uri);
    };
    for (const auto& segment : stream.segments) {
        makeAbsoluteOnce(segment->uri);
        // Segments share the objects of their key and map.
        if (segment->protectionData != nullptr) makeAbsoluteOnce(segment->protectionData->uri);
        if (segment->misMap != nullptr) makeAbsoluteOnce(segment->misMap->uri);
    }
    return stream.render(std::cout);
}

int run(const Base& base, const std::string& path) {
    const std::string text = example::contentOf(path);
    const auto detected = VELHLSDiagnostics::detectKind(text);
    if (!detected) {
        std::cerr << path << ": no playlist\n";
        return 1;
    }
    VELHLSReason reason;
    if (detected->kind == VELHLSDiagnostics::Master) {
        const auto manifest = VELHLSParsedManifest::parseManifest(text, &reason);
        if (manifest != nullptr) return rewrite(*manifest, base) == 0 ? 0 : 1;
    } else {
        const auto stream = VELHLSMediaStream::parseMediaStream(text, &reason);
        if (stream != nullptr) return rewrite(*stream, base) == 0 ? 0 : 1;
    }
    throw example::rejection(path, reason);
}

}  // namespace

int main(int argumentCount, char** arguments) {
    return example::runOn(argumentCount, arguments, 3, "example_absolute_uris URI_OF_THE_PLAYLIST PLAYLIST",
                          [&] { return run(Base(arguments[1]), arguments[2]); });
}
