#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tool/InputFile.h"

namespace tool {

/// What the command line names as inputs.
struct InputNames {
    /// Files, folders, and "-" for standard input.
    std::vector<std::string> paths;
    /// A file that holds more such names, or "-" for standard input; nothing for none.
    std::optional<std::string> list;
    /// Whether the names of the list end in NUL bytes, and not in line feeds.
    bool isNulSeparated = false;
};

/// One input that was named, or found in a folder.
struct Input {
    std::string path;
    /// Regular for what was found in a folder.
    InputKind kind = InputKind::Any;
    /// Why a folder or the list cannot be read: a whole message. Empty for an input that is to be read.
    std::string failure;
};

/// Goes through all inputs that are named: first the paths in their order, then the names of the list, each as soon as it
/// is there.
///
/// A folder stands for all files below it whose names end in ".m3u8" or ".m3u", in the order of their paths' bytes. Links
/// that are found in it are not followed. What is held is the names that are still to come of each folder on the way down.
class InputWalk {
  public:
    /// The names must live as long as this.
    explicit InputWalk(const InputNames& names);
    ~InputWalk();
    InputWalk(const InputWalk&) = delete;
    InputWalk& operator=(const InputWalk&) = delete;

    /// The next input; nothing after the last one.
    [[nodiscard]] std::optional<Input> next();

    /// How many links were left out: those that are named like playlists or lead to folders.
    [[nodiscard]] std::size_t linksLeftOut() const { return linksLeftOut_; }

  private:
    class NameList;
    struct Pending {
        Input input;
        bool isFolder = false;
    };

    [[nodiscard]] bool takeNextName();
    [[nodiscard]] bool takeNextNameOfList();
    void takeName(const std::string& path);
    void takeFailure(const std::string& path, const std::string& message);
    void enter(const std::string& folder);

    const InputNames& names_;
    std::size_t nextPath_ = 0;
    std::unique_ptr<NameList> list_;
    bool isListRead_ = false;
    /// What comes next, the next one last.
    std::vector<Pending> pending_;
    std::size_t linksLeftOut_ = 0;
};

}  // namespace tool
