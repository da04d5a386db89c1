#pragma once

#include <cstddef>
#include <string>

namespace tool {

/// A folder below which files may be read, whoever named them, and nothing else.
class FolderBelow {
  public:
    /// Throws a Failure when there is no such folder.
    explicit FolderBelow(const std::string& path);

    /// What a path leads to.
    struct Target {
        /// Its real path; empty when it is not there, or not to be read.
        std::string realPath;
        /// Why it is not to be read; empty when it is not there.
        std::string whyNot;
    };

    /// Looks where a path leads, links followed, and opens nothing: to a regular file below the folder, or it is not to be read.
    [[nodiscard]] Target find(const std::string& path) const;

    /// All bytes of the file that `find` found. Throws a Failure when it cannot be read, has more than so many bytes, or is
    /// no longer reached without links.
    [[nodiscard]] std::string contentOf(const std::string& realPath, std::size_t mostBytes) const;

  private:
    std::string realPath_;
};

}  // namespace tool
