#!/usr/bin/env python3
"""Validates the command's JSON against the committed schemas, and its SARIF against what SARIF 2.1.0 demands.

Usage: validate_json.py COMMAND SOURCE_FOLDER. Exits with 77, which ctest takes for skipped, without jsonschema.
"""

import glob
import json
import os
import subprocess
import sys
import tempfile

try:
    import jsonschema
except ImportError:
    print("skipped: python3-jsonschema is not installed")
    sys.exit(77)

command, source = sys.argv[1:3]
findings = sorted(glob.glob(os.path.join(source, "examples/findings/*.m3u8")))
all_profiles = [f"--profile={profile}" for profile in ("rfc8216", "rfc8216bis", "apple", "library")]
playlists = sorted(glob.glob(os.path.join(source, "examples/playlists/*.m3u8")))


def output(*arguments, stdin=b""):
    result = subprocess.run([command, *arguments], input=stdin, capture_output=True, check=False)
    return result.returncode, json.loads(result.stdout.decode("utf-8")) if result.stdout else None


def validator(name):
    with open(os.path.join(source, "docs/schemas", name), encoding="utf-8") as file:
        schema = json.load(file)
    jsonschema.Draft7Validator.check_schema(schema)
    return jsonschema.Draft7Validator(schema)


def check_findings():
    status, report = output("check", *all_profiles, "--format=json", "--severity=note", *findings, "no such file")
    assert status == 2, status
    validator("check-2.schema.json").validate(report)
    assert len(report["files"]) == len(findings) + 1
    assert "failure" in report["files"][-1]
    for file in report["files"][:-1]:
        rules = [finding["rule"] for finding in file["findings"]]
        assert os.path.basename(file["path"])[: -len(".m3u8")] in rules, file["path"]


def check_lines():
    """Each line is a member of "files"."""
    files = [*findings, "no such file"]
    arguments = ("check", "--profile=library", "--severity=note")
    whole = output(*arguments, "--format=json", *files)[1]
    lines = subprocess.run([command, *arguments, "--format=jsonl", *files], capture_output=True, check=False).stdout
    assert [json.loads(line) for line in lines.decode("utf-8").splitlines()] == whole["files"]


def check_comparisons():
    schema = validator("compare-1.schema.json")
    with tempfile.TemporaryDirectory() as folder:
        old, new = os.path.join(folder, "old.m3u8"), os.path.join(folder, "new.m3u8")
        head = "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXT-X-MEDIA-SEQUENCE:"
        for path, number, duration in ((old, 7, 6), (new, 8, 5)):
            with open(path, "w", encoding="utf-8") as file:
                file.write(head + f"{number}\n")
                file.writelines(f"#EXTINF:{duration},\n{uri}.ts\n" for uri in range(number, number + 4))
        status, report = output("compare", "--format=json", old, new)
        assert status == 3, status
        schema.validate(report)
        assert [finding["rule"] for finding in report["findings"]] == ["segment-duration-changed"] * 3, report
        assert {change["kind"] for change in report["changes"]} == {"added", "removed", "changed"}, report
        status, report = output("compare", "--series", "--format=json", old, old, new, "no such file", playlists[0])
        assert status == 2, status
        schema.validate(report)
        assert report["summary"]["versions"] == 5, report
        assert report["summary"]["rules"] == {"segment-duration-changed": 3}, report
    for path in playlists:
        status, report = output("compare", "--format=json", path, path)
        if status != 2:
            schema.validate(report)
            assert status == 0 and report["changes"] == [] and report["findings"] == [], path


def check_models():
    schema = validator("inspect-1.schema.json")
    accepted = 0
    for path in playlists + findings:
        status, model = output("inspect", "--json", path)
        if status == 0:
            schema.validate(model)
            accepted += 1
    assert accepted > len(playlists), accepted


