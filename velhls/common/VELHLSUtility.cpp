#include "velhls/common/VELHLSUtility.h"

#include <array>
#include <optional>
#include <utility>

#if defined(_WIN32)
#include <chrono>
#else
#include <sys/time.h>
#endif

#include "velhls/common/AttributeList.h"
#include "velhls/common/PatternTags.h"
#include "velhls/common/Substitution.h"
#include "velhls/common/TextScan.h"
#include "velhls/common/Timestamps.h"

void VELHLSUtility::updateParsingStatusWithError(VELHLSParsingStatus* status, VELHLSParsingError error,
                                                 const std::string& message) {
    if (status == nullptr) return;
    // The copy may throw, and goes first.
    status->message = message;
    status->error = error;
}

std::int64_t VELHLSUtility::getTimeNow() {
#if defined(_WIN32)
    // A clock that never fails.
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
#else
    timeval now = {};
    if (gettimeofday(&now, nullptr) != 0) return -1;
    return std::int64_t{now.tv_sec} * 1000 + std::int64_t{now.tv_usec} / 1000;
#endif
}

std::unique_ptr<VELHLSAttributeMap> VELHLSUtility::parseAttributeMap(const std::string& text) {
    velhls::AttributeList list;
    velhls::Reason ignored;
    if (!list.read(text, ignored)) return nullptr;
    auto map = std::make_unique<VELHLSAttributeMap>();
    for (const velhls::Attribute& attribute : list) {
        map->emplace_hint(map->end(), attribute.name, attribute.value);
    }
    return map;
}

bool VELHLSUtility::uriIsAbsoluteHTTPURL(const std::string& uri) {
    return velhls::startsWith(uri, "http");
}

std::string VELHLSUtility::lastPathComponentFromURI(const std::string& uri) {
    const std::size_t slash = uri.rfind('/');
    return slash == std::string::npos ? uri : uri.substr(slash + 1);
}

bool VELHLSUtility::isMediaPatternTag(const std::string& line) {
    return velhls::isPatternTag(line);
}

std::string VELHLSUtility::substituteVariables(std::string text, std::shared_ptr<VELHLSDefineMap> defines) {
    if (defines == nullptr) return text;
    return velhls::substitute(text, *defines).text;
}

double VELHLSUtility::parseTimestamp(const std::string& text) {
    velhls::Reason ignored;
    return velhls::readTimestamp(text, ignored);
}

void VELHLSUtility::renderTimestamp(double seconds, std::string& out) {
    std::array<char, velhls::mostTimestampBytes> text;
    char* const end = velhls::TimestampWriter().write(text.data(), seconds);
    out.append(text.data(), end);
}
