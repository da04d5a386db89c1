// Gives one rendition another LANGUAGE.
//
//     example_document_change_language German de examples/document/master.m3u8
//
// By the models each rendition loses its CHANNELS, each variant FRAME-RATE and VIDEO-RANGE, and the playlist its comment, its
// session key and the order of its variants; a start and CLOSED-CAPTIONS=NONE are added.

#include <sstream>
#include <string>
#include <vector>

#include "velhls/VELHLS.h"
#include "velhls/VELHLSCheck.h"

#include "examples/BesideTheModels.h"
#include "examples/RunOnFiles.h"

namespace {

std::string byDocument(const std::string& text, const std::string& name, const std::string& language) {
    const VELHLSDocument document(text);
    std::vector<VELHLSEdit> edits;
    for (const VELHLSLine& rendition : document.linesNamed("EXT-X-MEDIA")) {
        const auto itsName = rendition.attributes().find("NAME");
        if (itsName && itsName->value == name) {
            edits.push_back(document.changeAttributes(rendition.number, {{"LANGUAGE", language}}));
        }
    }
    return document.apply(edits).text;
}

std::string byModels(const std::string& text, const std::string& name, const std::string& language) {
    const auto manifest = VELHLSParsedManifest::parseManifest(text);
    if (manifest == nullptr) return "rejected\n";
    for (auto& [type, groups] : manifest->renditions) {
        for (auto& [group, renditionsByName] : groups) {
            const auto rendition = renditionsByName.find(name);
            if (rendition != renditionsByName.end()) rendition->second->language = language;
        }
    }
    std::ostringstream output;
    return manifest->render(output) == 0 ? output.str() : "not written\n";
}

}  // namespace

int main(int argumentCount, char** arguments) {
    return example::runOn(argumentCount, arguments, 4,
                          "example_document_change_language NAME LANGUAGE MASTER", [&] {
                              const std::string text = example::contentOf(arguments[3]);
                              example::printBeside(text, byDocument(text, arguments[1], arguments[2]),
                                                   byModels(text, arguments[1], arguments[2]));
                              return 0;
                          });
}
