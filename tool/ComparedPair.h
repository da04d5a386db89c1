#pragma once

#include <cstddef>
#include <map>
#include <string>

#include "velhls/VELHLSCheck.h"

#include "tool/Failure.h"

namespace tool {

/// Two versions of a playlist, and what lies between them.
struct ComparedPair {
    std::string oldPath;
    std::string newPath;
    /// "master" or "media".
    std::string kind;
    VELHLSComparison comparison;
    /// Why they cannot be compared: a whole message. Empty when they were.
    std::string failure;

    /// 3 for what is forbidden, 1 for any other change, 2 when they cannot be compared, else 0. A note alone changes nothing.
    [[nodiscard]] ExitStatus status() const;
};

/// What a series of versions comes to.
struct SeriesSummary {
    std::size_t versions = 0;
    std::size_t unchanged = 0;
    std::size_t changed = 0;
    std::size_t forbidden = 0;
    std::size_t failed = 0;
    std::size_t errors = 0;
    std::size_t warnings = 0;
    std::size_t notes = 0;
    /// How many findings each rule has.
    std::map<std::string, std::size_t> rules;

    void add(const ComparedPair& pair);
    /// That of the worst pair: 2 where one cannot be compared.
    [[nodiscard]] ExitStatus status() const;
};

}  // namespace tool
