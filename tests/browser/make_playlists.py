#!/usr/bin/env python3
"""Writes playlists that scripts/test-report opens: a long one, and a presentation that is hostile in every text."""

import pathlib
import sys

work = pathlib.Path(sys.argv[1])

segments = "".join(f"#EXTINF:{5.2 if number % 7 == 0 else 6.006},\nhttps://cdn.example.com/segment{number}.ts\n"
                   for number in range(100000))
(work / "long" / "media.m3u8").write_text(f"#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:6\n{segments}#EXT-X-ENDLIST\n")

hostile = [b"</script><script>alert(1)</script>", b"<img src=x onerror=alert(2)>", b"'onclick='alert(3)' x='", b"<!--",
           b"javascript:alert(4)", b"</style><style>*{background:url(//example.com)}", b"\xe2\x80\xaetxt.exe\xe2\x80\xac",
           b"\x1b[31m\x07\x00\xff\xfe", b"\xef\xbf\xbf\xed\xa0\x80", b"&lt;&amp;\\x41", b"<base href=//example.com>",
           b"<meta http-equiv=refresh content=0;url=//example.com>", b"]]><svg onload=alert(5)>"]
master = b"#EXTM3U\n"
media = b"#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXT-X-PROGRAM-DATE-TIME:2026-03-01T20:00:00.000Z\n"
for number, text in enumerate(hostile):
    master += (b'#EXT-X-MEDIA:TYPE=%s,GROUP-ID="%s",NAME="%s",LANGUAGE="%s",CHANNELS="%s",URI="%s"\n'
               % (text, text, text, text, text, text))
    master += (b'#EXT-X-STREAM-INF:BANDWIDTH=%d,RESOLUTION=%s,FRAME-RATE=%s,CODECS="%s",AUDIO="%s"\n%s\n'
               % (1000 * (number + 1), text, text, text, text, text))
    media += (b'#EXT-X-KEY:METHOD=%s,URI="%s"\n#EXT-X-MAP:URI="%s"\n#EXT-X-CUE-OUT:%s\n'
              b'#EXT-X-DATERANGE:ID="%s",START-DATE="2026-03-01T20:00:0%dZ"\n#EXTINF:6,%s\n%s\n'
              % (text, text, text, text, text, number % 10, text, text))
name = "<b>it's \"&\u202ehostile.m3u8"
encoded = b"%3Cb%3Eit%27s%20%22%26%E2%80%AEhostile.m3u8"
(work / "hostile" / "master.m3u8").write_bytes(master + b"#EXT-X-STREAM-INF:BANDWIDTH=1\n" + encoded + b"\n")
(work / "hostile" / name).write_bytes(media + b"#EXT-X-ENDLIST\n")
