// Internal to the library, not installed: why something is rejected, as a value.
#pragma once

#include <string>
#include <string_view>

#include "velhls/common/Rule.h"

namespace velhls {

/// Why the models reject what they read: a rule, and the place in the line. Whoever rejects writes it on his way out,
/// once, and nobody pays for it where nothing is rejected:
///
///     if (startsWith(value, ",")) return why_(Rule::segmentDurationEmpty, value);
///
/// An exception of number conversion is a reason too, and is written before it is thrown.
struct Reason {
    /// The text of the place is what was seen, unless `seenThere` says something else. Always false, to be returned.
    bool operator()(Rule brokenRule, std::string_view place, std::string seenThere = {});

    /// What should stand at the place, or beside it, and does not.
    bool missing(Rule brokenRule, std::string_view place);

    /// What is wrong with a record as a whole: its place is what follows the last of its tags with that name, or
    /// the record's first line where it has none.
    bool ofRecord(Rule brokenRule, std::string_view tagName, std::string seenThere = {});

    void clear() { isSet = false; }

    bool isSet = false;
    Rule rule = {};
    /// A view into the line, or null for a record as a whole.
    std::string_view where;
    std::string_view tag;
    std::string seen;
};

}  // namespace velhls
