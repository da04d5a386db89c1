"""The package as a user sees it."""
import array
import gc
import pathlib
import pickle
import re
import threading

import pytest

import velhls

SOURCES = pathlib.Path(__file__).resolve().parents[3]
EXAMPLES = SOURCES / "examples" / "playlists"
GUIDE = re.findall(r"^```(\w+)\n(.*?)^```$", (SOURCES / "docs/guide/python.md").read_text(), re.DOTALL | re.MULTILINE)
MEDIA = (
    "#EXTM3U\n#EXT-X-VERSION:4\n#EXT-X-TARGETDURATION:6\n"
    '#EXT-X-KEY:METHOD=AES-128,URI="k"\n#EXT-X-MAP:URI="init.mp4",BYTERANGE="720@0"\n'
    "#EXTINF:6.006,Intro\n#EXT-X-BYTERANGE:1000@720\nsegment1.mp4\n"
    "#EXT-X-DISCONTINUITY\n#EXTINF:4.5,\nsegment2.mp4\n#EXT-X-ENDLIST\n"
)
MASTER = (
    '#EXTM3U\n#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID="aac",NAME="English",CHARACTERISTICS="b,a"\n'
    '#EXT-X-STREAM-INF:BANDWIDTH=800000,CODECS="mp4a.40.2",AUDIO="aac"\nlow.m3u8\n'
    '#EXT-X-STREAM-INF:BANDWIDTH=1600000,AUDIO="aac"\nhigh.m3u8\n'
    '#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=90000,URI="i.m3u8"\n'
    '#EXT-X-SESSION-KEY:METHOD=AES-128,URI="k"\n'
)


@pytest.fixture
def media():
    return velhls.parse(MEDIA)


@pytest.fixture
def master():
    return velhls.parse(MASTER)


@pytest.mark.parametrize("path", sorted(EXAMPLES.glob("*.m3u8")), ids=lambda path: path.name)
def test_every_example_parses_the_same_from_a_path_bytes_and_str(path):
    data = path.read_bytes()
    playlist = velhls.parse(path)
    assert type(playlist).__name__.lower().startswith(path.name.split("-")[0])
    if len(data) < 100_000:
        assert playlist == velhls.parse(data) == velhls.parse(data.decode())
        assert pickle.loads(pickle.dumps(playlist)) == playlist
    assert playlist.render() == velhls.parse(data).render()


def test_segments_hold_what_their_tags_say(media):
    first, second = media
    assert (first.uri, first.duration, first.title) == ("segment1.mp4", 6.006, ",Intro")
    assert (first.byte_range.length, first.byte_range.offset) == (1000, 720)
    assert (first.key.method, first.key.uri, first.map.uri) == ("AES-128", "k", "init.mp4")
    assert first.map.byte_range == velhls.ByteRange(length=720, offset=0)
    assert second.discontinuity and second.byte_range is None
    assert second.key is first.key
    assert (media.version, media.target_duration, media.end_list, media.playlist_type) == (4, 6.0, True, "")


def test_master_playlists_hold_their_records(master):
    low, high = master
    assert (low.uri, low.bandwidth, low.codecs, low.audio, low.video) == ("low.m3u8", 800000, "mp4a.40.2", "aac", None)
    assert high.bandwidth == 1600000
    assert [variant.uri for variant in master.i_frame_variants] == ["i.m3u8"]
    assert master.renditions[0].characteristics == ["a", "b"]
    assert master.session_keys[0].method == "AES-128"
    assert len(master) == 2


def test_a_rejected_playlist_says_why_and_where():
    with pytest.raises(velhls.PlaylistError, match='^line 2: .* seen "fast"$') as raised:
        velhls.parse("#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=fast\nlow.m3u8\n")
    assert raised.value.reason.line == 2
    assert [found.rule for found in raised.value.findings if found.severity == "error"] == [raised.value.reason.rule]
    assert isinstance(raised.value, ValueError)
    with pytest.raises(velhls.PlaylistError, match="^line 1: "):
        velhls.parse("no playlist")


