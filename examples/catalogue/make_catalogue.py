#!/usr/bin/python3
"""Makes a catalogue to try these examples on: titles of eight playlists each, every fifth title with one of seven faults.

    make_catalogue.py FOLDER TITLES

The titles are copies of the presentation in examples/report. What went wrong with which of them stands in
FOLDER/faults.tsv. The same number of titles always makes the same bytes.
"""

import sys
from pathlib import Path

PRESENTATION = Path(__file__).resolve().parent.parent / "report"
CAPTIONS = '#EXT-X-MEDIA:TYPE=CLOSED-CAPTIONS,GROUP-ID="cc",NAME="English",LANGUAGE="en",INSTREAM-ID="CC1"'

Title = dict[str, str]  # the texts of a title, by their names below its folder


def sound_title() -> Title:
    names = ["master", "video/360p", "video/720p", "video/1080p", "video/540p-hevc", "video/1080p-hevc", "audio/en", "audio/de"]
    title = {f"{name}.m3u8": (PRESENTATION / f"{name}.m3u8").read_text() for name in names}
    master: list[str] = []
    for line in title["master.m3u8"].splitlines():
        if line == "video/540p.m3u8":
            master.pop()  # the one whose discontinuities differ from those of the others
        elif line.startswith("#EXT-X-STREAM-INF:"):
            master.append(line + ',CLOSED-CAPTIONS="cc"')
        else:
            master.append(line)
    master.insert(3, CAPTIONS)
    title["master.m3u8"] = "\n".join(master) + "\n"
    return title


def lose_captions(title: Title) -> None:
    title["master.m3u8"] = title["master.m3u8"].replace(CAPTIONS + "\n", "").replace(',CLOSED-CAPTIONS="cc"', "")


def understate_bandwidth(title: Title) -> None:
    old = "BANDWIDTH=3200000,AVERAGE-BANDWIDTH=2700000"
    title["master.m3u8"] = title["master.m3u8"].replace(old, "BANDWIDTH=1600000,AVERAGE-BANDWIDTH=1350000")


def lower_target_duration(title: Title) -> None:
    title["video/720p.m3u8"] = title["video/720p.m3u8"].replace("TARGETDURATION:6", "TARGETDURATION:4")


def lower_version(title: Title) -> None:
    title["video/360p.m3u8"] = title["video/360p.m3u8"].replace("EXT-X-VERSION:6", "EXT-X-VERSION:3")


def store_error_page(title: Title) -> None:
    title["video/1080p.m3u8"] = "<!DOCTYPE html>\n<title>502 Bad Gateway</title>\n"


def cut_off(title: Title) -> None:
    title["audio/en.m3u8"] = title["audio/en.m3u8"][:1000]


def lose_playlist(title: Title) -> None:
    del title["audio/de.m3u8"]


FAULTS = [lose_captions, understate_bandwidth, lower_target_duration, lower_version, store_error_page, cut_off, lose_playlist]


def make_catalogue(folder: Path, count: int) -> None:
    sound = sound_title()
    folder.mkdir(parents=True)
    with open(folder / "faults.tsv", "w", encoding="ascii") as faults:
        for number in range(count):
            title = dict(sound)
            name = f"{number // 1000:04}/title-{number:07}"
            if number % 5 == 4:
                fault = FAULTS[number // 5 % len(FAULTS)]
                fault(title)
                faults.write(f"{name}\t{fault.__name__}\n")
            for path, text in title.items():
                place = folder / name / path
                place.parent.mkdir(parents=True, exist_ok=True)
                place.write_bytes(text.replace("programme.mp4", f"programme-{number}.mp4").encode())


if __name__ == "__main__":
    make_catalogue(Path(sys.argv[1]), int(sys.argv[2]))
