// Inserts an ad break before a segment of a live playlist: an EXT-X-DATERANGE that announces it, the ad's segments between
// two discontinuities, and the programme's initialization section once more.
//
//     example_document_insert_ad_break 268443 examples/document/ad.m3u8 examples/document/live.m3u8
//
// By the models the break cannot be announced, and the programme's own date range is lost too, with the bit rate; the map and a
// date come before every segment.

#include <cstdint>
#include <ctime>
#include <iomanip>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "velhls/VELHLS.h"
#include "velhls/VELHLSCheck.h"

#include "examples/BesideTheModels.h"
#include "examples/RunOnFiles.h"

namespace {

/// Microseconds since the Unix epoch as "2026-11-21T20:00:12.012Z".
std::string dateText(std::int64_t microseconds) {
    const std::time_t seconds = microseconds / 1000000;
    std::ostringstream text;
    text << std::put_time(std::gmtime(&seconds), "%Y-%m-%dT%H:%M:%S.") << std::setw(3) << std::setfill('0')
         << microseconds / 1000 % 1000 << "Z";
    return text.str();
}

VELHLSStructure::Segment segmentNumbered(const VELHLSStructure& structure, std::uint64_t number) {
    for (const VELHLSStructure::Segment segment : structure.segments()) {
        if (segment.mediaSequence == number) return segment;
    }
    throw std::invalid_argument("no such segment");
}

std::string byDocument(const std::string& text, const std::string& ad, std::uint64_t number) {
    const VELHLSDocument document(text);
    const VELHLSStructure structure(document);
    const VELHLSStructure::Segment segment = segmentNumbered(structure, number);
    if (!segment.date) throw std::invalid_argument("the playlist has no date");

    std::string lines = "#EXT-X-DATERANGE:ID=\"ad-" + std::to_string(number) +
                        "\",CLASS=\"com.example.ad\",START-DATE=\"" + dateText(*segment.date) +
                        "\",DURATION=6.000\n#EXT-X-DISCONTINUITY\n" + ad + "#EXT-X-DISCONTINUITY";
    if (segment.inForce.mapLine != 0) lines.append("\n").append(document.line(segment.inForce.mapLine).text);
    return document.apply({document.insertBefore(segment.firstLine, lines)}).text;
}

/// The models have no field for a date range, so the break cannot be announced.
std::string byModels(const std::string& text, const std::string& ad, std::uint64_t number) {
    const auto stream = VELHLSMediaStream::parseMediaStream(text);
    const auto advert = VELHLSMediaStream::parseMediaStream(ad);
    if (stream == nullptr || advert == nullptr) return "rejected\n";
    auto& segments = stream->segments;
    for (auto place = segments.begin(); place != segments.end(); ++place) {
        if ((*place)->mediaSequenceNumber != number) continue;
        (*place)->discontinuity = true;
        advert->segments.front()->discontinuity = true;
        segments.insert(place, advert->segments.begin(), advert->segments.end());
        break;
    }
    std::ostringstream output;
    return stream->render(output) == 0 ? output.str() : "not written\n";
}

}  // namespace

int main(int argumentCount, char** arguments) {
    return example::runOn(argumentCount, arguments, 4, "example_document_insert_ad_break NUMBER AD MEDIA",
                          [&] {
                              const std::uint64_t number = std::stoull(arguments[1]);
                              std::string ad = example::contentOf(arguments[2]);
                              const std::string text = example::contentOf(arguments[3]);
                              const std::string models = byModels(text, ad, number);
                              example::printBeside(text, byDocument(text, ad, number), models);
                              return 0;
                          });
}
