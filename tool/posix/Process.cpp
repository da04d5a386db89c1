#include "tool/Process.h"

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace tool {
namespace {

/// Without standard input, output or error the next file that is opened would take its place, and a message
/// would be written into a playlist. What stands in for it here can neither be read nor written as it should.
void occupyStandardDescriptors() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(descriptor, F_GETFD) >= 0) continue;
        // The lowest number that is free is this one.
        static_cast<void>(::open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY));
    }
}

}  // namespace

std::vector<std::string> startProcess(int argumentCount, char** arguments) {
    // A file that grows beyond what the user may write is then told of like a full disk. A pipe that is closed
    // early ends the command without a word, as it ends others.
    static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
    occupyStandardDescriptors();
    return {arguments, arguments + argumentCount};
}

bool isOutputATerminal() {
    return ::isatty(STDOUT_FILENO) == 1;
}

}  // namespace tool