def test_the_kind_may_be_said():
    assert isinstance(velhls.parse("#EXTM3U\n", kind="media"), velhls.MediaPlaylist)
    with pytest.raises(velhls.PlaylistError):
        velhls.parse("#EXTM3U\n", kind="master")
    with pytest.raises(ValueError, match="kind"):
        velhls.parse("#EXTM3U\n", kind="neither")


def test_what_is_no_text_is_refused():
    with pytest.raises(TypeError, match="expected str or bytes, seen int"):
        velhls.parse(7)
    with pytest.raises(FileNotFoundError):
        velhls.parse(pathlib.Path("no such file"))


HOSTILE = [
    "",
    "\0",
    "#EXTM3U",
    b"\xff\xfe#\0E\0",
    MEDIA.replace("\n", "\r\n"),
    MEDIA.encode().replace(b"segment1", b"\xc3\x28\0"),
    "#EXTM3U\n" + "#" * 100_000,
    "#EXTM3U\n#EXTINF:" + "9" * 100_000 + ",\nsegment1.ts\n",
    *(MEDIA[:length] for length in range(0, len(MEDIA), 7)),
    *(MASTER[:length] for length in range(0, len(MASTER), 7)),
]


@pytest.mark.parametrize("text", HOSTILE, ids=range(len(HOSTILE)))
def test_hostile_texts_are_parsed_or_rejected(text):
    try:
        assert velhls.parse(text).validate() in (True, False)
    except velhls.PlaylistError as error:
        assert error.reason.message
    profiles = ("rfc8216", "rfc8216bis", "apple", "library")
    assert velhls.check(text, profiles, fixes=True).kind in ("", "master", "media")
    mended = velhls.fix(text, profiles, lossy=True, guess=True)
    assert velhls.Document(text).apply(mended.edits) == mended.text


def test_a_str_of_other_surrogates_is_no_text():
    with pytest.raises(UnicodeEncodeError):
        velhls.parse("#EXTM3U\n#EXTINF:6,\n\ud800.ts\n")


def test_bytes_that_are_not_utf_8_come_back_as_they_were():
    data = b"#EXTM3U\n#EXTINF:6,\nsegment\xff.ts\n"
    playlist = velhls.parse(data)
    assert playlist.segments[0].uri == "segment\udcff.ts"
    assert b"segment\xff.ts" in playlist.render().encode(errors="surrogateescape")
    assert velhls.parse(data.decode(errors="surrogateescape")) == playlist
    assert velhls.Document(data).apply([]) == data


def test_lists_write_through(media):
    segments = media.segments
    segments.append(velhls.Segment(uri="segment3.mp4", duration=2.0))
    assert len(media) == len(segments) == 3
    assert media.segments[-1].uri == "segment3.mp4"
    segments[0].uri = "changed.mp4"
    assert "changed.mp4" in media.render()
    del segments[0]
    segments.insert(0, velhls.Segment(uri="first.mp4", duration=1.0))
    segments[1:] = reversed(segments[1:])
    assert media.uris == ["first.mp4", "segment3.mp4", "segment2.mp4"]
    assert segments.pop().uri == "segment2.mp4"
    segments.reverse()
    segments += [velhls.Segment(uri="last.mp4", duration=1.0)]
    assert media.uris == ["segment3.mp4", "first.mp4", "last.mp4"]
    del segments[::2]
    assert media.uris == ["first.mp4"]
    media.segments = []
    assert len(media) == 0 and segments == []


def test_lists_refuse_what_is_no_record(media):
    for wrong in (None, "segment.ts", velhls.Variant()):
        with pytest.raises((TypeError, RuntimeError)):
            media.segments.append(wrong)
        with pytest.raises((TypeError, RuntimeError)):
            media.segments = [wrong]
    with pytest.raises(IndexError):
        media.segments[2]
    assert len(media) == 2


