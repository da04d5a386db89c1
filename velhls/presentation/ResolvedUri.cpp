#include "velhls/presentation/ResolvedUri.h"

#include <cstddef>
#include <vector>

#include "velhls/common/TextScan.h"

namespace velhls {
namespace {

constexpr CharacterSet inSchemes("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+-.");

/// The parts of a reference, each with what tells it from the others: "https:", "//host", "/path", "?query".
struct Parts {
    std::string_view scheme;
    std::string_view authority;
    std::string_view path;
    std::string_view query;
};

std::string_view takeFirst(std::string_view& rest, std::size_t count) {
    const std::string_view taken = rest.substr(0, count);
    rest.remove_prefix(taken.size());
    return taken;
}

Parts partsOf(std::string_view reference) {
    Parts parts;
    std::string_view rest = reference.substr(0, reference.find('#'));
    const std::size_t colon = rest.find_first_of(":/?");
    const bool hasScheme = colon != std::string_view::npos && colon > 0 && rest[colon] == ':' &&
                           holdsOnly(rest.substr(0, colon), inSchemes);
    if (hasScheme) parts.scheme = takeFirst(rest, colon + 1);
    if (startsWith(rest, "//")) parts.authority = takeFirst(rest, rest.find_first_of("/?", 2));
    parts.path = takeFirst(rest, rest.find('?'));
    parts.query = rest;
    return parts;
}

/// The path without "." and "..". Of a relative path, what goes above its start stays.
std::string withoutDots(std::string_view path) {
    std::vector<std::string_view> kept;
    const bool isAbsolute = startsWith(path, "/");
    bool endsInFolder = false;
    std::string_view rest = isAbsolute ? path.substr(1) : path;
    for (bool isLast = false; !isLast;) {
        const std::size_t slash = rest.find('/');
        isLast = slash == std::string_view::npos;
        const std::string_view part = takeFirst(rest, slash);
        if (!isLast) rest.remove_prefix(1);
        endsInFolder = part == "." || part == "..";
        if (part == ".") continue;
        const bool canGoUp = !kept.empty() && kept.back() != "..";
        if (part == ".." && canGoUp) {
            kept.pop_back();
        } else if (part != ".." || !isAbsolute) {
            kept.push_back(part);
        }
    }
    std::string result = isAbsolute ? "/" : "";
    for (std::size_t place = 0; place < kept.size(); ++place) {
        result += kept[place];
        if (place + 1 < kept.size() || endsInFolder) result += '/';
    }
    return result;
}

}  // namespace

std::string resolvedUri(std::string_view base, std::string_view reference) {
    const Parts from = partsOf(base);
    Parts to = partsOf(reference);
    std::string path(to.path);
    if (to.scheme.empty()) {
        to.scheme = from.scheme;
        if (to.authority.empty()) {
            to.authority = from.authority;
            if (path.empty()) {
                path = from.path;
                if (to.query.empty()) to.query = from.query;
            } else if (path.front() != '/') {
                path = std::string(from.path.substr(0, from.path.rfind('/') + 1)) + path;
            }
        }
    }
    std::string result(to.scheme);
    result += to.authority;
    result += withoutDots(path);
    return result += to.query;
}

}  // namespace velhls
