#pragma once

#include <exception>
#include <istream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <typeinfo>

#include "velhls/VELHLS.h"

#include "tests/support/MediaDescription.h"

/// What work with a text comes to, as a text: two runs agree when their outcomes are equal.
namespace playlist {

/// The exact type of an exception: by its name of the standard where a number conversion throws it.
inline std::string kindOf(const std::exception& error) {
    if (typeid(error) == typeid(std::invalid_argument)) return "invalid_argument";
    if (typeid(error) == typeid(std::out_of_range)) return "out_of_range";
    return typeid(error).name();
}

inline std::string kindAndMessageOf(const std::exception& error) {
    return kindOf(error) + ": " + error.what();
}

/// What the work returns as a text, or the exception of a number conversion that leaves it. Any other
/// exception passes.
template <typename Work>
std::string outcomeOf(Work work, std::string (*told)(const std::exception&) = kindOf) {
    try {
        return work();
    } catch (const std::logic_error& error) {
        return told(error);
    }
}

/// The kind of the exception that the work throws; "nothing" when it returns.
template <typename Work>
std::string thrownBy(Work work) {
    try {
        work();
    } catch (const std::exception& error) {
        return kindOf(error);
    }
    return "nothing";
}

/// How reading leaves a stream: its state, and what is left in it.
inline std::string leftIn(std::istream& input) {
    std::ostringstream text;
    text << "state " << input.rdstate();
    input.clear();
    text << ", unread " << input.rdbuf();
    return text.str();
}

/// The model that a parse makes, field by field, or the exception that leaves it; and the status.
template <typename Parse>
std::string outcomeOfParse(std::istream& input, Parse parse,
                           std::string (*told)(const std::exception&) = kindOf) {
    VELHLSParsingStatus status;
    const std::string model = outcomeOf(
        [&] {
            const auto read = parse(input, &status);
            return read == nullptr ? "rejected" : describe(*read);
        },
        told);
    return model + "\nerror " + std::to_string(status.error) + ", message " + status.message + ", patterns " +
           std::to_string(static_cast<int>(status.hasMediaPatterns));
}

/// All that can be seen of a parse: its outcome, and how it leaves the stream.
template <typename Parse>
std::string outcomeWithStream(std::istream& input, Parse parse,
                              std::string (*told)(const std::exception&) = kindOf) {
    const std::string outcome = outcomeOfParse(input, parse, told);
    return outcome + ", " + leftIn(input);
}

}  // namespace playlist
