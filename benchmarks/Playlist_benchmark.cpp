#include <cstdint>
#include <sstream>
#include <string>

#include <benchmark/benchmark.h>

#include "velhls/VELHLS.h"

namespace {

std::string masterPlaylist(std::int64_t variants) {
    std::string text = "#EXTM3U\n#EXT-X-VERSION:6\n";
    for (std::int64_t index = 0; index < variants; ++index) {
        text += "#EXT-X-STREAM-INF:BANDWIDTH=" + std::to_string(500000 + index * 1000) +
                ",AVERAGE-BANDWIDTH=" + std::to_string(400000 + index * 1000) +
                ",CODECS=\"avc1.64001f,mp4a.40.2\",RESOLUTION=1280x720\nvideo/" + std::to_string(index) +
                "/index.m3u8\n";
    }
    return text;
}

std::string mediaPlaylist(std::int64_t segments) {
    std::string text = "#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:7\n";
    for (std::int64_t index = 0; index < segments; ++index) {
        text += "#EXTINF:6." + std::to_string(100 + index * 7919 % 900) + ",\nsegment_" +
                std::to_string(1000000 + index) + ".ts\n";
    }
    return text + "#EXT-X-ENDLIST\n";
}

template <typename Playlist>
void report(benchmark::State& state, const std::string& text, const Playlist& playlist) {
    if (playlist == nullptr) state.SkipWithError("the playlist was rejected");
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void parseMaster(benchmark::State& state) {
    const std::string text = masterPlaylist(state.range(0));
    std::shared_ptr<VELHLSParsedManifest> manifest;
    for ([[maybe_unused]] auto iteration : state) {
        std::istringstream input(text);
        manifest = VELHLSParsedManifest::parseManifest(input, nullptr);
    }
    report(state, text, manifest);
}
BENCHMARK(parseMaster)->Arg(12)->Arg(10000);

void parseMedia(benchmark::State& state) {
    const std::string text = mediaPlaylist(state.range(0));
    std::shared_ptr<VELHLSMediaStream> stream;
    for ([[maybe_unused]] auto iteration : state) {
        std::istringstream input(text);
        stream = VELHLSMediaStream::parseMediaStream(input, nullptr);
    }
    report(state, text, stream);
}
BENCHMARK(parseMedia)->Arg(6)->Arg(100000);

template <typename Playlist>
void render(benchmark::State& state, const std::string& text, const Playlist& playlist) {
    for ([[maybe_unused]] auto iteration : state) {
        std::ostringstream output;
        benchmark::DoNotOptimize(playlist->render(output));
    }
    report(state, text, playlist);
}

void renderMaster(benchmark::State& state) {
    const std::string text = masterPlaylist(state.range(0));
    std::istringstream input(text);
    render(state, text, VELHLSParsedManifest::parseManifest(input, nullptr));
}
BENCHMARK(renderMaster)->Arg(12)->Arg(10000);

void renderMedia(benchmark::State& state) {
    const std::string text = mediaPlaylist(state.range(0));
    std::istringstream input(text);
    render(state, text, VELHLSMediaStream::parseMediaStream(input, nullptr));
}
BENCHMARK(renderMedia)->Arg(6)->Arg(100000);

}  // namespace
