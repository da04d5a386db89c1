#include "velhls/common/Reason.h"

#include <utility>

namespace velhls {

bool Reason::operator()(Rule brokenRule, std::string_view place, std::string seenThere) {
    isSet = true;
    rule = brokenRule;
    where = place;
    tag = {};
    seen = std::move(seenThere);
    return false;
}

bool Reason::missing(Rule brokenRule, std::string_view place) {
    return (*this)(brokenRule, place, "none");
}

bool Reason::ofRecord(Rule brokenRule, std::string_view tagName, std::string seenThere) {
    (*this)(brokenRule, {}, std::move(seenThere));
    tag = tagName;
    return false;
}

}  // namespace velhls
