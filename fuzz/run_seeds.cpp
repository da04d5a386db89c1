// Runs a fuzz target over files and folders of seeds, without libFuzzer:
//
//     fuzz_seeds TARGET PATH...
//
// A relation that does not hold ends the program by a signal, after the name of the seed.
#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/targets.h"

namespace {

std::vector<std::filesystem::path> filesAt(const std::filesystem::path& path) {
    if (!std::filesystem::is_directory(path)) return {path};
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(path)) {
        if (entry.is_regular_file()) files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

bool run(fuzz::RunTarget target, const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    if (!file) return false;
    text << file.rdbuf();
    static_cast<void>(std::fprintf(stderr, "%s\n", path.c_str()));
    target(text.str());
    return true;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    const std::vector<std::string> words(arguments, arguments + argumentCount);
    fuzz::RunTarget target = nullptr;
    for (const fuzz::NamedTarget& named : fuzz::targets) {
        if (words.size() > 1 && words[1] == named.name) target = named.run;
    }
    if (target == nullptr) {
        static_cast<void>(std::fprintf(stderr, "error: expected the name of a fuzz target\n"));
        return 1;
    }
    std::size_t count = 0;
    for (std::size_t index = 2; index < words.size(); ++index) {
        for (const std::filesystem::path& path : filesAt(words[index])) {
            if (!run(target, path)) {
                static_cast<void>(std::fprintf(stderr, "error: cannot read %s\n", path.c_str()));
                return 1;
            }
            ++count;
        }
    }
    if (count == 0) {
        static_cast<void>(std::fprintf(stderr, "error: no seeds\n"));
        return 1;
    }
    std::printf("%zu seeds\n", count);
    return 0;
}
