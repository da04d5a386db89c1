#include "tool/Compare.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>
#include <utility>

#include "tool/CompareReport.h"
#include "tool/OutputFile.h"
#include "tool/Path.h"
#include "tool/Printable.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

std::unique_ptr<VELHLSDocument> documentOf(const std::string& path, std::size_t mostBytes) {
    std::string text = contentOf(path, mostBytes);
    if (text.size() > VELHLSDocument::maximumBytes)
        throw Failure(unusable, nameInMessages(path) + ": error: cannot be compared: larger than 4 GiB");
    return std::make_unique<VELHLSDocument>(std::move(text));
}

std::string kindOf(const VELHLSDocument& document) {
    if (document.kind() == VELHLSDocument::Neither) return "no playlist";
    return document.kind() == VELHLSDocument::Master ? "a master playlist" : "a media playlist";
}

ComparedPair comparePair(const std::string& oldPath, const VELHLSDocument& old, const std::string& newPath,
                         const VELHLSDocument& now, const CompareRequest& request) {
    ComparedPair pair;
    pair.oldPath = oldPath;
    pair.newPath = newPath;
    auto comparison = VELHLSComparison::compare(old, now, {request.elapsedSeconds});
    if (!comparison) {
        pair.failure = nameInMessages(newPath) + ": error: cannot be compared: it is " + kindOf(now) +
                       ", and " + nameInMessages(oldPath) + " is " + kindOf(old);
        return pair;
    }
    pair.kind = now.kind() == VELHLSDocument::Master ? "master" : "media";
    pair.comparison = std::move(*comparison);
    return pair;
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

std::vector<std::string> versionsOf(const CompareRequest& request) {
    std::vector<std::string> versions;
    for (const std::string& path : request.paths) {
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

/// Compares each version with the one before, and holds no more than these two.
class Series {
  public:
    explicit Series(const CompareRequest& request) : request_(request), isJson_(request.format == "json") {}

    ExitStatus run() {
        const std::vector<std::string> versions = versionsOf(request_);
        if (isJson_) writeToStandardOutput(SeriesJson::start());
        for (const std::string& path : versions)
            take(path);
        summary_.versions = versions.size();
        writeToStandardOutput(isJson_ ? json_.end(summary_) : summaryAsText(summary_));
        return summary_.status();
    }

  private:
    /// A version that cannot be read is left out: the next one is compared with the one before it.
    void take(const std::string& path) {
        std::unique_ptr<VELHLSDocument> now;
        try {
            now = documentOf(path, request_.mostBytes);
        } catch (const Failure& failure) {
            return report({beforePath_, path, {}, {}, failure.what()});
        }
        if (before_ != nullptr) report(comparePair(beforePath_, *before_, path, *now, request_));
        before_ = std::move(now);
        beforePath_ = path;
    }

    void report(const ComparedPair& pair) {
        summary_.add(pair);
        if (!pair.failure.empty()) static_cast<void>(std::fprintf(stderr, "%s\n", pair.failure.c_str()));
        if (isJson_) return writeToStandardOutput(json_.step(pair));
        const std::string text = comparisonAsText(pair, request_.quiet ? Changes::LeftOut : Changes::Listed);
        if (text.empty()) return;
        writeToStandardOutput(nameInMessages(pair.oldPath) + " \xE2\x86\x92 " + nameInMessages(pair.newPath) +
                              "\n" + text);
    }

    const CompareRequest& request_;
    bool isJson_;
    std::unique_ptr<VELHLSDocument> before_;
    std::string beforePath_;
    SeriesSummary summary_;
    SeriesJson json_;
};

}  // namespace

ExitStatus compare(const CompareRequest& request) {
    if (request.isSeries) return Series(request).run();
    if (request.paths.size() != 2)
        throw Failure(unusable, "velhls: error: compare: expected OLD and NEW, seen " +
                                    std::to_string(request.paths.size()) + " files (--series takes more)");
    const std::string& oldPath = request.paths[0];
    const std::string& newPath = request.paths[1];
    if (oldPath == standardInput && newPath == standardInput)
        throw Failure(unusable, "velhls: error: compare: standard input cannot be read twice");
    const auto old = documentOf(oldPath, request.mostBytes);
    const auto now = documentOf(newPath, request.mostBytes);
    const ComparedPair pair = comparePair(oldPath, *old, newPath, *now, request);
    if (!pair.failure.empty()) throw Failure(unusable, pair.failure);
    writeToStandardOutput(request.format == "json"
                              ? comparisonAsJson(pair)
                              : comparisonAsText(pair, request.quiet ? Changes::LeftOut : Changes::Listed));
    return pair.status();
}

}  // namespace tool
