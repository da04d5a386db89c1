// Tells where two audio groups of a master playlist differ. Groups that do have the playlist rejected, so this reads the
// EXT-X-MEDIA lines one by one.
//
//     example_compare_audio_groups stereo surround examples/audio-groups.m3u8

#include <exception>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <string>

#include "velhls/VELHLS.h"

namespace {

using Rendition = VELHLSMediaStreamRendition;
using Group = std::map<std::string, std::shared_ptr<Rendition>>;

/// The audio groups by GROUP-ID. A line that is no valid EXT-X-MEDIA is told of and left out.
std::map<std::string, Group> audioGroupsOf(std::istream& input) {
    std::map<std::string, Group> groups;
    for (std::string line; std::getline(input, line);) {
        if (line.compare(0, 13, "#EXT-X-MEDIA:") != 0) continue;
        const auto rendition = Rendition::parse(line);
        if (rendition == nullptr) {
            std::cerr << "not valid: " << line << "\n";
        } else if (rendition->type == Rendition::Audio) {
            groups[rendition->groupId].emplace(rendition->name, rendition);
        }
    }
    return groups;
}

int tellMissing(const Group& group, const std::string& otherId, const Group& other) {
    int count = 0;
    for (const auto& [name, rendition] : group) {
        if (other.count(name) != 0) continue;
        std::cout << otherId << " lacks \"" << name << "\"\n";
        ++count;
    }
    return count;
}

void tell(const char* attribute, const std::string& first, const std::string& second) {
    if (first != second)
        std::cout << "    " << attribute << ": \"" << first << "\" and \"" << second << "\"\n";
}

void tell(const char* attribute, bool first, bool second) {
    tell(attribute, std::string(first ? "YES" : "NO"), std::string(second ? "YES" : "NO"));
}

int tellDifferences(const Group& group, const Group& other) {
    int count = 0;
    for (const auto& [name, rendition] : group) {
        const auto found = other.find(name);
        if (found == other.end() || rendition->equalExceptURIAndGroupID(found->second)) continue;
        std::cout << "\"" << name << "\" differs\n";
        tell("LANGUAGE", rendition->language, found->second->language);
        tell("ASSOC-LANGUAGE", rendition->assocLanguage, found->second->assocLanguage);
        tell("DEFAULT", rendition->isDefault, found->second->isDefault);
        tell("AUTOSELECT", rendition->autoSelect, found->second->autoSelect);
        if (rendition->characteristics != found->second->characteristics)
            std::cout << "    CHARACTERISTICS\n";
        ++count;
    }
    return count;
}

int run(const std::string& firstId, const std::string& secondId, const std::string& path) {
    std::ifstream input(path);
    if (!input.is_open()) {
        std::cerr << path << ": cannot be opened\n";
        return 1;
    }
    const auto groups = audioGroupsOf(input);
    const auto first = groups.find(firstId);
    const auto second = groups.find(secondId);
    if (first == groups.end() || second == groups.end()) {
        std::cerr << path << ": missing, or without these groups\n";
        return 1;
    }
    const int count = tellMissing(first->second, secondId, second->second) +
                      tellMissing(second->second, firstId, first->second) +
                      tellDifferences(first->second, second->second);
    std::cout << count << (count == 1 ? " difference\n" : " differences\n");
    return 0;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 4) {
        std::cerr << "usage: example_compare_audio_groups GROUP GROUP MASTER\n";
        return 2;
    }
    try {
        return run(arguments[1], arguments[2], arguments[3]);
    } catch (const std::exception& error) {
        std::cerr << arguments[3] << ": " << error.what() << "\n";
        return 1;
    }
}
