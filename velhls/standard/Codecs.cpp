#include "velhls/standard/Codecs.h"

#include <algorithm>
#include <array>

#include "velhls/common/TextScan.h"
#include "velhls/standard/CheckedPlaylist.h"

namespace velhls {
namespace {

struct Row {
    std::string_view name;
    CodecKind kind;
};

constexpr std::array rows = {
    Row{"avc1", CodecKind::video}, Row{"avc3", CodecKind::video}, Row{"avc2", CodecKind::video},
    Row{"hvc1", CodecKind::video}, Row{"hev1", CodecKind::video}, Row{"dvh1", CodecKind::video},
    Row{"dvhe", CodecKind::video}, Row{"dva1", CodecKind::video}, Row{"dvav", CodecKind::video},
    Row{"av01", CodecKind::video}, Row{"dav1", CodecKind::video}, Row{"vp08", CodecKind::video},
    Row{"vp09", CodecKind::video}, Row{"vvc1", CodecKind::video}, Row{"vvi1", CodecKind::video},
    Row{"mp4v", CodecKind::video}, Row{"jpeg", CodecKind::video}, Row{"mjpg", CodecKind::video},
    Row{"mp4a", CodecKind::audio}, Row{"ac-3", CodecKind::audio}, Row{"ec-3", CodecKind::audio},
    Row{"ac-4", CodecKind::audio}, Row{"alac", CodecKind::audio}, Row{"fLaC", CodecKind::audio},
    Row{"flac", CodecKind::audio}, Row{"Opus", CodecKind::audio}, Row{"opus", CodecKind::audio},
    Row{"apac", CodecKind::audio}, Row{"mhm1", CodecKind::audio}, Row{"mp3", CodecKind::audio},
    Row{"dtsc", CodecKind::audio}, Row{"dtse", CodecKind::audio}, Row{"dtsx", CodecKind::audio},
    Row{"stpp", CodecKind::text},  Row{"wvtt", CodecKind::text},
};

constexpr CharacterSet ofTokens(
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789!#$%&'*+-.^_`{|}~");

}  // namespace

CodecKind kindOfCodec(std::string_view codec) {
    const std::string_view name = codec.substr(0, codec.find('.'));
    if (name.empty()) return CodecKind::unknown;
    const auto* const row = std::find_if(rows.begin(), rows.end(), [name](const Row& each) {
        return each.name.front() == name.front() && each.name == name;
    });
    return row == rows.end() ? CodecKind::unknown : row->kind;
}

bool hasCodec(std::string_view codecs, CodecKind kind) {
    bool has = false;
    forEachPart(codecs, ',',
                [&](std::string_view codec) { has = has || kindOfCodec(trimmed(codec)) == kind; });
    return has;
}

bool areAllKnown(std::string_view codecs) {
    return !hasCodec(codecs, CodecKind::unknown);
}

bool isCodec(std::string_view codec) {
    return !codec.empty() && codec.front() != '.' && holdsOnly(codec, ofTokens);
}

}  // namespace velhls
