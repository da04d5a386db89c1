#include "velhls/manifest/VELHLSZORStreamInformation.h"

#include "velhls/common/AttributeList.h"
#include "velhls/common/Names.h"
#include "velhls/common/NumberReading.h"
#include "velhls/common/TagLine.h"
#include "velhls/manifest/RecordTags.h"

std::shared_ptr<VELHLSZORStreamInformation> velhls::readStreamInformation(const TagLine& tagLine,
                                                                          Reason& why) {
    // A malformed list does not reject the playlist: why it is malformed is no reason.
    Reason ignored;
    AttributeList attributes;
    if (!attributes.read(tagLine.value, ignored)) return nullptr;
    auto entry = std::make_shared<VELHLSZORStreamInformation>();
    // In the order of their names: of two that are no numbers the first one is told.
    if (const auto value = attributes.find(attribute::nominalAudioBitrate)) {
        entry->nominalAudioBitrate = toInt64AsUnsigned(*value, why);
    }
    if (const auto value = attributes.find(attribute::nominalVideoBitrate)) {
        entry->nominalVideoBitrate = toInt64AsUnsigned(*value, why);
    }
    return entry->validate() ? entry : nullptr;
}

std::shared_ptr<VELHLSZORStreamInformation> VELHLSZORStreamInformation::parse(const std::string& line) {
    velhls::Reason ignored;
    if (!velhls::isTagLine(line, velhls::tag::zorStreamInf)) return nullptr;
    return velhls::readStreamInformation(velhls::TagLine(line), ignored);
}

bool VELHLSZORStreamInformation::validate() const {
    return nominalVideoBitrate != 0 || nominalAudioBitrate != 0;
}
