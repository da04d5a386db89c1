#include "tool/InputNames.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "tool/Failure.h"
#include "tool/Path.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

bool endsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

bool isNamedLikeAPlaylist(const std::string& name) {
    return endsWith(name, ".m3u8") || endsWith(name, ".m3u");
}

/// What a folder holds: the names of its playlists, those of its folders with a slash at their end, and how many links.
struct Listing {
    std::vector<std::string> names;
    std::size_t links = 0;
    std::error_code error;
};

/// What cannot be asked of an entry shows when it is opened.
void note(Listing& listing, const fs::directory_entry& entry) {
    std::error_code unknown;
    const std::string name = textOf(entry.path().filename());
    if (entry.is_symlink(unknown)) {
        if (isNamedLikeAPlaylist(name) || entry.is_directory(unknown)) ++listing.links;
    } else if (entry.is_directory(unknown)) {
        listing.names.push_back(name + "/");
    } else if (isNamedLikeAPlaylist(name)) {
        listing.names.push_back(name);
    }
}

Listing listingOf(const std::string& folder) {
    Listing listing;
    fs::directory_iterator entry(pathOf(folder), listing.error);
    while (!listing.error && entry != fs::directory_iterator()) {
        note(listing, *entry);
        entry.increment(listing.error);
    }
    std::sort(listing.names.begin(), listing.names.end());
    return listing;
}

/// A name with a NUL byte would be taken for the part before it.
bool isFolder(const std::string& path) {
    std::error_code unknown;
    const bool isFile = path == standardInput || path.find('\0') != std::string::npos;
    return !isFile && fs::is_directory(pathOf(path), unknown);
}

}  // namespace

/// The names of a list, read as they are asked for.
class InputWalk::NameList {
  public:
    explicit NameList(const InputNames& names)
        : file_(*names.list), name_(nameInMessages(*names.list)), end_(names.isNulSeparated ? '\0' : '\n') {}

    /// The next name that is not empty; an empty one at the end. Throws a Failure when the list cannot be read.
    [[nodiscard]] std::string next() {
        std::string name;
        while (fill()) {
            const char character = block_[position_++];
            if (character != end_) {
                name += character;
            } else if (!name.empty()) {
                break;
            }
            if (name.size() > longestName)
                throw Failure(unusable, name_ + ": error: cannot be read: a name in it has more than " +
                                            std::to_string(longestName) + " bytes");
        }
        return name;
    }

  private:
    /// A list that has no end has a long name, unless it has no names.
    static constexpr std::size_t longestName = std::size_t{64} << 10;

    /// False at the end.
    [[nodiscard]] bool fill() {
        if (position_ < size_) return true;
        position_ = 0;
        size_ = file_.read(block_.data(), block_.size());
        return size_ != 0;
    }

    InputFile file_;
    std::string name_;
    char end_;
    std::array<char, 4096> block_ = {};
    std::size_t position_ = 0;
    std::size_t size_ = 0;
};

InputWalk::InputWalk(const InputNames& names) : names_(names) {}
InputWalk::~InputWalk() = default;

std::optional<Input> InputWalk::next() {
    while (!pending_.empty() || takeNextName()) {
        Pending next = std::move(pending_.back());
        pending_.pop_back();
        if (!next.isFolder) return std::move(next.input);
        enter(next.input.path);
    }
    return std::nullopt;
}

bool InputWalk::takeNextName() {
    if (nextPath_ == names_.paths.size()) return takeNextNameOfList();
    takeName(names_.paths[nextPath_++]);
    return true;
}

bool InputWalk::takeNextNameOfList() {
    if (!names_.list || isListRead_) return false;
    try {
        if (list_ == nullptr) list_ = std::make_unique<NameList>(names_);
        const std::string name = list_->next();
        isListRead_ = name.empty();
        if (!isListRead_) takeName(name);
    } catch (const Failure& failure) {
        isListRead_ = true;
        takeFailure(*names_.list, failure.what());
    }
    return !pending_.empty();
}

void InputWalk::takeName(const std::string& path) {
    if (path == standardInput && names_.list == standardInput) {
        takeFailure(path, "<stdin>: error: cannot be read: the list of names is read from it");
    } else {
        pending_.push_back({{path, InputKind::Any, {}}, isFolder(path)});
    }
}

void InputWalk::takeFailure(const std::string& path, const std::string& message) {
    pending_.push_back({{path, InputKind::Any, message}, false});
}

void InputWalk::enter(const std::string& folder) {
    const bool isWhole = !folder.empty() && pathSeparators.find(folder.back()) != std::string_view::npos;
    const std::string start = isWhole ? folder : folder + "/";
    Listing listing = listingOf(folder);
    linksLeftOut_ += listing.links;
    for (auto name = listing.names.rbegin(); name != listing.names.rend(); ++name)
        pending_.push_back({{start + *name, InputKind::Regular, {}}, endsWith(*name, "/")});
    if (listing.error)
        takeFailure(folder, nameInMessages(folder) + ": error: cannot be read: " + listing.error.message());
}

}  // namespace tool