def test_a_list_may_change_while_it_is_iterated(media):
    seen = []
    for segment in media.segments:
        seen.append(segment.uri)
        media.segments.clear()
    assert seen == ["segment1.mp4"]


def test_a_list_and_a_record_outlive_their_playlist(media):
    segments = velhls.parse(MEDIA).segments
    key = segments[0].key
    segment = segments[1]
    gc.collect()
    assert [found.uri for found in segments] == media.uris
    del segments
    gc.collect()
    assert (key.uri, segment.uri) == ("k", "segment2.mp4")


def test_variants_are_said_once(master):
    master.variants[1].bandwidth = 1
    del master.i_frame_variants[0]
    text = master.render()
    assert text.index("high.m3u8") < text.index("low.m3u8")
    assert "i.m3u8" not in text
    again = velhls.parse(text)
    assert [variant.bandwidth for variant in again] == [1, 800000]


def test_renditions_that_cannot_be_told_apart_are_refused(master):
    master.renditions.append(velhls.Rendition(type="AUDIO", group_id="aac", name="English"))
    with pytest.raises(ValueError, match="two renditions"):
        master.render()


def test_groups_may_be_none(master):
    master.variants[0].audio = None
    master.variants[0].subtitles = "subs"
    assert (master.variants[0].audio, master.variants[0].subtitles) == (None, "subs")
    assert not master.validate()
    with pytest.raises(ValueError):
        master.render()


def test_columns_are_buffers(media):
    assert media.durations.format == "d"
    assert media.durations.tolist() == [6.006, 4.5]
    assert array.array("d", media.durations) == array.array("d", [6.006, 4.5])
    assert media.start_times.tolist() == [0.0, 6.006]
    assert media.byte_range_lengths.tolist()[0] == 1000
    assert media.byte_range_offsets.tolist()[0] == 720
    assert velhls.MediaPlaylist().durations.tolist() == []
    with pytest.raises(TypeError):
        media.durations[0] = 1.0
    numpy = pytest.importorskip("numpy")
    assert numpy.asarray(media.durations).sum() == pytest.approx(10.506)


def test_a_column_outlives_its_playlist():
    durations = velhls.parse(MEDIA).durations
    gc.collect()
    assert durations.tolist() == [6.006, 4.5]


def test_records_are_made_of_fields():
    segment = velhls.Segment(uri="a.ts", duration=4.0, key=velhls.Key(method="SAMPLE-AES", uri="k"))
    assert segment == velhls.Segment(uri="a.ts", duration=4.0, key=velhls.Key(method="SAMPLE-AES", uri="k"))
    assert segment != velhls.Segment(uri="b.ts", duration=4.0)
    assert segment != "a.ts"
    assert repr(segment) == "Segment(uri='a.ts', duration=4.0, key=Key(method='SAMPLE-AES', uri='k'))"
    with pytest.raises(TypeError, match="has no field 'url'"):
        velhls.Segment(url="a.ts")
    with pytest.raises(ValueError, match="expected one of NONE, AES-128, SAMPLE-AES"):
        velhls.Key(method="AES")
    with pytest.raises(TypeError):
        hash(segment)


def test_pickles_keep_what_is_shared(media):
    again = pickle.loads(pickle.dumps(media))
    assert again == media
    assert again.segments[0].key is again.segments[1].key


def test_variables_are_a_dict():
    playlist = velhls.parse('#EXTM3U\n#EXT-X-DEFINE:NAME="n",VALUE="1"\n#EXTINF:6,\nsegment1.ts\n')
    assert playlist.variables == {"n": "1"}
    playlist.variables = {"m": "2"}
    assert playlist.variables == {"m": "2"}


