#include "velhls/media/VELHLSProtectionData.h"

#include <optional>
#include <string_view>
#include <utility>

#include "velhls/common/AttributeTag.h"
#include "velhls/common/Names.h"
#include "velhls/common/TextScan.h"
#include "velhls/media/KeyFormatVersions.h"

namespace {

constexpr std::string_view ivStart = "0x";
constexpr std::size_t ivLength = 34;

bool isInitializationVector(std::string_view text) {
    if (text.size() != ivLength) return false;
    if (!velhls::startsWith(text, ivStart)) return false;
    return velhls::holdsOnly(text.substr(ivStart.size()), velhls::hexadecimalDigits);
}

std::optional<VELHLSProtectionData::ProtectionMethod> encryptingMethodNamed(std::string_view name) {
    if (name == velhls::fixed::aes128) return VELHLSProtectionData::AES128;
    if (name == velhls::fixed::sampleAes) return VELHLSProtectionData::SampleAES;
    return std::nullopt;
}

}  // namespace

VELHLSProtectionData::VELHLSProtectionData(ProtectionMethod method, const std::string& uri,
                                           const std::string& iv, const std::string& keyFormat,
                                           std::vector<std::int32_t> versions)
    : method(method),
      uri(uri),
      iv(iv),
      keyFormat(keyFormat),
      keyFormatVersions(versions.empty() ? std::vector<std::int32_t>{1} : std::move(versions)) {}

std::int32_t VELHLSProtectionData::parse(const std::string& line) {
    const bool isSessionKey = velhls::isTagLine(line, velhls::tag::sessionKey);
    if (!isSessionKey && !velhls::isTagLine(line, velhls::tag::key)) return -1;
    const std::optional<velhls::AttributeList> attributes = velhls::parseNonEmptyAttributes(line);
    if (!attributes) return -1;
    const std::optional<std::string_view> methodName = attributes->find(velhls::attribute::method);
    if (!methodName) return -1;

    const bool encrypts = *methodName != velhls::fixed::none;
    if (!encrypts && isSessionKey) return -1;
    const std::optional<ProtectionMethod> encryptingMethod = encryptingMethodNamed(*methodName);
    if (encrypts && !encryptingMethod) return -1;

    // Apart from this record, since the line may be a text that it holds.
    VELHLSProtectionData key(encryptingMethod.value_or(None), "", "", "", {});
    if (encrypts) {
        for (const velhls::Attribute& attribute : *attributes) {
            if (!key.readAttribute(attribute.name, attribute.value)) return -1;
        }
    }
    if (!key.validate()) return -1;
    *this = std::move(key);
    return 0;
}

bool VELHLSProtectionData::readAttribute(std::string_view name, std::string_view value) {
    if (name == velhls::attribute::uri) {
        uri = value;
    } else if (name == velhls::attribute::iv) {
        if (!isInitializationVector(value)) return false;
        iv = value;
    } else if (name == velhls::attribute::keyFormat) {
        keyFormat = value;
    } else if (name == velhls::attribute::keyFormatVersions) {
        if (!velhls::holdsOnly(value, velhls::digitsAndSlash)) return false;
        keyFormatVersions = velhls::splitKeyFormatVersions(value);
    }
    return true;
}

bool VELHLSProtectionData::validate() const {
    if ((method == AES128 || method == SampleAES) && uri.empty()) return false;
    return iv.empty() || isInitializationVector(iv);
}

std::int32_t VELHLSProtectionData::render(std::string& out) const {
    if (!validate()) return -1;
    switch (method) {
        case None:
            velhls::appendTag(out, velhls::tag::key);
            velhls::appendAttribute(out, velhls::attribute::method, velhls::fixed::none);
            out += '\n';
            return 0;
        case AES128:
            appendEncryptingKey(out, velhls::fixed::aes128);
            return 0;
        case SampleAES:
            appendEncryptingKey(out, velhls::fixed::sampleAes);
            return 0;
    }
    // Kept as is: a value that is no method is written as nothing at all.
    return 0;
}

void VELHLSProtectionData::appendEncryptingKey(std::string& out, std::string_view methodName) const {
    velhls::appendTag(out, velhls::tag::key);
    velhls::appendAttribute(out, velhls::attribute::method, methodName);
    out += ',';
    velhls::appendQuotedAttribute(out, velhls::attribute::uri, uri);
    if (!iv.empty()) {
        out += ',';
        velhls::appendAttribute(out, velhls::attribute::iv, iv);
    }
    if (!keyFormat.empty()) {
        out += ',';
        velhls::appendQuotedAttribute(out, velhls::attribute::keyFormat, keyFormat);
    }
    const bool defaultVersions = keyFormatVersions.size() == 1 && keyFormatVersions.front() == 1;
    if (!defaultVersions) {
        out += ',';
        velhls::appendQuotedAttribute(out, velhls::attribute::keyFormatVersions,
                                      velhls::joinKeyFormatVersions(keyFormatVersions));
    }
    out += '\n';
}
