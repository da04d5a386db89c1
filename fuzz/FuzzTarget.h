// What the fuzz targets share: how a target is defined, how it fails, and how the cost of the library's work is bounded.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "tests/heap/Heap.h"
#include "tests/support/Outcome.h"

/// Defines a fuzz target: what is done with one text. In the program that runs the seeds all targets stand beside each
/// other, each under its name.
#ifdef VELHLS_SEED_RUNNER
#define VELHLS_FUZZ_TARGET(name) void fuzz_##name(const std::string& text)
#else
#define VELHLS_FUZZ_TARGET(name)                                                        \
    static void runTarget(const std::string& text);                                     \
    extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) { \
        runTarget(std::string(reinterpret_cast<const char*>(data), size));              \
        return 0;                                                                       \
    }                                                                                   \
    static void runTarget(const std::string& text)
#endif

namespace fuzz {

/// Ends the program, which is how a target says that a relation does not hold.
[[noreturn]] inline void fail(const std::string& relation, const std::string& what = "") {
    static_cast<void>(std::fprintf(stderr, "broken: %s\n%s\n", relation.c_str(), what.c_str()));
    std::abort();
}

inline void expect(bool holds, const char* relation, const std::string& what = "") {
    if (!holds) fail(relation, what);
}

inline void expectEqual(const std::string& seen, const std::string& expected, const char* relation) {
    if (seen != expected) fail(relation, "expected: " + expected + "\nseen:     " + seen);
}

/// The result of the work; a value-initialised one when an exception of number conversion leaves it.
template <typename Work>
auto resultOf(Work work) -> decltype(work()) {
    try {
        return work();
    } catch (const std::invalid_argument&) {
        return {};
    } catch (const std::out_of_range&) {
        return {};
    }
}

/// How much the library may take for a text: so many bytes of memory for each byte of it and as many at least, at the
/// peak; and processor time that grows with it. docs/fuzzing.md lists the multiples.
struct Cost {
    std::size_t memoryPerByte;
    std::size_t memoryAtLeast = std::size_t{16} << 10;
    /// Some twenty times what is needed under the sanitizers.
    double secondsPerByte = 4e-6;
    double secondsAtLeast = 0.5;
};

/// Does the work and returns its result; fails when it took more than the cost that a text of so many bytes may have.
template <typename Work>
auto bounded(std::size_t textBytes, const Cost& cost, Work work) -> decltype(work()) {
    class Measurement {
      public:
        Measurement(std::size_t textBytes, const Cost& cost)
            : textBytes_(textBytes), cost_(cost), start_(std::clock()), memory_(heap::bytesInUse()) {
            heap::forgetTheMost();
        }
        ~Measurement() {
            const std::size_t peak = heap::mostBytesInUse() - memory_;
            const double seconds = static_cast<double>(std::clock() - start_) / CLOCKS_PER_SEC;
            const std::size_t mostMemory = cost_.memoryAtLeast + cost_.memoryPerByte * textBytes_;
            const double mostSeconds =
                cost_.secondsAtLeast + cost_.secondsPerByte * static_cast<double>(textBytes_);
            if (peak > mostMemory) {
                fail("memory per byte", std::to_string(peak) + " bytes for " + std::to_string(textBytes_));
            }
            if (seconds > mostSeconds) {
                fail("time per byte", std::to_string(seconds) + " s for " + std::to_string(textBytes_));
            }
        }
        Measurement(const Measurement&) = delete;
        Measurement& operator=(const Measurement&) = delete;

      private:
        std::size_t textBytes_;
        const Cost& cost_;
        std::clock_t start_;
        std::size_t memory_;
    };
    const Measurement measurement(textBytes, cost);
    return work();
}

/// What takes time or memory that grows faster than the text shows in long texts alone: some of the inputs, the same ones in
/// every run, are repeated up to a quarter of a mebibyte. Empty for all others.
inline std::string prolonged(const std::string& text, const std::string& separator) {
    constexpr std::size_t length = std::size_t{256} << 10;
    constexpr unsigned oneOf = 64;
    unsigned sum = 0;
    for (const char character : text)
        sum += static_cast<unsigned char>(character);
    if (text.empty() || sum % oneOf != 0) return {};
    std::string repeated = text;
    repeated.reserve(length + text.size() + separator.size());
    while (repeated.size() < length)
        repeated += separator + text;
    return repeated;
}

/// Takes the parts of a text that are divided by line feeds, one after the other; the last part may be all that is left.
class Parts {
  public:
    explicit Parts(std::string_view text) : rest_(text) {}

    std::string next() {
        const std::size_t feed = rest_.find('\n');
        const std::string part(rest_.substr(0, feed));
        rest_ = feed == std::string_view::npos ? std::string_view() : rest_.substr(feed + 1);
        return part;
    }

    [[nodiscard]] bool empty() const { return rest_.empty(); }
    [[nodiscard]] std::string rest() const { return std::string(rest_); }

  private:
    std::string_view rest_;
};

}  // namespace fuzz
