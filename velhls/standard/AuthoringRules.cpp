#include "velhls/standard/CheckedPlaylist.h"
namespace velhls {
StandardTable<CheckedLine> authoringLineRules() { return {nullptr, 0}; }
StandardTable<CheckedSegment> authoringSegmentRules() { return {nullptr, 0}; }
StandardTable<CheckedPlaylist> authoringPlaylistRules() { return {nullptr, 0}; }
}
