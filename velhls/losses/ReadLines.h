// Internal to the library, not installed: the lines of a playlist, with what a reader made of them.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "velhls/common/Reading.h"
#include "velhls/document/TextLines.h"
#include "velhls/losses/Loss.h"

namespace velhls {

/// Goes through the lines that were read, one after the other. All of what it is given must outlive it.
class ReadLines {
  public:
    enum class Kind { master, media };

    ReadLines(const TextLines& lines, const Reading& reading, Kind kind,
              std::optional<bool> pairsStreamInformation);

    /// Gives the next line, which is good until the one after it. False when there is none.
    [[nodiscard]] bool next(LossLine& line);

    /// A line without its attributes. Its text is a view into the text, or into `memory`.
    [[nodiscard]] LossLine lineAt(std::size_t number, std::string& memory) const;

    /// What the lines that were gone through said.
    [[nodiscard]] const LossPlaylist& playlist() const { return playlist_; }

    [[nodiscard]] LineRole roleOf(std::size_t number) const { return roles_[number]; }

  private:
    void setRoles(const RecordLines& record);
    void readAttributes(LossLine& line);
    void note(const LossLine& line);
    void noteIncrement(std::string_view value);

    const TextLines& lines_;
    Kind kind_;
    std::size_t count_;
    std::size_t number_ = 0;
    std::vector<LineRole> roles_;
    std::vector<bool> areKept_;
    LossPlaylist playlist_;
    LossLine line_;
    std::string memory_;
    WrittenAttributes attributes_;
};

}  // namespace velhls
