#include "tests/comparison/Updates.h"

#include <stdexcept>

namespace comparison_test {

const Versions live = {
    "#EXTM3U\n"
    "#EXT-X-VERSION:6\n"
    "#EXT-X-TARGETDURATION:6\n"
    "#EXT-X-MEDIA-SEQUENCE:100\n"
    "#EXT-X-DISCONTINUITY-SEQUENCE:4\n"
    "#EXT-X-INDEPENDENT-SEGMENTS\n"
    "#EXT-X-KEY:METHOD=AES-128,URI=\"key1\",IV=0x000102030405060708090A0B0C0D0E0F\n"
    "#EXT-X-MAP:URI=\"init1.mp4\"\n"
    "#EXT-X-DISCONTINUITY\n"
    "#EXT-X-PROGRAM-DATE-TIME:2026-11-21T10:00:00.000Z\n"
    "#EXTINF:6,\n"
    "100.m4s\n"
    "#EXTINF:6,\n"
    "101.m4s\n"
    "#EXT-X-DATERANGE:ID=\"ad-1\",START-DATE=\"2026-11-21T10:00:12.000Z\",PLANNED-DURATION=18\n"
    "#EXTINF:6,\n"
    "102.m4s\n"
    "#EXT-X-DISCONTINUITY\n"
    "#EXT-X-KEY:METHOD=AES-128,URI=\"key2\",IV=0x000102030405060708090A0B0C0D0E0F\n"
    "#EXT-X-MAP:URI=\"init2.mp4\"\n"
    "#EXT-X-PROGRAM-DATE-TIME:2026-11-21T10:00:18.000Z\n"
    "#EXTINF:6,Advertisement\n"
    "103.m4s\n"
    "#EXTINF:6,\n"
    "104.m4s\n",
    "#EXTM3U\n"
    "#EXT-X-VERSION:6\n"
    "#EXT-X-TARGETDURATION:6\n"
    "#EXT-X-MEDIA-SEQUENCE:101\n"
    "#EXT-X-DISCONTINUITY-SEQUENCE:5\n"
    "#EXT-X-INDEPENDENT-SEGMENTS\n"
    "#EXT-X-KEY:METHOD=AES-128,URI=\"key1\",IV=0x000102030405060708090A0B0C0D0E0F\n"
    "#EXT-X-MAP:URI=\"init1.mp4\"\n"
    "#EXT-X-PROGRAM-DATE-TIME:2026-11-21T10:00:06.000Z\n"
    "#EXTINF:6,\n"
    "101.m4s\n"
    "#EXT-X-DATERANGE:ID=\"ad-1\",START-DATE=\"2026-11-21T10:00:12.000Z\",PLANNED-DURATION=18\n"
    "#EXTINF:6,\n"
    "102.m4s\n"
    "#EXT-X-DISCONTINUITY\n"
    "#EXT-X-KEY:METHOD=AES-128,URI=\"key2\",IV=0x000102030405060708090A0B0C0D0E0F\n"
    "#EXT-X-MAP:URI=\"init2.mp4\"\n"
    "#EXT-X-PROGRAM-DATE-TIME:2026-11-21T10:00:18.000Z\n"
    "#EXTINF:6,Advertisement\n"
    "103.m4s\n"
    "#EXTINF:6,\n"
    "104.m4s\n"
    "#EXTINF:6,\n"
    "105.m4s\n"};

const Versions plain = {
    "#EXTM3U\n"
    "#EXT-X-TARGETDURATION:6\n"
    "#EXTINF:6,\n0.ts\n#EXTINF:6,\n1.ts\n#EXTINF:6,\n2.ts\n#EXTINF:6,\n3.ts\n#EXTINF:6,\n4.ts\n",
    "#EXTM3U\n"
    "#EXT-X-TARGETDURATION:6\n"
    "#EXT-X-MEDIA-SEQUENCE:1\n"
    "#EXTINF:6,\n1.ts\n#EXTINF:6,\n2.ts\n#EXTINF:6,\n3.ts\n#EXTINF:6,\n4.ts\n#EXTINF:6,\n5.ts\n"};

const Versions event = {
    "#EXTM3U\n"
    "#EXT-X-TARGETDURATION:6\n"
    "#EXT-X-MEDIA-SEQUENCE:0\n"
    "#EXT-X-PLAYLIST-TYPE:EVENT\n"
    "#EXTINF:6,Start\n0.ts\n#EXTINF:6,\n1.ts\n#EXTINF:6,\n2.ts\n#EXTINF:6,\n3.ts\n",
    "#EXTM3U\n"
    "#EXT-X-TARGETDURATION:6\n"
    "#EXT-X-MEDIA-SEQUENCE:0\n"
    "#EXT-X-PLAYLIST-TYPE:EVENT\n"
    "#EXTINF:6,Start\n0.ts\n#EXTINF:6,\n1.ts\n#EXTINF:6,\n2.ts\n#EXTINF:6,\n3.ts\n#EXTINF:6,\n4.ts\n"};

const Versions vod = {
    "#EXTM3U\n"
    "#EXT-X-TARGETDURATION:6\n"
    "#EXT-X-PLAYLIST-TYPE:VOD\n"
    "#EXTINF:6,\n0.ts\n#EXTINF:6,\n1.ts\n#EXTINF:6,\n2.ts\n#EXTINF:6,\n3.ts\n#EXT-X-ENDLIST\n",
    "#EXTM3U\n"
    "#EXT-X-TARGETDURATION:6\n"
    "#EXT-X-PLAYLIST-TYPE:VOD\n"
    "#EXTINF:6,\n0.ts\n#EXTINF:6,\n1.ts\n#EXTINF:6,\n2.ts\n#EXTINF:6,\n3.ts\n#EXT-X-ENDLIST\n"};

const Versions songs = {
    "#EXTM3U\n"
    "#EXT-X-TARGETDURATION:6\n"
    "#EXT-X-MEDIA-SEQUENCE:50\n"
    "#EXT-X-PROGRAM-DATE-TIME:2026-11-21T10:00:00.000Z\n"
    "#EXT-X-DATERANGE:ID=\"song-1\",CLASS=\"songs\",START-DATE=\"2026-11-21T10:00:00.000Z\",END-ON-NEXT=YES\n"
    "#EXT-X-DATERANGE:ID=\"song-2\",CLASS=\"songs\",START-DATE=\"2026-11-21T10:00:16.000Z\",END-ON-NEXT=YES\n"
    "#EXTINF:6,\n50.ts\n#EXTINF:6,\n51.ts\n#EXTINF:6,\n52.ts\n#EXTINF:6,\n53.ts\n",
    "#EXTM3U\n"
    "#EXT-X-TARGETDURATION:6\n"
    "#EXT-X-MEDIA-SEQUENCE:51\n"
    "#EXT-X-PROGRAM-DATE-TIME:2026-11-21T10:00:06.000Z\n"
    "#EXT-X-DATERANGE:ID=\"song-1\",CLASS=\"songs\",START-DATE=\"2026-11-21T10:00:00.000Z\",END-ON-NEXT=YES\n"
    "#EXT-X-DATERANGE:ID=\"song-2\",CLASS=\"songs\",START-DATE=\"2026-11-21T10:00:16.000Z\",END-ON-NEXT=YES\n"
    "#EXTINF:6,\n51.ts\n#EXTINF:6,\n52.ts\n#EXTINF:6,\n53.ts\n"
    "#EXT-X-DATERANGE:ID=\"song-3\",CLASS=\"songs\",START-DATE=\"2026-11-21T10:00:28.000Z\",END-ON-NEXT=YES\n"
    "#EXTINF:6,\n54.ts\n"};

Versions changed(Versions versions, const std::string& text, const std::string& replacement) {
    const std::size_t place = versions.now.find(text);
    if (place == std::string::npos) throw std::invalid_argument("the new version does not hold " + text);
    versions.now.replace(place, text.size(), replacement);
    return versions;
}

VELHLSComparison compared(const Versions& versions) {
    const auto comparison = VELHLSComparison::compare(
        VELHLSDocument(versions.before), VELHLSDocument(versions.now), {versions.elapsedSeconds});
    if (!comparison) throw std::invalid_argument("the versions cannot be compared:\n" + versions.now);
    return *comparison;
}

std::string shownChanges(const std::vector<VELHLSChange>& changes) {
    std::string text;
    for (const VELHLSChange& change : changes) {
        if (change.kind == VELHLSChange::Changed || !change.what.empty()) {
            text += change.path + ":" + (change.what.empty() ? "" : " " + change.what) + " " +
                    change.oldText + " -> " + change.newText + "\n";
        } else {
            const bool isAdded = change.kind == VELHLSChange::Added;
            text += (isAdded ? "+ " : "- ") + change.path + ": " +
                    (isAdded ? change.newText : change.oldText) + "\n";
        }
    }
    return text;
}

std::string shown(const std::vector<VELHLSFinding>& findings) {
    std::string text;
    for (const VELHLSFinding& finding : findings) {
        text += std::to_string(finding.line) + ":" + std::to_string(finding.column) + " [" + finding.ruleId +
                "] " + finding.message;
        for (const VELHLSRelatedPlace& place : finding.related)
            text += " (old " + std::to_string(place.line) + ": " + place.message + ")";
        text += "\n";
    }
    return text;
}

}  // namespace comparison_test
