// Internal to the library, not installed: the one list of the tag names, attribute names and fixed values
// that the readers recognise and the writers write.
#pragma once

#include <string_view>

namespace velhls::tag {

// RFC 8216, basic tags and tags of both kinds of playlist (sections 4.3.1 and 4.3.5).
inline constexpr std::string_view extM3U = "EXTM3U";
inline constexpr std::string_view version = "EXT-X-VERSION";
inline constexpr std::string_view independentSegments = "EXT-X-INDEPENDENT-SEGMENTS";
inline constexpr std::string_view start = "EXT-X-START";

// RFC 8216, master playlist tags (section 4.3.4).
inline constexpr std::string_view media = "EXT-X-MEDIA";
inline constexpr std::string_view streamInf = "EXT-X-STREAM-INF";
inline constexpr std::string_view iFrameStreamInf = "EXT-X-I-FRAME-STREAM-INF";
inline constexpr std::string_view sessionData = "EXT-X-SESSION-DATA";
inline constexpr std::string_view sessionKey = "EXT-X-SESSION-KEY";

// RFC 8216, media playlist tags (section 4.3.3).
inline constexpr std::string_view targetDuration = "EXT-X-TARGETDURATION";
inline constexpr std::string_view mediaSequence = "EXT-X-MEDIA-SEQUENCE";
inline constexpr std::string_view discontinuitySequence = "EXT-X-DISCONTINUITY-SEQUENCE";
inline constexpr std::string_view endList = "EXT-X-ENDLIST";
inline constexpr std::string_view playlistType = "EXT-X-PLAYLIST-TYPE";
inline constexpr std::string_view iFramesOnly = "EXT-X-I-FRAMES-ONLY";

// RFC 8216, media segment tags (section 4.3.2), with the cue markers and variables that the library also
// reads.
inline constexpr std::string_view extInf = "EXTINF";
inline constexpr std::string_view byteRange = "EXT-X-BYTERANGE";
inline constexpr std::string_view discontinuity = "EXT-X-DISCONTINUITY";
inline constexpr std::string_view key = "EXT-X-KEY";
inline constexpr std::string_view map = "EXT-X-MAP";
inline constexpr std::string_view programDateTime = "EXT-X-PROGRAM-DATE-TIME";
inline constexpr std::string_view cueIn = "EXT-X-CUE-IN";
inline constexpr std::string_view cueOut = "EXT-X-CUE-OUT";
inline constexpr std::string_view cueOutCont = "EXT-X-CUE-OUT-CONT";
inline constexpr std::string_view define = "EXT-X-DEFINE";

// Vendor extensions.
inline constexpr std::string_view zorStreamInf = "ZOR-STREAM-INF";
inline constexpr std::string_view zorPatternStart = "ZOR-PATTERN_START";
inline constexpr std::string_view zorPatternEnd = "ZOR-PATTERN_END";
inline constexpr std::string_view zorPatternRepeat = "ZOR-PATTERN_REPEAT";
inline constexpr std::string_view zorDefineIncrement = "ZOR-DEFINE_INCREMENT";

}  // namespace velhls::tag

namespace velhls::attribute {

inline constexpr std::string_view assocLanguage = "ASSOC-LANGUAGE";
inline constexpr std::string_view audio = "AUDIO";
inline constexpr std::string_view audioTrackType = "AUDIO-TRACK-TYPE";
inline constexpr std::string_view autoSelect = "AUTOSELECT";
inline constexpr std::string_view averageBandwidth = "AVERAGE-BANDWIDTH";
inline constexpr std::string_view bandwidth = "BANDWIDTH";
inline constexpr std::string_view byteRange = "BYTERANGE";
inline constexpr std::string_view characteristics = "CHARACTERISTICS";
inline constexpr std::string_view closedCaptions = "CLOSED-CAPTIONS";
inline constexpr std::string_view codecs = "CODECS";
inline constexpr std::string_view dataId = "DATA-ID";
inline constexpr std::string_view defaultFlag = "DEFAULT";
inline constexpr std::string_view forced = "FORCED";
inline constexpr std::string_view groupId = "GROUP-ID";
inline constexpr std::string_view instreamId = "INSTREAM-ID";
inline constexpr std::string_view iv = "IV";
inline constexpr std::string_view keyFormat = "KEYFORMAT";
inline constexpr std::string_view keyFormatVersions = "KEYFORMATVERSIONS";
inline constexpr std::string_view language = "LANGUAGE";
inline constexpr std::string_view method = "METHOD";
inline constexpr std::string_view name = "NAME";
inline constexpr std::string_view precise = "PRECISE";
inline constexpr std::string_view programId = "PROGRAM-ID";
inline constexpr std::string_view resolution = "RESOLUTION";
inline constexpr std::string_view subtitles = "SUBTITLES";
inline constexpr std::string_view timeOffset = "TIME-OFFSET";
inline constexpr std::string_view type = "TYPE";
inline constexpr std::string_view uri = "URI";
inline constexpr std::string_view value = "VALUE";
inline constexpr std::string_view video = "VIDEO";

// Vendor extensions. Unlike the standard's names these are written with underscores.
inline constexpr std::string_view nominalAudioBitrate = "NOMINAL_AUDIO_BITRATE";
inline constexpr std::string_view nominalVideoBitrate = "NOMINAL_VIDEO_BITRATE";

}  // namespace velhls::attribute

namespace velhls::fixed {

inline constexpr std::string_view yes = "YES";
inline constexpr std::string_view no = "NO";
inline constexpr std::string_view none = "NONE";
inline constexpr std::string_view aes128 = "AES-128";
inline constexpr std::string_view sampleAes = "SAMPLE-AES";
inline constexpr std::string_view event = "EVENT";
inline constexpr std::string_view vod = "VOD";

}  // namespace velhls::fixed
