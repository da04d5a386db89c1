#include "tool/Versions.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

#include "tool/InputFile.h"
#include "tool/Path.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

std::string kindOf(const VELHLSDocument& document) {
    if (document.kind() == VELHLSDocument::Neither) return "no playlist";
    return document.kind() == VELHLSDocument::Master ? "a master playlist" : "a media playlist";
}

bool isPlaylistName(const fs::path& path) {
    return path.extension() == ".m3u8" || path.extension() == ".m3u";
}

/// The playlists in the folder, in the order of their names' bytes. Those of folders in it are none of the series.
std::vector<std::string> playlistsIn(const std::string& folder) {
    std::vector<std::string> paths;
    try {
        for (const fs::directory_entry& entry : fs::directory_iterator(pathOf(folder))) {
            if (isPlaylistName(entry.path()) && fs::is_regular_file(entry.symlink_status()))
                paths.push_back(textOf(entry.path()));
        }
    } catch (const fs::filesystem_error& error) {
        throw Failure(unusable,
                      nameInMessages(folder) + ": error: cannot be read: " + error.code().message());
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

}  // namespace

std::vector<std::string> versionsOf(const std::vector<std::string>& paths) {
    std::vector<std::string> versions;
    for (const std::string& path : paths) {
        std::error_code ignored;
        if (path == standardInput || !fs::is_directory(pathOf(path), ignored)) {
            versions.push_back(path);
            continue;
        }
        const std::vector<std::string> found = playlistsIn(path);
        versions.insert(versions.end(), found.begin(), found.end());
    }
    if (versions.size() < 2)
        throw Failure(unusable, "velhls: error: --series: expected two versions or more, seen " +
                                    std::to_string(versions.size()));
    return versions;
}

std::unique_ptr<VELHLSDocument> readVersion(const std::string& path, std::size_t mostBytes) {
    std::string text = contentOf(path, mostBytes);
    if (text.size() > VELHLSDocument::maximumBytes)
        throw Failure(unusable, nameInMessages(path) + ": error: cannot be compared: larger than 4 GiB");
    return std::make_unique<VELHLSDocument>(std::move(text));
}

ComparedPair comparePair(const std::string& oldPath, const VELHLSDocument& old, const std::string& newPath,
                         const VELHLSDocument& now, std::optional<double> elapsedSeconds) {
    ComparedPair pair;
    pair.oldPath = oldPath;
    pair.newPath = newPath;
    auto comparison = VELHLSComparison::compare(old, now, {elapsedSeconds});
    if (!comparison) {
        pair.failure = nameInMessages(newPath) + ": error: cannot be compared: it is " + kindOf(now) +
                       ", and " + nameInMessages(oldPath) + " is " + kindOf(old);
        return pair;
    }
    pair.kind = now.kind() == VELHLSDocument::Master ? "master" : "media";
    pair.comparison = std::move(*comparison);
    return pair;
}

}  // namespace tool
