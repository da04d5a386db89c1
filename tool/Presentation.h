#pragma once

#include <cstddef>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velhls/VELHLSCheck.h"

namespace tool {

/// Whether and how far master playlists are followed.
struct FollowRequest {
    bool isAsked = false;
    /// The folder below which files are read; empty for that of the master playlist.
    std::string root;
};

/// What came of the URIs of a master playlist.
struct FollowedUris {
    std::size_t read = 0;
    /// Those that name nothing that is there.
    std::size_t missing = 0;
    /// Those that were not to be read, or could not be.
    std::size_t refused = 0;
    /// Those of the network, and all others that name no local file.
    std::size_t network = 0;
    /// Those whose variables were not replaced.
    std::size_t variable = 0;
};

/// A file of a presentation.
struct PresentationFile {
    /// As messages and reports name it: the folder of the master playlist as it was given, and what follows.
    std::string path;
    std::string realPath;
    VELHLSPresentation::Use use = VELHLSPresentation::Use::Playlist;
    VELHLSDocument document;
};

/// The local files that a master playlist names, each read once, and what their presentation breaks.
class PresentationFiles {
  public:
    /// Reads the files, each of at most so many bytes, and of all together four times as many. Throws a Failure when the root
    /// is no folder.
    PresentationFiles(const std::string& masterPath, std::string_view masterText,
                      const FollowRequest& request, std::size_t mostBytes);

    /// In the order in which the master playlist names them. The master playlist is not among them.
    [[nodiscard]] const std::deque<PresentationFile>& files() const { return files_; }
    [[nodiscard]] const FollowedUris& uris() const { return uris_; }
    /// The URIs that may name local files, with what came of each.
    [[nodiscard]] const std::vector<VELHLSPresentation::Resource>& resources() const { return resources_; }
    /// The path of each document, the master playlist's among them.
    [[nodiscard]] std::map<const VELHLSDocument*, std::string_view> paths() const;
    /// Bit rates of the variants, as far as byte ranges tell.
    [[nodiscard]] std::vector<VELHLSPresentation::MeasuredRates> measuredRates() const;

    /// What the profiles find. Each finding, and each related place in another file, has the path of its file as its URI.
    [[nodiscard]] std::vector<VELHLSFinding> findings(
        const std::vector<VELHLSDiagnostics::Profile>& profiles) const;

  private:
    class Reader;

    std::string masterPath_;
    VELHLSDocument master_;
    std::deque<PresentationFile> files_;
    std::vector<VELHLSPresentation::Resource> resources_;
    FollowedUris uris_;
};

}  // namespace tool
