#include "tool/Presentation.h"

#include <algorithm>
#include <utility>

#include "tool/AbsoluteUri.h"
#include "tool/Failure.h"
#include "tool/FolderBelow.h"
#include "tool/InputFile.h"
#include "tool/Path.h"

namespace tool {
namespace {

/// All files of one presentation may have so many times what one may have.
constexpr std::size_t mostFilesOfMostBytes = 4;

/// The name of the master playlist among the URIs, none of which holds a line feed.
constexpr char masterName[] = "\n";

std::string folderOfInput(const std::string& path) {
    return path == standardInput ? std::string() : folderOf(path);
}

/// Of a base-16 digit; nothing of another character.
std::optional<unsigned> digitOf(char character) {
    if (character >= '0' && character <= '9') return static_cast<unsigned>(character - '0');
    const char upper = static_cast<char>(character & ~0x20);
    if (upper < 'A' || upper > 'F') return std::nullopt;
    return static_cast<unsigned>(upper - 'A') + 10U;
}

/// Without its percent escapes; nothing when one of them is none.
std::optional<std::string> decoded(std::string_view part) {
    std::string text;
    for (std::size_t place = 0; place < part.size(); ++place) {
        if (part[place] != '%') {
            text += part[place];
            continue;
        }
        const auto high = place + 2 < part.size() ? digitOf(part[place + 1]) : std::nullopt;
        const auto low = place + 2 < part.size() ? digitOf(part[place + 2]) : std::nullopt;
        if (!high || !low) return std::nullopt;
        text += static_cast<char>(*high * 16U + *low);
        place += 2;
    }
    return text;
}

/// Where a relative URI leads from the folder of the master playlist.
struct LocalPath {
    /// Without "." and, but at its start, "..".
    std::string path;
    bool leadsUp = false;
    /// Why it is no path; empty when it is one.
    std::string whyNot;
};

LocalPath localPathOf(std::string_view uri) {
    std::string_view rest = uri.substr(0, uri.find_first_of("?#"));
    if (!rest.empty() && rest.front() == '/') return {{}, false, "it is an absolute path"};
    std::vector<std::string> parts;
    while (!rest.empty()) {
        const std::size_t slash = std::min(rest.find('/'), rest.size());
        const auto part = decoded(rest.substr(0, slash));
        rest.remove_prefix(std::min(slash + 1, rest.size()));
        if (!part) return {{}, false, "a percent escape in it is malformed"};
        if (part->find('/') != std::string::npos) return {{}, false, "it holds a percent-encoded slash"};
        if (part->find('\0') != std::string::npos) return {{}, false, "it holds a percent-encoded NUL"};
        if (part->empty() || *part == ".") continue;
        if (*part == ".." && !parts.empty() && parts.back() != "..") {
            parts.pop_back();
        } else {
            parts.push_back(*part);
        }
    }
    LocalPath local;
    local.leadsUp = !parts.empty() && parts.front() == "..";
    for (const std::string& part : parts)
        local.path += (local.path.empty() ? "" : "/") + part;
    return local;
}

bool hasVariable(std::string_view uri) {
    return uri.find("{$") != std::string_view::npos;
}

bool isOfNetwork(std::string_view uri) {
    return hasScheme(uri) || uri.substr(0, 2) == "//";
}

/// The reason of a message like "file: error: cannot be read: reason".
std::string reasonOf(const Failure& failure) {
    const std::string message = failure.what();
    const std::string before = ": error: cannot be read: ";
    const std::size_t place = message.rfind(before);
    return "it cannot be read: " +
           (place == std::string::npos ? message : message.substr(place + before.size()));
}

}  // namespace

/// Reads what the references lead to.
class PresentationFiles::Reader {
  public:
    Reader(PresentationFiles& files, const FollowRequest& request, std::size_t mostBytes)
        : files_(files),
          folder_(folderOfInput(files.masterPath_)),
          root_(request.root.empty() ? folder_ : request.root),
          mayLeadUp_(!request.root.empty()),
          mostBytes_(mostBytes),
          bytesLeft_(mostBytes * mostFilesOfMostBytes) {
        if (files.masterPath_ != standardInput)
            documents_[root_.find(files.masterPath_).realPath] = &files.master_;
    }

    void read(const VELHLSPresentation::Reference& reference) {
        if (hasVariable(reference.uri)) {
            ++files_.uris_.variable;
            return;
        }
        if (isOfNetwork(reference.uri)) {
            ++files_.uris_.network;
            return;
        }
        VELHLSPresentation::Resource resource;
        resource.uri = std::string(reference.uri);
        find(reference, resource);
        const bool isMissing = resource.document == nullptr && resource.whyNotRead.empty();
        ++(resource.document != nullptr ? files_.uris_.read
           : isMissing                  ? files_.uris_.missing
                                        : files_.uris_.refused);
        files_.resources_.push_back(std::move(resource));
    }