def test_write_refuses_with_a_reason(media):
    assert "#EXTINF:6.006,Intro\n" in media.write()
    media.segments[1].uri = "two\nlines"
    with pytest.raises(ValueError, match="segment 2: "):
        media.write()


def test_check_asks_the_profiles():
    text = "#EXTM3U\n#EXTINF:6.006,\nsegment1.ts\n"
    report = velhls.check(text)
    assert (report.kind, report.rejected) == ("media", None)
    found = {finding.rule: finding for finding in report.findings}
    assert found["target-duration-missing"].severity == "error"
    assert {finding.profile for finding in velhls.check(text, profiles=("library", "apple")).findings} == {
        "library",
        "apple",
    }
    assert velhls.check(text, profiles=()).findings == []
    with pytest.raises(ValueError, match="expected rfc8216"):
        velhls.check(text, profiles="rfc")


MENDABLE = "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXTINF:6,\n0.ts\n#EXTINF:0,\nsegment1.ts\n"


def test_findings_have_their_fixes_when_asked():
    found = [finding for finding in velhls.check(MENDABLE, "library", fixes=True).findings if finding.fixes]
    assert [(fix.fix_class, fix.sentence) for finding in found for fix in finding.fixes] == [
        ("safe", 'writes "./0.ts", the same resource'),
        ("guess", "writes the duration 1"),
    ]
    assert velhls.Document(MENDABLE).apply(found[0].fixes[0].edits) == MENDABLE.replace("\n0.ts", "\n./0.ts")
    assert not any(finding.fixes for finding in velhls.check(MENDABLE, "library").findings)


def test_a_rejected_playlist_says_what_mends_it():
    with pytest.raises(velhls.PlaylistError) as raised:
        velhls.parse(MENDABLE)
    assert [fix.fix_class for finding in raised.value.findings for fix in finding.fixes] == ["safe", "guess"]


def test_fix_mends_what_may_be_mended():
    mended = velhls.fix(MENDABLE, profiles="library")
    assert mended.text == MENDABLE.replace("\n0.ts", "\n./0.ts")
    assert [(done.rule, done.profile, done.fix_class, done.line) for done in mended.done] == [
        ("segment-uri-too-short", "library", "safe", 4)
    ]
    assert mended.rounds == 1
    assert velhls.Document(MENDABLE).apply(mended.edits) == mended.text
    assert mended.left.rejected.rule == "segment-duration-zero"
    assert [fix.sentence for finding in mended.left.findings for fix in finding.fixes] == ["writes the duration 1"]
    guessed = velhls.fix(MENDABLE, profiles=["library"], guess=True)
    assert [segment.duration for segment in velhls.parse(guessed.text)] == [6.0, 1.0]
    assert guessed.left.rejected is None
    assert velhls.fix(MENDABLE, "library", kind="master").left.kind == "master"
    assert velhls.fix("", lossy=True).done == []


def test_fix_loses_something_only_when_asked():
    text = MASTER.replace(',AUDIO="aac"\nlow', ',AUDIO="none"\nlow')
    assert velhls.fix(text, "rfc8216").text == text
    lossy = velhls.fix(text, "rfc8216", lossy=True)
    assert {done.fix_class for done in lossy.done} == {"lossy"}
    assert 'AUDIO="none"' not in lossy.text


def test_fix_gives_the_kind_of_text_that_it_was_given(tmp_path):
    path = tmp_path / "live.m3u8"
    path.write_bytes(MENDABLE.encode())
    expected = velhls.fix(MENDABLE, "library").text.encode()
    assert velhls.fix(MENDABLE.encode(), "library").text == expected
    assert velhls.fix(path, "library").text == expected
    assert path.read_bytes() == MENDABLE.encode()
    with pytest.raises(ValueError, match="rfc8216"):
        velhls.fix(MENDABLE, profiles="rfc")


