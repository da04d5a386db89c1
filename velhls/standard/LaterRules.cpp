#include "velhls/standard/CheckedPlaylist.h"
namespace velhls {
StandardTable<CheckedLine> laterLineRules() { return {nullptr, 0}; }
StandardTable<CheckedPlaylist> laterPlaylistRules() { return {nullptr, 0}; }
}