  private:
    void find(const VELHLSPresentation::Reference& reference, VELHLSPresentation::Resource& resource) {
        const LocalPath local = localPathOf(reference.uri);
        resource.whyNotRead = local.whyNot;
        if (local.leadsUp && !mayLeadUp_) resource.whyNotRead = "it leads out of the folder";
        if (!resource.whyNotRead.empty()) return;
        // Without a path it names the master playlist itself.
        if (local.path.empty()) {
            resource.document = &files_.master_;
            return;
        }
        const std::string path = folder_ + local.path;
        const FolderBelow::Target target = root_.find(path);
        resource.whyNotRead = target.whyNot;
        if (target.realPath.empty()) return;
        const VELHLSDocument*& document = documents_[target.realPath];
        if (document == nullptr) document = open(path, target.realPath, reference.use, resource.whyNotRead);
        resource.document = document;
    }

    const VELHLSDocument* open(const std::string& path, const std::string& realPath,
                               VELHLSPresentation::Use use, std::string& whyNot) {
        try {
            std::string text = root_.contentOf(realPath, mostBytes_);
            if (text.size() > bytesLeft_) {
                whyNot = "all files together are larger than " + std::to_string(mostFilesOfMostBytes) +
                         " times --max-bytes";
                return nullptr;
            }
            bytesLeft_ -= text.size();
            files_.files_.push_back(PresentationFile{path, realPath, use, VELHLSDocument(std::move(text))});
            return &files_.files_.back().document;
        } catch (const Failure& failure) {
            whyNot = reasonOf(failure);
            return nullptr;
        }
    }

    PresentationFiles& files_;
    std::string folder_;
    FolderBelow root_;
    bool mayLeadUp_;
    std::size_t mostBytes_;
    std::size_t bytesLeft_;
    /// By their real paths.
    std::map<std::string, const VELHLSDocument*> documents_;
};

PresentationFiles::PresentationFiles(const std::string& masterPath, std::string_view masterText,
                                     const FollowRequest& request, std::size_t mostBytes)
    : masterPath_(masterPath), master_(std::string(masterText)) {
    Reader reader(*this, request, mostBytes);
    for (const VELHLSPresentation::Reference& reference : VELHLSPresentation::references(master_))
        reader.read(reference);
}

std::map<const VELHLSDocument*, std::string_view> PresentationFiles::paths() const {
    std::map<const VELHLSDocument*, std::string_view> paths = {{&master_, masterPath_}};
    for (const PresentationFile& file : files_)
        paths.emplace(&file.document, file.path);
    return paths;
}

std::vector<VELHLSPresentation::MeasuredRates> PresentationFiles::measuredRates() const {
    return VELHLSPresentation::measure({masterName, &master_}, resources_);
}

std::vector<VELHLSFinding> PresentationFiles::findings(
    const std::vector<VELHLSDiagnostics::Profile>& profiles) const {
    using Profile = VELHLSDiagnostics::Profile;
    const auto asks = [&profiles](Profile profile) {
        return std::find(profiles.begin(), profiles.end(), profile) != profiles.end();
    };
    std::vector<VELHLSStandard::Profile> standards;
    // Its successor's finds all that RFC 8216 does.
    if (asks(Profile::rfc8216bis))
        standards.push_back(VELHLSStandard::Profile::rfc8216bis);
    else if (asks(Profile::rfc8216))
        standards.push_back(VELHLSStandard::Profile::rfc8216);
    if (asks(Profile::apple)) standards.push_back(VELHLSStandard::Profile::apple);
    std::vector<VELHLSFinding> found =
        VELHLSPresentation::check({masterName, &master_}, resources_, standards);
    const std::map<const VELHLSDocument*, std::string_view> pathsOfDocuments = this->paths();
    std::map<std::string_view, std::string_view> paths = {{masterName, masterPath_}};
    for (const VELHLSPresentation::Resource& resource : resources_) {
        if (resource.document != nullptr) paths.emplace(resource.uri, pathsOfDocuments.at(resource.document));
    }
    for (VELHLSFinding& finding : found) {
        finding.uri = std::string(paths.at(finding.uri));
        for (VELHLSRelatedPlace& place : finding.related) {
            if (!place.uri.empty()) place.uri = std::string(paths.at(place.uri));
        }
    }
    return found;
}

}  // namespace tool
