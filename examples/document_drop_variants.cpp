// Drops the variants above a bandwidth. The command does the same: velhls edit --max-bandwidth 2000000
//
//     example_document_drop_variants 2000000 examples/document/master.m3u8
//
// By the models the variants that stay lose FRAME-RATE and VIDEO-RANGE, the renditions their CHANNELS, and the playlist its
// comment and its session key; a start and CLOSED-CAPTIONS=NONE are added.

#include <algorithm>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "velhls/VELHLS.h"
#include "velhls/VELHLSCheck.h"

#include "examples/BesideTheModels.h"
#include "examples/RunOnFiles.h"

namespace {

std::string byDocument(const std::string& text, std::uint64_t highest) {
    const VELHLSDocument document(text);
    const VELHLSStructure structure(document);
    std::vector<VELHLSEdit> edits;
    for (const VELHLSStructure::Variant& variant : structure.variants()) {
        const auto bandwidth = document.line(variant.tagLine).attributes().find("BANDWIDTH");
        const auto bits = bandwidth ? VELHLSSyntax::readDecimalInteger(bandwidth->value) : std::nullopt;
        if (!bits || *bits <= highest) continue;
        for (const VELHLSEdit& edit : structure.remove(variant))
            edits.push_back(edit);
    }
    return document.apply(edits).text;
}

std::string byModels(const std::string& text, std::uint64_t highest) {
    const auto manifest = VELHLSParsedManifest::parseManifest(text);
    if (manifest == nullptr) return "rejected\n";
    manifest->variants.erase(manifest->variants.upper_bound(highest), manifest->variants.end());
    auto& streams = manifest->streamVariants;
    const auto isAbove = [highest](const auto& variant) { return variant->bandwidth > highest; };
    streams.erase(std::remove_if(streams.begin(), streams.end(), isAbove), streams.end());
    std::ostringstream output;
    return manifest->render(output) == 0 ? output.str() : "not written\n";
}

}  // namespace

int main(int argumentCount, char** arguments) {
    return example::runOn(argumentCount, arguments, 3,
                          "example_document_drop_variants BITS_PER_SECOND MASTER", [&] {
                              const std::string text = example::contentOf(arguments[2]);
                              const std::uint64_t highest = std::stoull(arguments[1]);
                              example::printBeside(text, byDocument(text, highest), byModels(text, highest));
                              return 0;
                          });
}
