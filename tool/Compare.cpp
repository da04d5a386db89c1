#include "tool/Compare.h"

#include <cstdio>
#include <memory>
#include <utility>

#include "tool/CompareReport.h"
#include "tool/OutputFile.h"
#include "tool/Versions.h"

namespace tool {
namespace {

/// Compares each version with the one before, and holds no more than these two.
class Series {
  public:
    explicit Series(const CompareRequest& request) : request_(request), isJson_(request.format == "json") {}

    ExitStatus run() {
        const std::vector<std::string> versions = versionsOf(request_.paths);
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
            now = readVersion(path, request_.mostBytes);
        } catch (const Failure& failure) {
            return report({beforePath_, path, {}, {}, failure.what()});
        }
        if (before_ != nullptr)
            report(comparePair(beforePath_, *before_, path, *now, request_.elapsedSeconds));
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
    const auto old = readVersion(oldPath, request.mostBytes);
    const auto now = readVersion(newPath, request.mostBytes);
    const ComparedPair pair = comparePair(oldPath, *old, newPath, *now, request.elapsedSeconds);
    if (!pair.failure.empty()) throw Failure(unusable, pair.failure);
    writeToStandardOutput(request.format == "json"
                              ? comparisonAsJson(pair)
                              : comparisonAsText(pair, request.quiet ? Changes::LeftOut : Changes::Listed));
    return pair.status();
}

}  // namespace tool
