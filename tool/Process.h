#pragma once

#include <string>
#include <vector>

/// What a process has of its system.
namespace tool {

/// The arguments in UTF-8, with the name of the program, once the process has what the command needs: standard streams
/// that are open and change no byte, and no signal for a file that grows too large.
[[nodiscard]] std::vector<std::string> startProcess(int argumentCount, char** arguments);

[[nodiscard]] bool isOutputATerminal();

}  // namespace tool
