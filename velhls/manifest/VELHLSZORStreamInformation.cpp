#include "velhls/manifest/VELHLSZORStreamInformation.h"

#include "velhls/common/AttributeList.h"
#include "velhls/common/Names.h"
#include "velhls/common/Numbers.h"
#include "velhls/common/TagLine.h"
#include "velhls/manifest/RecordParsers.h"

std::shared_ptr<VELHLSZORStreamInformation> velhls::parseStreamInformation(const std::string& line,
                                                                           Recorder* recorder) {
    if (!isTagLine(line, tag::zorStreamInf)) {
        tell(recorder, Rule::vendorStreamInformationDropped, line);
        return nullptr;
    }
    const TagLine tagLine(line);
    // A malformed list does not reject the playlist: why it is malformed is not told as an error.
    AttributeList attributes;
    if (!attributes.parse(tagLine.value)) {
        tell(recorder, Rule::vendorStreamInformationDropped, tagLine.value);
        return nullptr;
    }
    if (recorder != nullptr) recorder->attributesRead(tagLine.name, attributes);

    auto entry = std::make_shared<VELHLSZORStreamInformation>();
    for (const Attribute& attribute : attributes) {
        if (attribute.name == attribute::nominalVideoBitrate) {
            entry->nominalVideoBitrate = toInt64AsUnsigned(number(recorder, attribute.value));
        } else if (attribute.name == attribute::nominalAudioBitrate) {
            entry->nominalAudioBitrate = toInt64AsUnsigned(number(recorder, attribute.value));
        }
    }
    if (entry->validate()) return entry;
    tell(recorder, Rule::vendorStreamInformationDropped, tagLine.value);
    return nullptr;
}

std::shared_ptr<VELHLSZORStreamInformation> VELHLSZORStreamInformation::parse(const std::string& line) {
    return velhls::parseStreamInformation(line, nullptr);
}

bool VELHLSZORStreamInformation::validate() const {
    return nominalVideoBitrate != 0 || nominalAudioBitrate != 0;
}
