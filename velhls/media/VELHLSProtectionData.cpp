#include "velhls/media/VELHLSProtectionData.h"

#include <optional>
#include <string_view>
#include <utility>

#include "velhls/common/AttributeList.h"
#include "velhls/common/AttributeWriter.h"
#include "velhls/common/Names.h"
#include "velhls/common/NumberReading.h"
#include "velhls/common/NumberWriting.h"
#include "velhls/common/TagLine.h"
#include "velhls/common/TextScan.h"
#include "velhls/media/KeyAndMapTags.h"

namespace {

namespace attribute = velhls::attribute;
using velhls::Reason;
using velhls::Rule;

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

/// The numbers between the slashes. An empty piece is no number: its conversion throws, with the reason.
std::vector<std::int32_t> readKeyFormatVersions(std::string_view text, Reason& why) {
    std::vector<std::int32_t> versions;
    std::size_t start = 0;
    while (true) {
        const std::size_t slash = text.find('/', start);
        versions.push_back(velhls::toInt32(text.substr(start, slash - start), why));
        if (slash == std::string_view::npos) return versions;
        start = slash + 1;
    }
}

/// In the order of their names: of several that are malformed the first one is told.
bool readAttributes(VELHLSProtectionData& key, const velhls::AttributeList& attributes, Reason& why) {
    if (const auto iv = attributes.find(attribute::iv)) {
        if (!isInitializationVector(*iv)) return why(Rule::keyIvMalformed, *iv);
        key.iv = *iv;
    }
    if (const auto keyFormat = attributes.find(attribute::keyFormat)) key.keyFormat = *keyFormat;
    if (const auto versions = attributes.find(attribute::keyFormatVersions)) {
        if (!velhls::holdsOnly(*versions, velhls::digitsAndSlash)) {
            return why(Rule::keyFormatVersionsMalformed, *versions);
        }
        key.keyFormatVersions = readKeyFormatVersions(*versions, why);
    }
    if (const auto uri = attributes.find(attribute::uri)) key.uri = *uri;
    return true;
}

}  // namespace

bool velhls::readKey(const TagLine& tagLine, VELHLSProtectionData& key, Reason& why) {
    AttributeList attributes;
    if (!attributes.readNonEmpty(tagLine, why)) return false;
    const std::optional<std::string_view> methodName = attributes.find(attribute::method);
    if (!methodName) return why.missing(Rule::keyMethodMissing, tagLine.name);

    const bool encrypts = *methodName != fixed::none;
    if (!encrypts && tagLine.name == tag::sessionKey) return why(Rule::sessionKeyMethodNone, *methodName);
    const auto encryptingMethod = encryptingMethodNamed(*methodName);
    if (encrypts && !encryptingMethod) return why(Rule::keyMethodUnknown, *methodName);

    // Apart from the key, since the line may be a text that it holds.
    VELHLSProtectionData read(encryptingMethod.value_or(VELHLSProtectionData::None), "", "", "", {});
    if (encrypts && !readAttributes(read, attributes, why)) return false;
    // The one rule that may still be broken: the vector was looked at when it was read.
    if (encrypts && read.uri.empty()) return why.missing(Rule::keyUriMissing, tagLine.name);
    key = std::move(read);
    return true;
}

std::string velhls::keyFormatVersionsText(const std::vector<std::int32_t>& versions) {
    std::string text;
    for (const std::int32_t version : versions) {
        if (!text.empty()) text += '/';
        appendDecimal(text, std::int64_t{version});
    }
    return text;
}

VELHLSProtectionData::VELHLSProtectionData(ProtectionMethod method, const std::string& uri,
                                           const std::string& iv, const std::string& keyFormat,
                                           std::vector<std::int32_t> versions)
    : method(method),
      uri(uri),
      iv(iv),
      keyFormat(keyFormat),
      keyFormatVersions(versions.empty() ? std::vector<std::int32_t>{1} : std::move(versions)) {}

std::int32_t VELHLSProtectionData::parse(const std::string& line) {
    const bool isKey =
        velhls::isTagLine(line, velhls::tag::key) || velhls::isTagLine(line, velhls::tag::sessionKey);
    velhls::Reason ignored;
    return isKey && velhls::readKey(velhls::TagLine(line), *this, ignored) ? 0 : -1;
}

bool VELHLSProtectionData::validate() const {
    if ((method == AES128 || method == SampleAES) && uri.empty()) return false;
    return iv.empty() || isInitializationVector(iv);
}

std::string_view VELHLSProtectionData::textOf(ProtectionMethod method) noexcept {
    switch (method) {
        case None:
            return velhls::fixed::none;
        case AES128:
            return velhls::fixed::aes128;
        case SampleAES:
            return velhls::fixed::sampleAes;
    }
    return {};
}

std::int32_t VELHLSProtectionData::render(std::string& out) const {
    if (!validate()) return -1;
    const std::string_view methodText = textOf(method);
    // Kept as is: a value that is no method is written as nothing at all.
    if (methodText.empty()) return 0;

    velhls::AttributeWriter line(out, velhls::tag::key);
    line.append(velhls::attribute::method, methodText);
    if (method != None) {
        line.appendQuoted(velhls::attribute::uri, uri)
            .appendUnlessEmpty(velhls::attribute::iv, iv)
            .appendQuotedUnlessEmpty(velhls::attribute::keyFormat, keyFormat);
        const bool hasDefaultVersions = keyFormatVersions.size() == 1 && keyFormatVersions.front() == 1;
        if (!hasDefaultVersions) {
            line.appendQuoted(velhls::attribute::keyFormatVersions,
                              velhls::keyFormatVersionsText(keyFormatVersions));
        }
    }
    line.endLine();
    return 0;
}
