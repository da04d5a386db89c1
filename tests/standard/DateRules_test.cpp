#include "tests/standard/Breach.h"

namespace standard_test {

std::vector<Breach> dateBreaches() {
    return {
        {"a date without a time zone", live, "12.012Z", "12.012", "date-time-without-zone", 13},
        {"a date without milliseconds", live, "00.000Z", "00Z", "date-time-without-milliseconds", 7},
    };
}

}  // namespace standard_test
