#include "tool/RuleLinks.h"

namespace tool {

std::string helpUriOf(const VELHLSRule& rule) {
    if (rule.clause.empty()) return {};
    if (rule.source.find("RFC 8216,") == 0)
        return "https://www.rfc-editor.org/rfc/rfc8216#section-" + std::string(rule.clause);
    if (rule.profile == "apple")
        return "https://developer.apple.com/documentation/http-live-streaming/"
               "hls-authoring-specification-for-apple-devices";
    return "https://datatracker.ietf.org/doc/html/draft-pantos-hls-rfc8216bis#section-" +
           std::string(rule.clause);
}

}  // namespace tool