def check_large_numbers():
    text = (
        b"#EXTM3U\n#ZOR-STREAM-INF:NOMINAL_VIDEO_BITRATE=9223372036854775807\n"
        b"#EXT-X-STREAM-INF:BANDWIDTH=-1,AVERAGE-BANDWIDTH=9007199254740993\na.m3u8\n"
    )
    variant = output("inspect", "--json", stdin=text)[1]["playlist"]["variants"][0]
    assert variant["bandwidth"] == 2**64 - 1, variant
    assert variant["averageBandwidth"] == 2**53 + 1, variant
    assert variant["nominalVideoBitrate"] == 2**63 - 1, variant
    text = b"#EXTM3U\n#EXT-X-MEDIA-SEQUENCE:9223372036854775807\n#EXTINF:nan,\nfirst.ts\n#EXTINF:-inf,\nsecond.ts\n"
    playlist = output("inspect", "--json", stdin=text)[1]["playlist"]
    assert playlist["mediaSequence"] == 2**63 - 1, playlist
    assert [segment["duration"] for segment in playlist["segments"]] == ["NaN", "-Infinity"], playlist


def check_sarif():
    status, log = output("check", *all_profiles, "--format=sarif", "--severity=note", *findings, "no such file")
    assert log["version"] == "2.1.0"
    assert log["$schema"].endswith("sarif-schema-2.1.0.json")
    (run,) = log["runs"]
    driver = run["tool"]["driver"]
    assert driver["name"] == "velhls" and driver["version"]
    assert run["invocations"][0]["exitCode"] == status == 2
    assert run["invocations"][0]["executionSuccessful"] is False
    notifications = run["invocations"][0]["toolExecutionNotifications"]
    assert any(notification["level"] == "error" for notification in notifications)
    assert any(notification["message"]["text"].startswith("rejected: ") for notification in notifications)
    assert all(notification["message"]["text"] for notification in notifications)
    ids = [rule["id"] for rule in driver["rules"]]
    assert len(set(ids)) == len(ids)
    for rule in driver["rules"]:
        assert rule["shortDescription"]["text"] and rule["help"]["markdown"].startswith("# " + rule["id"])
        assert rule["defaultConfiguration"]["level"] in ("error", "warning", "note")
        assert rule["properties"]["source"]
    assert run["results"]
    places = [(result["locations"][0]["physicalLocation"]["artifactLocation"]["uri"], result["ruleId"],
               result["partialFingerprints"]["ruleAndLine/v1"]) for result in run["results"]]
    assert len(set(places)) == len(places)
    for result in run["results"]:
        assert ids[result["ruleIndex"]] == result["ruleId"]
        assert result["level"] in ("error", "warning", "note") and result["message"]["text"]
        place = result["locations"][0]["physicalLocation"]
        region = place["region"]
        assert place["artifactLocation"]["uri"].startswith("file:///")
        assert region["startLine"] >= 1 and region["startColumn"] >= 1
        assert region["endLine"] == region["startLine"] and region["endColumn"] >= region["startColumn"]


def check_clauses():
    """The rules of a standard lead to its clauses."""
    log = output("check", "--format=sarif", "--profile=rfc8216", "--profile=apple", stdin=b"#EXTM3U\n#EXTINF:6,\na.ts\n")[1]
    rules = log["runs"][0]["tool"]["driver"]["rules"]
    # What stands for no clause: that a file is not there.
    without = [rule for rule in rules if not rule["properties"]["clause"]]
    assert len(without) <= 2 and all("helpUri" not in rule for rule in without), without
    helps = {rule["id"]: rule["helpUri"] for rule in rules if rule not in without}
    for rule in rules:
        assert bool(rule["properties"]["clause"]) == bool(rule["properties"]["level"]), rule["id"]
        assert rule in without or rule["helpUri"].startswith("https://"), rule["id"]
    assert helps["target-duration-missing"] == "https://www.rfc-editor.org/rfc/rfc8216#section-4.3.3.1"
    for result in log["runs"][0]["results"]:
        assert rules[result["ruleIndex"]]["id"] == result["ruleId"]
        assert result["properties"]["clause"] and result["properties"]["level"]
    listed = json.loads(subprocess.run([command, "rules", "--format=json", "--profile=rfc8216"], capture_output=True,
                                       check=True).stdout)
    assert listed["version"] == 1 and len(listed["rules"]) > 100
    assert all(rule["profiles"] == ["rfc8216"] for rule in listed["rules"] if rule["clause"])


check_findings()
check_comparisons()
check_models()
check_large_numbers()
check_lines()
check_sarif()
check_clauses()
print("all output is valid")
