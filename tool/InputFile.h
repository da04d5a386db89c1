#pragma once

#include <cstddef>
#include <string>

namespace tool {

/// The name under which standard input is given.
inline constexpr char standardInput[] = "-";

/// The most that is read of an input unless the command line says otherwise: a million and a half segments.
inline constexpr std::size_t usualLargestInput = std::size_t{64} << 20;

/// The name of an input in messages.
[[nodiscard]] std::string nameInMessages(const std::string& path);

/// What a path may lead to.
enum class InputKind {
    Any,      ///< whatever can be read, pipes and devices too, and what links lead to
    Regular,  ///< a regular file that is no link: what may be read when the path was found, and not given
};

/// An open input, read from its start to its end. (Each system opens files in its own way: tool/posix, tool/windows.)
class InputFile {
  public:
    /// Opens the file, or takes standard input for "-". Throws a Failure when that cannot be done.
    explicit InputFile(const std::string& path, InputKind kind = InputKind::Any);

    /// Opens a regular file that is no link in a folder that is open, as POSIX can; the path is for messages.
    InputFile(const std::string& path, int folder, const std::string& name);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    /// Reads what is there, at most so many bytes, and waits where nothing is there yet. 0 at the end. Throws a Failure
    /// when it cannot be read.
    [[nodiscard]] std::size_t read(char* bytes, std::size_t most);

    /// The size of a regular file; 0 for what only tells its size when it has been read.
    [[nodiscard]] std::size_t size() const;

  private:
    std::string path_;
    int descriptor_;
};

/// All bytes of the file, or of standard input for "-". Throws a Failure when it cannot be read or has more
/// than so many bytes; no more of it is then held in memory.
[[nodiscard]] std::string contentOf(const std::string& path, std::size_t mostBytes,
                                    InputKind kind = InputKind::Any);

/// The same for what is left of an open file; the path is for messages.
[[nodiscard]] std::string contentOf(InputFile& file, const std::string& path, std::size_t mostBytes);

}  // namespace tool
