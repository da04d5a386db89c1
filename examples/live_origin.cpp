// Makes the playlist of a live channel second by second, from records that are built and not parsed: a window that slides,
// dates, a break with discontinuities, a key that changes and one that ends. Shows each version in both forms:
//
//     example_live_origin 6
//
// What VELHLSPlaylistWriter writes is for players. What render writes is what this library always rendered.

#include <cstddef>
#include <cstdint>
#include <exception>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "velhls/VELHLS.h"

namespace {

using Key = VELHLSProtectionData;
using Segment = VELHLSMediaSegment;

/// The second at which the first segment begins: 2026-03-01T10:00:04Z.
constexpr double firstDate = 1772359204.0;

class LiveOrigin {
  public:
    LiveOrigin() {
        // It must hold for every segment to come, since players do not expect it to change.
        playlist_.targetDuration = 2.0;
        playlist_.version = 3;
    }

    [[nodiscard]] const VELHLSMediaStream& playlist() const { return playlist_; }

    /// Appends the segment that has just been made.
    void append(double duration, const std::string& uri) {
        const auto segment = std::make_shared<Segment>();
        segment->duration = duration;
        segment->uri = uri;
        segment->programDateTime = nextDate_;
        segment->discontinuity = breaksHere_;
        segment->protectionData = key_;
        playlist_.segments.push_back(segment);
        nextDate_ += duration;
        breaksHere_ = false;
        while (playlist_.segments.size() > mostSegments)
            dropOldest();
    }

    /// The next segment does not continue the last one.
    void breakHere() { breaksHere_ = true; }

    /// The key of the next segments.
    void encryptWith(const std::string& keyUri) {
        key_ = std::make_shared<Key>();
        key_->method = Key::AES128;
        key_->uri = keyUri;
    }

    /// The next segments are not encrypted. A null key would only mean that none is written: to render, the last one would
    /// still hold.
    void endEncryption() { key_ = std::make_shared<Key>(); }

  private:
    static constexpr std::size_t mostSegments = 4;

    /// The playlist's numbers are those of its first segment: they rise with each segment, and with each discontinuity,
    /// that goes (RFC 8216, section 6.2.2).
    void dropOldest() {
        playlist_.mediaSequence += 1;
        if (playlist_.segments.front()->discontinuity) playlist_.discontinuitySequence += 1;
        playlist_.segments.erase(playlist_.segments.begin());
    }

    VELHLSMediaStream playlist_;
    std::shared_ptr<Key> key_;
    double nextDate_ = firstDate;
    bool breaksHere_ = false;
};

void goOn(LiveOrigin& origin, int second) {
    if (second == 2) origin.encryptWith("https://keys.example.com/1");
    if (second == 3) origin.encryptWith("https://keys.example.com/2");
    if (second == 4) {
        origin.endEncryption();
        origin.breakHere();
    }
    if (second == 6) origin.breakHere();
    origin.append(1.001, "channel_" + std::to_string(second) + ".ts");
}

/// False when the playlist cannot be written.
bool show(const VELHLSMediaStream& playlist, int second) {
    std::cout << "== second " << second << ", for players\n";
    // Each segment has its date from the beginning, so that the one that becomes the first gains none.
    VELHLSWriterOptions options;
    options.everyDate = true;
    if (const std::optional<std::string> refusal =
            VELHLSPlaylistWriter::write(playlist, std::cout, options)) {
        std::cerr << "cannot be written: " << *refusal << "\n";
        return false;
    }
    std::cout << "== second " << second << ", rendered\n";
    return playlist.render(std::cout) == 0;
}

int run(int seconds) {
    LiveOrigin origin;
    for (int second = 1; second <= seconds; ++second) {
        goOn(origin, second);
        if (!show(origin.playlist(), second)) return 1;
    }
    return 0;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2) {
        std::cerr << "usage: example_live_origin SECONDS\n";
        return 2;
    }
    try {
        return run(std::stoi(arguments[1]));
    } catch (const std::exception& error) {
        std::cerr << arguments[1] << ": " << error.what() << "\n";
        return 2;
    }
}
