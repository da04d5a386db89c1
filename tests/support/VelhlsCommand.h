#pragma once

#include <cstddef>
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

/// What stands after each of these beginnings, up to the next quote: the values of a member in a report. A std::regex would
/// run out of stack under the sanitizers.
inline std::vector<std::string> quotedAfter(const std::string& beginning, const std::string& report) {
    std::vector<std::string> values;
    for (std::size_t at = report.find(beginning); at != std::string::npos; at = report.find(beginning, at)) {
        at += beginning.size();
        values.push_back(report.substr(at, report.find('"', at) - at));
    }
    return values;
}

}  // namespace command
