#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tool/ComparedPair.h"

namespace tool {

/// The versions of a series: the files in their order, and of a folder the playlists in it in that of their names. Throws a Failure
/// for a folder that cannot be read, and for fewer than two versions.
[[nodiscard]] std::vector<std::string> versionsOf(const std::vector<std::string>& paths);

/// Reads a version. Throws a Failure when it cannot be read or is too large.
[[nodiscard]] std::unique_ptr<VELHLSDocument> readVersion(const std::string& path, std::size_t mostBytes);

/// What lies between two versions, or why that cannot be told.
[[nodiscard]] ComparedPair comparePair(const std::string& oldPath, const VELHLSDocument& old,
                                       const std::string& newPath, const VELHLSDocument& now,
                                       std::optional<double> elapsedSeconds);

}  // namespace tool
