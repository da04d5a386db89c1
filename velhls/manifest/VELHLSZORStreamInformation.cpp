#include "velhls/manifest/VELHLSZORStreamInformation.h"

#include <optional>

#include "velhls/common/AttributeList.h"
#include "velhls/common/Names.h"
#include "velhls/common/Numbers.h"
#include "velhls/common/TagLine.h"

std::shared_ptr<VELHLSZORStreamInformation> VELHLSZORStreamInformation::parse(const std::string& line) {
    if (!velhls::isTagLine(line, velhls::tag::zorStreamInf)) return nullptr;
    const std::optional<velhls::AttributeList> attributes =
        velhls::AttributeList::parse(velhls::TagLine(line).value);
    if (!attributes) return nullptr;

    auto entry = std::make_shared<VELHLSZORStreamInformation>();
    for (const velhls::Attribute& attribute : *attributes) {
        if (attribute.name == velhls::attribute::nominalVideoBitrate) {
            entry->nominalVideoBitrate = velhls::toInt64AsUnsigned(attribute.value);
        } else if (attribute.name == velhls::attribute::nominalAudioBitrate) {
            entry->nominalAudioBitrate = velhls::toInt64AsUnsigned(attribute.value);
        }
    }
    return entry->validate() ? entry : nullptr;
}

bool VELHLSZORStreamInformation::validate() const {
    return nominalVideoBitrate != 0 || nominalAudioBitrate != 0;
}
