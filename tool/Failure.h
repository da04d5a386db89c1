#pragma once

#include <stdexcept>
#include <string>

namespace tool {

/// The exit statuses of the command.
enum ExitStatus : int {
    success = 0,
    rejected = 1,   ///< a playlist was read and is not accepted, or is not what it was
    unusable = 2,   ///< the command line, or a file that cannot be read or written
    forbidden = 3,  ///< two versions of a playlist differ as RFC 8216 forbids
};

/// What ends a command: a whole message, and the exit status that goes with it.
class Failure : public std::runtime_error {
  public:
    Failure(ExitStatus exitStatus, const std::string& message)
        : std::runtime_error(message), exitStatus(exitStatus) {}

    ExitStatus exitStatus;
};

}  // namespace tool
