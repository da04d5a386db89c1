// What the library says of threads: parses and checks of different texts may run at the same time, and one playlist may
// be read, validated and rendered by many. Meant to be run under the thread sanitizer too.
#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <numeric>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/VELHLS.h"
#include "velhls/VELHLSCheck.h"

#include "tests/support/LibraryFindings.h"
#include "tests/support/Outcome.h"
#include "tests/support/Parses.h"
#include "tests/support/WholePlaylists.h"

namespace {

constexpr std::size_t threadCount = 8;

/// Calls the work on all threads, which begin it together, with the number of the thread.
void onAllThreads(const std::function<void(std::size_t)>& work) {
    std::atomic<std::size_t> waitedFor{threadCount};
    std::vector<std::thread> threads;
    for (std::size_t number = 0; number < threadCount; ++number) {
        threads.emplace_back([&work, &waitedFor, number] {
            --waitedFor;
            while (waitedFor != 0)
                std::this_thread::yield();
            work(number);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

/// How often the work gave something else than it does on one thread.
std::size_t differences(std::size_t rounds, const std::function<std::string(std::size_t)>& work) {
    std::vector<std::string> expected;
    for (std::size_t number = 0; number < threadCount; ++number)
        expected.push_back(work(number));
    std::atomic<std::size_t> count{0};
    onAllThreads([&](std::size_t number) {
        for (std::size_t round = 0; round < rounds; ++round) {
            if (work(number) != expected[number]) ++count;
        }
    });
    return count;
}

template <typename Playlist>
std::string rendered(const Playlist& playlist) {
    std::ostringstream text;
    const std::int32_t status = playlist.render(text);
    return std::to_string(status) + (playlist.validate() ? " valid\n" : " invalid\n") + text.str();
}

template <typename Parse>
std::string parsedAndRendered(const std::string& text, Parse parse) {
    std::istringstream input(text);
    VELHLSParsingStatus status;
    const std::string outcome = playlist::outcomeOf(
        [&] {
            const auto playlist = parse(input, &status);
            return playlist == nullptr ? "rejected\n" : rendered(*playlist);
        },
        playlist::kindAndMessageOf);
    return outcome + std::to_string(status.error) + status.message;
}

std::string findings(const std::string& text) {
    std::string told;
    for (const VELHLSFinding& finding : library::findingsIn(text))
        told += std::to_string(finding.line) + ": " + finding.message + finding.ruleId + "\n";
    return told;
}

/// Playlists of both kinds that differ from thread to thread, and some that are rejected.
std::vector<std::string> textsOf(const std::string& text, const std::vector<std::string>& rejected) {
    std::vector<std::string> texts;
    for (std::size_t number = 0; number < threadCount; ++number) {
        const bool isRejected = number % 3 == 2;
        texts.push_back(isRejected ? rejected[number % rejected.size()]
                                   : text + "# the text of thread " + std::to_string(number) + "\n");
    }
    return texts;
}

TEST(Threads, ParseAndRenderDifferentMasterPlaylists) {
    const auto texts = textsOf(whole::master, whole::rejectedMasters);
    EXPECT_EQ(differences(20,
                          [&texts](std::size_t number) {
                              return parsedAndRendered(texts[number], playlist::parseMaster);
                          }),
              0U);
}

TEST(Threads, ParseAndRenderDifferentMediaPlaylists) {
    const auto texts = textsOf(whole::media, whole::rejectedMedia);
    EXPECT_EQ(differences(20,
                          [&texts](std::size_t number) {
                              return parsedAndRendered(texts[number], playlist::parseMedia);
                          }),
              0U);
}

TEST(Threads, CheckDifferentPlaylistsAndOneAndTheSame) {
    std::vector<std::string> texts = textsOf(whole::media, whole::rejectedMasters);
    texts[0] = texts[1] = whole::master;
    EXPECT_EQ(differences(5, [&texts](std::size_t number) { return findings(texts[number]); }), 0U);
}

/// No thread has asked before, where the test has a process of its own.
TEST(Threads, AskForTheRulesForTheFirstTimeTogether) {
    std::vector<std::string> summaries(threadCount);
    onAllThreads([&summaries](std::size_t number) {
        const auto rules = library::rules();
        const std::string id(rules[number].id);
        summaries[number] = VELHLSDiagnostics::ruleNamed(id)->summary;
    });
    const auto rules = library::rules();
    for (std::size_t number = 0; number < threadCount; ++number)
        EXPECT_EQ(summaries[number], rules[number].summary);
}

TEST(Threads, ReadAndEditOneDocument) {
    const VELHLSDocument document(whole::media);
    const VELHLSStructure structure(document);
    EXPECT_EQ(
        differences(20,
                    [&](std::size_t number) {
                        std::string seen;
                        for (const VELHLSStructure::Segment segment : structure.segments())
                            seen += std::to_string(segment.startTime) + " ";
                        std::vector<VELHLSEdit> edits = {document.insertBefore(number + 1, "# inserted")};
                        for (const VELHLSUri& uri : document.uris())
                            edits.push_back(document.replaceUri(uri, "u" + std::to_string(number)));
                        return seen + document.apply(edits).text;
                    }),
        0U);
}

TEST(Threads, ReadValidateAndRenderOneMasterPlaylist) {
    std::istringstream input(whole::master);
    const std::shared_ptr<const VELHLSParsedManifest> manifest =
        VELHLSParsedManifest::parseManifest(input, nullptr);
    ASSERT_NE(manifest, nullptr);
    EXPECT_EQ(differences(20,
                          [&manifest](std::size_t /*number*/) {
                              // A copy of each shared pointer, as a caller who keeps records makes it.
                              const auto variants = manifest->variants;
                              const auto renditions = manifest->renditions;
                              std::string text = rendered(*manifest);
                              for (const auto& [bandwidth, variant] : variants)
                                  static_cast<void>(variant->render(text));
                              for (const auto& [type, groups] : renditions) {
                                  for (const auto& [groupId, group] : groups)
                                      static_cast<void>(group.begin()->second->render(text));
                              }
                              for (const auto& key : manifest->sessionKeys)
                                  static_cast<void>(key->render(text));
                              return text;
                          }),
              0U);
}

TEST(Threads, ReadValidateAndRenderOneMediaPlaylist) {
    std::istringstream input(whole::media);
    const std::shared_ptr<const VELHLSMediaStream> stream =
        VELHLSMediaStream::parseMediaStream(input, nullptr);
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(differences(20,
                          [&stream](std::size_t /*number*/) {
                              std::string text = rendered(*stream);
                              const auto segments = stream->segments;
                              for (const auto& segment : segments)
                                  static_cast<void>(segment->render(text, true, true));
                              const auto next = VELHLSMediaSegment::buildNextSegment(
                                  segments.back(), 6.0, nullptr, "the/next/segment.mp4");
                              static_cast<void>(next->render(text, true, true));
                              return text + VELHLSUtility::substituteVariables(
                                                "{$the-folder-of-the-segment}/end", stream->hlsDefineMap);
                          }),
              0U);
}

std::shared_ptr<VELHLSMediaStream> streamOfSegments(std::size_t count) {
    std::string text = "#EXTM3U\n";
    for (std::size_t index = 0; index < count; ++index) {
        text += "#EXTINF:4,\n#EXT-X-BYTERANGE:1000@" + std::to_string(index) +
                "\na/segment/with/a/long/uri/" + std::to_string(index) + ".ts\n";
    }
    std::istringstream input(text);
    return VELHLSMediaStream::parseMediaStream(input, nullptr);
}

/// What is dealt out to the threads, each of which lets go of its share. The threads have nothing else in common, such
/// as a sum or a key: counting those would put them in an order, and hide what is wrong.
template <typename Record>
void releaseTogether(std::vector<std::shared_ptr<Record>> records) {
    std::vector<std::vector<std::shared_ptr<Record>>> shares(threadCount);
    for (std::size_t index = 0; index < records.size(); ++index)
        shares[index % threadCount].push_back(std::move(records[index]));
    onAllThreads([&shares](std::size_t number) {
        for (auto& record : shares[number]) {
            EXPECT_EQ(record.use_count(), 1);
            record = nullptr;
        }
    });
}

/// Neighbours in the playlist share their memory.
TEST(Threads, ReleaseTheSegmentsOfOnePlaylistTogether) {
    for (const std::size_t count : {8U, 9U, 64U, 65U, 1000U})
        releaseTogether(std::move(streamOfSegments(count)->segments));
}

TEST(Threads, ReleaseTheByteRangesOfOnePlaylistTogether) {
    for (const std::size_t count : {8U, 9U, 64U, 65U, 1000U}) {
        std::vector<std::shared_ptr<VELHLSByteRange>> ranges;
        const std::shared_ptr<VELHLSMediaStream> stream = streamOfSegments(count);
        for (const auto& segment : stream->segments)
            ranges.push_back(std::move(segment->byteRange));
        releaseTogether(std::move(ranges));
    }
}

TEST(Threads, ReleaseOnePlaylistTogether) {
    for (int round = 0; round < 20; ++round) {
        std::vector<std::shared_ptr<VELHLSMediaStream>> streams(threadCount, streamOfSegments(100));
        onAllThreads([&streams](std::size_t number) { streams[number] = nullptr; });
    }
}

/// While others let go of what an earlier parse made.
TEST(Threads, ParseWhileOthersReleaseSegments) {
    std::vector<std::shared_ptr<VELHLSMediaStream>> streams;
    for (std::size_t number = 0; number < threadCount; ++number)
        streams.push_back(streamOfSegments(200));
    std::vector<std::size_t> segments(threadCount);
    onAllThreads([&](std::size_t number) {
        for (int round = 0; round < 5; ++round) {
            if (number % 2 == 0) {
                segments[number] += streamOfSegments(200)->segments.size();
            } else if (streams[number] != nullptr) {
                streams[number]->segments.pop_back();
                segments[number] += 1;
            }
        }
        streams[number] = nullptr;
    });
    EXPECT_EQ(std::accumulate(segments.begin(), segments.end(), std::size_t{0}),
              threadCount / 2 * (5 * 200 + 5));
}

}  // namespace
