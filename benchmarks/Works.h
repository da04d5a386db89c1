// What is measured: parses, renders and documents, each beside its floor.
//
// A floor is the least that the same result could take with plain means:
// - R, reading: std::getline over the same stream into one string, nothing else;
// - O, objects: R, and for each record one plain std::make_shared with its URI copied in, pushed to a vector;
// - W, writing: the rendered text appended to a string from ready pieces and std::to_chars for each duration,
//   then put to the stream once;
// - P, parsing: of a check, the models' parse of the same text in memory;
// - stream: of a parse of a text in memory, that of a stream over the same text.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

/// Something to run again and again: prepare() and drop() are not part of what is measured.
class Work {
  public:
    virtual ~Work() = default;

    virtual void prepare() = 0;
    virtual void run() = 0;
    /// Throws away what the run made; throws std::runtime_error when that is not what it should have been.
    virtual void drop() = 0;
};

struct Measurement {
    std::string name;
    /// Segments or variants that one run handles, lines of a document, and the bytes of the playlist's text.
    std::size_t items;
    std::size_t bytes;
    /// How many runs are one sample: short ones are repeated.
    std::size_t runsPerSample;
    std::unique_ptr<Work> work;
    std::string floorName;
    std::unique_ptr<Work> floor;
};

/// All names, in the order of the table.
std::vector<std::string> measurementNames();

/// Throws std::invalid_argument for a name that is none.
Measurement makeMeasurement(const std::string& name);
