#include "tests/standard/Breach.h"

namespace standard_test {

std::vector<Breach> dateRangeBreaches() {
    return {
        {"an end before the start", dateRanges, "10:00:02.000Z\",DURATION=1",
         "10:00:02.000Z\",END-DATE=\"2026-11-21T10:00:01.000Z\"", "date-range-ends-before-start", 10},
        {"an end elsewhere than DURATION says", dateRanges, "10:00:03.500Z", "10:00:03.600Z",
         "date-range-end-not-start-plus-duration", 8},
        {"an end elsewhere than DURATION of an earlier tag says", dateRanges,
         "ID=\"song-3\",CLASS=\"songs\",START-DATE=\"2026-11-21T10:00:04.000Z\"",
         "ID=\"talk\",START-DATE=\"2026-11-21T10:00:04.000Z\",DURATION=3\n"
         "#EXT-X-DATERANGE:ID=\"talk\",START-DATE=\"2026-11-21T10:00:04.000Z\",END-DATE="
         "\"2026-11-21T10:00:06.000Z\"",
         "date-range-end-not-start-plus-duration", 12},
        {"a duration elsewhere than END-DATE of an earlier tag says", dateRanges,
         "ID=\"song-3\",CLASS=\"songs\",START-DATE=\"2026-11-21T10:00:04.000Z\"",
         "ID=\"talk\",START-DATE=\"2026-11-21T10:00:04.000Z\",END-DATE=\"2026-11-21T10:00:06.000Z\"\n"
         "#EXT-X-DATERANGE:ID=\"talk\",START-DATE=\"2026-11-21T10:00:04.000Z\",DURATION=3",
         "date-range-end-not-start-plus-duration", 12},
        {"an instant without DURATION", dateRanges, "DURATION=1\n", "END-DATE=\"2026-11-21T10:00:02.000Z\"\n",
         "date-range-instant-without-duration", 10},
        {"END-ON-NEXT without CLASS", dateRanges, "ID=\"song-1\",CLASS=\"songs\"", "ID=\"song-1\"",
         "date-range-class-missing", 9},
        {"END-ON-NEXT with DURATION", dateRanges, "END-ON-NEXT=YES", "END-ON-NEXT=YES,DURATION=2",
         "date-range-ends-twice", 9},
        {"END-ON-NEXT with END-DATE", dateRanges, "END-ON-NEXT=YES",
         "END-ON-NEXT=YES,END-DATE=\"2026-11-21T10:00:02.000Z\"", "date-range-ends-twice", 9},
        {"a client's attribute without a domain", dateRanges, "X-COM-EXAMPLE-TITLE", "X-TITLE",
         "date-range-name-not-reverse-dns", 9},
        {"a splice out that goes in", dateRanges, "00017FFFFE", "00017F7FFE",
         "date-range-splice-of-other-direction", 5},
        {"a splice in that goes out", dateRanges, "00017F7FFE", "00017FFFFE",
         "date-range-splice-of-other-direction", 8},
        {"date ranges without a date", dateRanges, "#EXT-X-PROGRAM-DATE-TIME:2026-11-21T10:00:00.000Z\n", "",
         "date-range-without-date-time", 4},
        {"another value for the same ID", dateRanges, "ID=\"ad\",START-DATE=\"2026-11-21T10:00:01.000Z\"",
         "ID=\"ad\",CLASS=\"other\",START-DATE=\"2026-11-21T10:00:01.000Z\"", "date-range-values-differ", 8},
        {"ranges of a class that overlap", dateRanges, "DURATION=1\n", "DURATION=3\n", "date-ranges-overlap",
         11},
        {"two open ranges that start together", dateRanges,
         "ID=\"song-3\",CLASS=\"songs\",START-DATE=\"2026-11-21T10:00:04.000Z\"",
         "ID=\"song-3\",CLASS=\"songs\",START-DATE=\"2026-11-21T10:00:00.000Z\",END-ON-NEXT=YES",
         "date-ranges-overlap", 11},
        {"an open range that starts together with one that lasts", dateRanges,
         "ID=\"song-3\",CLASS=\"songs\",START-DATE=\"2026-11-21T10:00:04.000Z\"",
         "ID=\"song-3\",CLASS=\"songs\",START-DATE=\"2026-11-21T10:00:00.000Z\",DURATION=1",
         "date-ranges-overlap", 11},
    };
}

}  // namespace standard_test
