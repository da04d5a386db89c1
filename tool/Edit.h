#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tool/InputFile.h"

namespace tool {

/// What `velhls edit` is asked for.
struct EditRequest {
    std::string input = standardInput;
    std::string output = standardInput;
    /// Replace the file, and write nothing else unless a difference is asked for.
    bool inPlace = false;
    /// Write what changes, and not the text.
    bool asDiff = false;
    std::size_t mostBytes = usualLargestInput;

    /// Empty for none.
    std::string base;
    std::string query;
    std::optional<std::uint64_t> leastBandwidth;
    std::optional<std::uint64_t> mostBandwidth;
    std::vector<std::string> droppedCodecs;
    /// "TAG:NAME=VALUE".
    std::vector<std::string> set;
    /// "TAG" or "TAG:NAME".
    std::vector<std::string> removed;
    std::vector<std::pair<std::size_t, std::string>> inserted;
};

/// Makes the edits and writes the new text. Throws a Failure, with nothing written, when a file cannot be read or written,
/// when an option does not fit the playlist, and when an edit is refused.
void edit(const EditRequest& request);

}  // namespace tool
