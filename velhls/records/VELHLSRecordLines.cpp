#include "velhls/records/VELHLSRecordLines.h"

#include <algorithm>
#include <functional>

#include "velhls/common/Readers.h"
#include "velhls/manifest/VELHLSParsedManifest.h"
#include "velhls/media/VELHLSMediaStream.h"

namespace {

using velhls::Reading;
using velhls::RecordLines;

template <typename Place>
bool isBefore(const Place& left, const void* right) {
    return std::less<>()(left.record, right);
}

/// The places of all records that a reading made and kept.
template <typename Place>
std::vector<Place> placesIn(const Reading& reading) {
    std::vector<Place> places;
    places.reserve(reading.records().size());
    for (const RecordLines& lines : reading.records()) {
        if (lines.record == nullptr) continue;
        places.push_back({lines.record, static_cast<std::uint32_t>(lines.firstLine),
                          static_cast<std::uint32_t>(lines.lastLine)});
    }
    std::sort(places.begin(), places.end(),
              [](const Place& left, const Place& right) { return isBefore(left, right.record); });
    return places;
}

}  // namespace

std::shared_ptr<VELHLSParsedManifest> VELHLSRecordLines::parseManifest(const VELHLSDocument& document,
                                                                       VELHLSReason* reason) {
    places_.clear();
    Reading reading(document.text(), Reading::Extent::toFirstRejection);
    auto manifest = velhls::readMaster(document.text(), reading);
    if (manifest == nullptr) return VELHLSParsedManifest::parseManifest(document.text(), reason);
    manifest->populateMetaData();
    places_ = placesIn<Place>(reading);
    return manifest;
}

std::shared_ptr<VELHLSMediaStream> VELHLSRecordLines::parseMediaStream(const VELHLSDocument& document,
                                                                       VELHLSReason* reason) {
    places_.clear();
    Reading reading(document.text(), Reading::Extent::toFirstRejection);
    auto stream = velhls::readMedia(document.text(), reading);
    if (stream == nullptr) return VELHLSMediaStream::parseMediaStream(document.text(), reason);
    places_ = placesIn<Place>(reading);
    return stream;
}

std::optional<VELHLSRecordLines::Lines> VELHLSRecordLines::find(const void* record) const {
    const auto place = std::lower_bound(places_.begin(), places_.end(), record, isBefore<Place>);
    if (place == places_.end() || place->record != record) return std::nullopt;
    return Lines{place->first, place->last};
}
