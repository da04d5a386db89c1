#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/RunCommand.h"

/// How the tests of the command call it.
namespace command {

inline Outcome velhls(std::vector<std::string> arguments, const std::string& input = "",
                      const std::string& output = "") {
    arguments.insert(arguments.begin(), VELHLS_COMMAND);
    return run(arguments, input, output);
}

/// With what the child does before it becomes the command.
inline Outcome velhls(std::vector<std::string> arguments, const std::function<void()>& prepare) {
    arguments.insert(arguments.begin(), VELHLS_COMMAND);
    return runPrepared(arguments, prepare);
}

/// Checks by what the library makes of a playlist, but for the EXT-X-START that it adds to most.
inline Outcome checkByLibrary(std::vector<std::string> options, const std::string& input = "") {
    options.insert(options.begin(), {"check", "--profile=library", "--disable=start-added"});
    return velhls(std::move(options), input);
}

}  // namespace command