def test_compare_finds_changes_and_what_is_forbidden():
    now = MEDIA.replace("6.006", "5.005")
    comparison = velhls.compare(MEDIA, now)
    assert [(change.kind, change.path, change.what) for change in comparison.changes] == [
        ("changed", "segment 0", "duration")
    ]
    assert (comparison.changes[0].old_text, comparison.changes[0].new_text) == ("6.006", "5.005")
    assert [finding.severity for finding in comparison.findings]
    assert comparison.findings[0].related[0].line == 6
    with pytest.raises(ValueError, match="kinds"):
        velhls.compare(MEDIA, MASTER)


def test_documents_hold_every_line():
    document = velhls.Document("#EXTM3U\r\n# by hand\n\n" + '#EXT-X-KEY:METHOD=AES-128,URI="k"')
    assert (len(document), document.kind) == (4, "media")
    assert [line.kind for line in document.lines] == ["tag", "comment", "blank", "tag"]
    assert "".join(line.text + line.ending for line in document.lines) == document.text
    key = document.line(4)
    assert (key.name, key.value, key.is_known) == ("EXT-X-KEY", 'METHOD=AES-128,URI="k"', True)
    assert [(found.name, found.value, found.quoted) for found in key.attributes] == [
        ("METHOD", "AES-128", False),
        ("URI", "k", True),
    ]
    assert [(uri.line, uri.text, uri.attribute) for uri in document.uris] == [(4, "k", "URI")]
    with pytest.raises(IndexError):
        document.line(5)


def test_edits_touch_no_other_byte():
    text = '#EXTM3U\r\n#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID="a",NAME="German",X-A=1\r\n# by hand\r\nlow.m3u8\r\n'
    document = velhls.Document(text)
    edits = [
        document.change_attributes(2, {"LANGUAGE": "de", "X-A": None}),
        document.replace_uri(document.uris[0], "other.m3u8"),
        document.insert_after(1, "#EXT-X-VERSION:4"),
        document.remove_lines(3, 3),
    ]
    assert document.apply(edits) == (
        '#EXTM3U\r\n#EXT-X-VERSION:4\r\n#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID="a",NAME="German",LANGUAGE="de"\r\nother.m3u8\r\n'
    )
    assert document.apply([]) == text == document.text
    with pytest.raises(ValueError, match="edits 0 and 1 overlap"):
        document.apply([edits[3], edits[3]])
    with pytest.raises(ValueError):
        document.change_attributes(2, {"NAME": 'a "quote"'})
    with pytest.raises(ValueError, match="another document"):
        velhls.Document(text).replace_uri(document.uris[0], "x.m3u8")
    with pytest.raises(IndexError):
        document.apply([velhls.Edit(offset=10_000, length=1, replacement="")])


def test_lines_outlive_their_document():
    line = velhls.Document("#EXTM3U\n").line(1)
    attributes = velhls.Document("#EXT-X-KEY:METHOD=NONE\n").line(1).attributes
    gc.collect()
    assert (line.name, attributes[0].value) == ("EXTM3U", "NONE")


def test_parses_run_beside_each_other():
    text = "#EXTM3U\n" + "#EXTINF:6,\nsegment1.ts\n" * 5000
    seen = []
    threads = [threading.Thread(target=lambda: seen.append(len(velhls.parse(text)))) for _ in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert seen == [5000] * 4


def test_everything_public_has_a_docstring():
    for name in velhls.__all__:
        public = getattr(velhls, name)
        if name == "version":
            continue
        assert public.__doc__, name
        for member, value in vars(public).items() if isinstance(public, type) else ():
            if not member.startswith("_"):
                assert value.__doc__, f"{name}.{member}"


@pytest.mark.parametrize("place", [place for place, (language, _) in enumerate(GUIDE) if language == "python"])
def test_the_guide_shows_what_its_programs_print(place, capsys):
    exec(GUIDE[place][1], {})
    assert GUIDE[place + 1] == ("text", capsys.readouterr().out)
