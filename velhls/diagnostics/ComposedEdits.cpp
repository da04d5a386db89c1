#include "velhls/diagnostics/ComposedEdits.h"

#include <algorithm>
#include <utility>

namespace velhls {

ComposedEdits::ComposedEdits(std::size_t size) : size_(size) {
    if (size > 0) pieces_.push_back({0, size, false, {}});
}

void ComposedEdits::append(std::vector<Piece>& pieces, Piece piece) const {
    if (piece.length == 0) return;
    if (!pieces.empty() && pieces.back().isNew && piece.isNew) {
        pieces.back().text += piece.text;
        pieces.back().length += piece.length;
        return;
    }
    pieces.push_back(std::move(piece));
}

void ComposedEdits::edit(const std::vector<VELHLSEdit>& edits) {
    std::vector<Piece> edited;
    edited.reserve(pieces_.size() + 2 * edits.size());
    std::size_t piece = 0;
    std::size_t within = 0;
    std::size_t place = 0;
    const auto goOn = [&](std::size_t end, bool isKept) {
        while (place < end) {
            Piece& current = pieces_[piece];
            const std::size_t taken = std::min(current.length - within, end - place);
            if (isKept && current.isNew) append(edited, {0, taken, true, current.text.substr(within, taken)});
            if (isKept && !current.isNew) append(edited, {current.start + within, taken, false, {}});
            within += taken;
            place += taken;
            if (within == current.length) {
                ++piece;
                within = 0;
            }
        }
    };
    for (const VELHLSEdit& each : edits) {
        goOn(each.offset, true);
        append(edited, {0, each.replacement.size(), true, each.replacement});
        goOn(each.offset + each.length, false);
    }
    while (piece < pieces_.size())
        goOn(place + pieces_[piece].length - within, true);
    pieces_ = std::move(edited);
}

std::vector<std::size_t> ComposedEdits::placesInFirst(const std::vector<std::size_t>& offsets) const {
    std::vector<std::size_t> places;
    places.reserve(offsets.size());
    std::size_t place = 0;
    std::size_t first = 0;
    auto piece = pieces_.begin();
    for (const std::size_t offset : offsets) {
        for (; piece != pieces_.end() && offset >= place + piece->length; ++piece) {
            place += piece->length;
            if (!piece->isNew) first = piece->start + piece->length;
        }
        const bool isKept = piece != pieces_.end() && !piece->isNew;
        places.push_back(isKept ? piece->start + (offset - place) : first);
    }
    return places;
}

std::vector<VELHLSEdit> ComposedEdits::edits() const {
    std::vector<VELHLSEdit> edits;
    std::size_t done = 0;
    std::string inserted;
    const auto close = [&](std::size_t next) {
        if (next > done || !inserted.empty()) edits.push_back({done, next - done, std::move(inserted)});
        inserted.clear();
    };
    for (const Piece& piece : pieces_) {
        if (piece.isNew) {
            inserted += piece.text;
            continue;
        }
        close(piece.start);
        done = piece.start + piece.length;
    }
    close(size_);
    return edits;
}

}  // namespace velhls
