#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/PlaylistText.h"
#include "tests/support/RunCommand.h"

namespace {

using namespace std::string_literals;

using command::Outcome;
using command::TemporaryFolder;
using playlist::contentOf;
using playlist::lines;
using testing::HasSubstr;

Outcome edit(std::vector<std::string> arguments, const std::string& input = "") {
    arguments.insert(arguments.begin(), {VELHLS_COMMAND, "edit"});
    return command::run(arguments, input);
}

/// What comes of the text; of an edit that fails, the message.
std::string edited(const std::vector<std::string>& arguments, const std::string& text) {
    const Outcome outcome = edit(arguments, text);
    EXPECT_EQ(outcome.exitStatus == 0, outcome.errors.empty());
    return outcome.exitStatus == 0 ? outcome.output : outcome.errors;
}

const std::string media =
    lines({"#EXTM3U", "#EXT-X-TARGETDURATION:6", "# kept", "#EXT-X-MAP:URI=\"init.mp4\"",
           "#EXTINF:6,Title, and more", "a.m4s?x=1#f", "#EXTINF:6,", "b.m4s"});

TEST(EditCommand, WithoutEditsWritesTheSameBytes) {
    for (const std::string& text : {""s, media, "#EXTM3U\r\n\r\na"s, "\0\n\r\xFF"s, "\xEF\xBB\xBF#EXTM3U"s})
        EXPECT_EQ(edited({}, text), text);
}

TEST(EditCommand, SetsAttributesOfEverySuchTagAsTheirTypesAreWritten) {
    const std::string text =
        "#EXT-X-MEDIA:TYPE=AUDIO,NAME=\"a\"\r\n#EXT-X-MEDIA:NAME=\"b\",LANGUAGE=\"en\"\r\nx";
    EXPECT_EQ(
        edited({"--set", "EXT-X-MEDIA:LANGUAGE=de"}, text),
        "#EXT-X-MEDIA:TYPE=AUDIO,NAME=\"a\",LANGUAGE=\"de\"\r\n#EXT-X-MEDIA:NAME=\"b\",LANGUAGE=\"de\"\r\nx");
    EXPECT_EQ(edited({"--set", "#EXT-X-MEDIA:TYPE=VIDEO", "--set", "EXT-X-MEDIA:X-OWN=\"1=2\"", "--remove",
                      "EXT-X-MEDIA:NAME"},
                     text),
              "#EXT-X-MEDIA:TYPE=VIDEO,X-OWN=\"1=2\"\r\n"
              "#EXT-X-MEDIA:LANGUAGE=\"en\",TYPE=VIDEO,X-OWN=\"1=2\"\r\nx");
    EXPECT_EQ(edited({"--set", "EXT-X-OTHER:A=1"}, text), text);
}

TEST(EditCommand, RemovesTags) {
    EXPECT_EQ(edited({"--remove", "EXT-X-MAP", "--remove", "EXTM3U"}, media),
              lines({"#EXT-X-TARGETDURATION:6", "# kept", "#EXTINF:6,Title, and more", "a.m4s?x=1#f",
                     "#EXTINF:6,", "b.m4s"}));
    EXPECT_EQ(edited({"--remove", "EXT-X-STREAM-INF"}, "#EXT-X-STREAM-INF:BANDWIDTH=1\n#c\nv\nw\n"),
              "#c\nw\n");
}

TEST(EditCommand, InsertsLinesBeforeThoseOfTheInput) {
    EXPECT_EQ(edited({"--insert-before", "2", "#two", "--insert-before", "1", "#one", "--insert-before", "2",
                      "#two and a half", "--remove", "EXTM3U"},
                     "#EXTM3U\r\na\r\n"),
              "#one\r\n#two\r\n#two and a half\r\na\r\n");
    EXPECT_EQ(edited({"--insert-before", "3", "c"}, "a\nb"), "a\nb\nc");
    const Outcome beyond = edit({"--insert-before", "4", "c"}, "a\nb");
    EXPECT_EQ(beyond.exitStatus, 2);
    EXPECT_THAT(beyond.errors, HasSubstr("has 2 lines, seen 4"));
    EXPECT_EQ(edit({"--insert-before", "0", "c"}, "a\nb").exitStatus, 2);
}

TEST(EditCommand, AppendsAQueryToUrisThatAreFetchedByHttp) {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"a.ts", "a.ts?t=1&u"},
        {"a.ts?x=2", "a.ts?x=2&t=1&u"},
        {"a.ts?", "a.ts?t=1&u"},
        {"a.ts?x&", "a.ts?x&t=1&u"},
        {"a.ts#f?g", "a.ts?t=1&u#f?g"},
        {"a.ts?x#f", "a.ts?x&t=1&u#f"},
        {"//host/a", "//host/a?t=1&u"},
        {"HTTP://host/a", "HTTP://host/a?t=1&u"},
        {"https://host", "https://host?t=1&u"},
        {"skd://key", "skd://key"},
        {"data:,abc", "data:,abc"},
        {"{$base}/a.ts", "{$base}/a.ts?t=1&u"},
        {"1a:b", "1a:b?t=1&u"},
    };
    for (const auto& [uri, expected] : rows) {
        EXPECT_EQ(edited({"--append-query", "t=1&u"}, uri + "\n"), expected + "\n");
        EXPECT_EQ(edited({"--append-query", "t=1&u"}, "#EXT-X-KEY:URI=\"" + uri + "\""),
                  "#EXT-X-KEY:URI=\"" + expected + "\"");
    }
    EXPECT_EQ(edited({"--append-query", "t={$token}&exp=1~acl=/*~hmac=%2F"}, "a.ts\n"),
              "a.ts?t={$token}&exp=1~acl=/*~hmac=%2F\n");
}

TEST(EditCommand, RefusesAQueryThatIsNone) {
    for (const std::string query :
         {"t=\"1\"", "a b", "t#f", "t=1\n", "?t=1", "&t=1", "t=<1>", "t=\xC3\xA4"}) {
        const Outcome refused = edit({"--append-query", query}, "#EXTM3U\na.ts\n");
        EXPECT_EQ(refused.exitStatus, 2) << query;
        EXPECT_THAT(refused.errors, HasSubstr("--append-query: expected a query as RFC 3986 writes it"));
        EXPECT_EQ(refused.output, "");
    }
}

TEST(EditCommand, RefusesWhatIsNoPlaylist) {
    const std::string littleEndian = "\xFF\xFE#\0E\0X\0T\0M\0003\0U\0\n\0a\0.\0t\0s\0\n\0"s;
    const std::string bigEndian = "\0#\0E\0X\0T\0M\0003\0U\0\n\0a\0.\0t\0s\0\n"s;
    for (const std::string& text : {littleEndian, bigEndian, std::string("\x1F\x8B\x08 compressed"),
                                    std::string("\r\n <html>\n404\n")}) {
        const Outcome refused = edit({"--append-query", "t=1"}, text);
        EXPECT_EQ(refused.exitStatus, 1) << text;
        EXPECT_EQ(refused.errors,
                  "<stdin>: error: cannot be edited: no playlist (velhls check says what it is)\n");
        EXPECT_EQ(refused.output, "");
    }
    EXPECT_EQ(edit({"--insert-before", "1", "#EXTM3U"}, littleEndian).exitStatus, 1);
    EXPECT_EQ(edited({}, littleEndian), littleEndian);
    EXPECT_EQ(edited({"--append-query", "t=1"}, ""), "");
    EXPECT_EQ(edited({"--append-query", "t=1"}, "a.ts\n<b>.ts\n"), "a.ts?t=1\n<b>.ts?t=1\n");
    EXPECT_EQ(edited({"--append-query", "t=1"}, "<\n#EXTINF:6,\na.ts\n"), "<?t=1\n#EXTINF:6,\na.ts?t=1\n");
}

#ifdef VELHLS_HAS_URIPARSER

TEST(EditCommand, MakesUrisAbsoluteByTheExamplesOfRfc3986) {
    // Section 5.4, less those that are empty or begin with "#", which are no URI lines.
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"g:h", "g:h"},
        {"g", "http://a/b/c/g"},
        {"./g", "http://a/b/c/g"},
        {"g/", "http://a/b/c/g/"},
        {"/g", "http://a/g"},
        {"//g", "http://g"},
        {"?y", "http://a/b/c/d;p?y"},
        {"g?y", "http://a/b/c/g?y"},
        {"g#s", "http://a/b/c/g#s"},
        {"g?y#s", "http://a/b/c/g?y#s"},
        {";x", "http://a/b/c/;x"},
        {"g;x?y#s", "http://a/b/c/g;x?y#s"},
        {".", "http://a/b/c/"},
        {"./", "http://a/b/c/"},
        {"..", "http://a/b/"},
        {"../", "http://a/b/"},
        {"../g", "http://a/b/g"},
        {"../..", "http://a/"},
        {"../../g", "http://a/g"},
        {"../../../g", "http://a/g"},
        {"/./g", "http://a/g"},
        {"/../g", "http://a/g"},
        {"g.", "http://a/b/c/g."},
        {"..g", "http://a/b/c/..g"},
        {"./g/.", "http://a/b/c/g/"},
        {"g/./h", "http://a/b/c/g/h"},
        {"g/../h", "http://a/b/c/h"},
        {"g;x=1/../y", "http://a/b/c/y"},
        {"g?y/../x", "http://a/b/c/g?y/../x"},
        {"g#s/../x", "http://a/b/c/g#s/../x"},
        {"http:g", "http:g"},
    };
    for (const auto& [reference, expected] : rows) {
        EXPECT_EQ(edited({"--base", "http://a/b/c/d;p?q"}, reference + "\n"), expected + "\n");
        EXPECT_EQ(edited({"--base", "http://a/b/c/d;p?q"}, "#EXT-X-MAP:URI=\"" + reference + "\"\r\n"),
                  "#EXT-X-MAP:URI=\"" + expected + "\"\r\n");
    }
}

TEST(EditCommand, MakesAbsoluteWhatIsNearlyAUri) {
    const std::vector<std::string> base = {"--base", "https://example.com/x/y.m3u8"};
    EXPECT_EQ(edited(base, "my video.ts\n"), "https://example.com/x/my%20video.ts\n");
    EXPECT_EQ(edited(base, "\xC3\xA4.ts\n"), "https://example.com/x/%C3%A4.ts\n");
    EXPECT_EQ(edited(base, "seg{$n}.ts{$query}\n"), "https://example.com/x/seg{$n}.ts{$query}\n");
    EXPECT_EQ(edited(base, "https://other/my video.ts\n"), "https://other/my video.ts\n");
    EXPECT_EQ(edited(base, "{$base}/a.ts\n"),
              "<stdin>:1: error: \"{$base}/a.ts\": it depends on a variable\n");
    EXPECT_EQ(edited(base, "..{$base}/a.ts\n"),
              "<stdin>:1: error: \"..{$base}/a.ts\": it depends on a variable\n");
    EXPECT_EQ(edited(base, "a%zz\n"), "<stdin>:1: error: \"a%zz\": it is no URI\n");
}

TEST(EditCommand, WantsAnAbsoluteBase) {
    for (const char* base : {"relative/path", "//host/a", "", "http://[", "http://a b/"}) {
        const Outcome outcome = edit({"--base", base}, media);
        EXPECT_EQ(outcome.exitStatus, *base == '\0' ? 0 : 2) << base;
    }
}

TEST(EditCommand, MakesAbsoluteBeforeItAppendsTheQuery) {
    EXPECT_EQ(edited({"--base", "https://h/p/", "--append-query", "t=1"}, "a.ts?x#f\nskd:k\n"),
              "https://h/p/a.ts?x&t=1#f\nskd:k\n");
}

#endif

TEST(EditCommand, WritesTheValuesOfSetAsGiven) {
    EXPECT_EQ(edited({"--set", "EXT-X-MAP:URI=new.mp4", "--append-query", "t=1"}, media),
              lines({"#EXTM3U", "#EXT-X-TARGETDURATION:6", "# kept", "#EXT-X-MAP:URI=\"new.mp4\"",
                     "#EXTINF:6,Title, and more", "a.m4s?x=1&t=1#f", "#EXTINF:6,", "b.m4s?t=1"}));
}

const std::string master =
    lines({"#EXTM3U", "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"low\",NAME=\"l\",URI=\"l.m3u8\"",
           "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"high\",NAME=\"h\",URI=\"h.m3u8\"",
           "#EXT-X-MEDIA:TYPE=SUBTITLES,GROUP-ID=\"high\",NAME=\"s\",URI=\"s.m3u8\"",
           "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"spare\",NAME=\"x\",URI=\"x.m3u8\"",
           "#ZOR-STREAM-INF:NOMINAL_VIDEO_BITRATE=1",
           "#EXT-X-STREAM-INF:BANDWIDTH=1000,AUDIO=\"low\",FRAME-RATE=25", "1.m3u8",
           "#ZOR-STREAM-INF:NOMINAL_VIDEO_BITRATE=2",
           "#EXT-X-STREAM-INF:BANDWIDTH=2000,AUDIO=\"high\",CODECS=\"mp4a.40.2,hvc1.1\"", "# about", "2.m3u8",
           "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=3000,URI=\"i.m3u8\"",
           "#EXT-X-SESSION-DATA:DATA-ID=\"d\",VALUE=\"v\""});

TEST(EditCommand, DropsVariantsAndWhatOnlyTheyName) {
    const std::string low =
        lines({"#EXTM3U", "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"low\",NAME=\"l\",URI=\"l.m3u8\"",
               "#EXT-X-MEDIA:TYPE=SUBTITLES,GROUP-ID=\"high\",NAME=\"s\",URI=\"s.m3u8\"",
               "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"spare\",NAME=\"x\",URI=\"x.m3u8\"",
               "#ZOR-STREAM-INF:NOMINAL_VIDEO_BITRATE=1",
               "#EXT-X-STREAM-INF:BANDWIDTH=1000,AUDIO=\"low\",FRAME-RATE=25", "1.m3u8", "# about",
               "#EXT-X-SESSION-DATA:DATA-ID=\"d\",VALUE=\"v\""});
    EXPECT_EQ(edited({"--max-bandwidth", "1999"}, master), low);
    const std::string lowWithIFrames = low.substr(0, low.find("#EXT-X-SESSION")) +
                                       "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=3000,URI=\"i.m3u8\"\n" +
                                       low.substr(low.find("#EXT-X-SESSION"));
    EXPECT_EQ(edited({"--drop-codec", "hvc1"}, master), lowWithIFrames);
    EXPECT_EQ(edited({"--drop-codec", "vc1", "--max-bandwidth", "3000", "--min-bandwidth", "1000"}, master),
              master);
    const Outcome high = edit({"--min-bandwidth", "1001"}, master);
    EXPECT_THAT(high.output, HasSubstr("GROUP-ID=\"high\""));
    EXPECT_THAT(high.output, testing::Not(HasSubstr("GROUP-ID=\"low\"")));
    EXPECT_THAT(high.output, testing::Not(HasSubstr("NOMINAL_VIDEO_BITRATE=1\n")));
}

TEST(EditCommand, DropsIFrameVariantsWhereThereAreNoOthers) {
    const auto iFrames = [](const std::string& bandwidth) {
        return "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=" + bandwidth + ",URI=\"i.m3u8\"\n";
    };
    EXPECT_EQ(edited({"--max-bandwidth", "1000"}, iFrames("1000") + iFrames("1001")), iFrames("1000"));
}

TEST(EditCommand, TakesNoCaptionsForNoGroup) {
    const std::string captions =
        "#EXT-X-MEDIA:TYPE=CLOSED-CAPTIONS,GROUP-ID=\"NONE\",NAME=\"c\",INSTREAM-ID=\"CC1\"\n";
    const std::string low = "#EXT-X-STREAM-INF:BANDWIDTH=1000\n1.m3u8\n";
    const std::string high = "#EXT-X-STREAM-INF:BANDWIDTH=2000,CLOSED-CAPTIONS=";
    EXPECT_EQ(edited({"--max-bandwidth", "1000"}, captions + low + high + "NONE\n2.m3u8\n"), captions + low);
    EXPECT_EQ(edited({"--max-bandwidth", "1000"}, captions + low + high + "\"NONE\"\n2.m3u8\n"), low);
}

TEST(EditCommand, TakesBitRatesWithUnits) {
    const std::string rich = "#EXT-X-STREAM-INF:BANDWIDTH=2500000\n2.m3u8\n";
    const std::string poor = "#EXT-X-STREAM-INF:BANDWIDTH=2499999\n1.m3u8\n";
    for (const char* const limit : {"2500000", "2500k", "2500K", "2.5M", "2.5000m", "0.0025G", "2.500000M"}) {
        EXPECT_EQ(edited({"--min-bandwidth", limit}, rich + poor), rich) << limit;
    }
    EXPECT_EQ(edited({"--max-bandwidth", "18446744073709551615"}, rich), rich);
    for (const std::string wrong :
         {"2Q", "-1", "k", ".5M", "2.M", "2.5", "2.5555k", "2,5M", "2.5.5M", "2Mb", " 2", "2 M", "1e6",
          "0x10", "18446744073709551616", "99999999999999999999G"}) {
        const Outcome outcome = edit({"--max-bandwidth=" + wrong}, rich);
        EXPECT_EQ(outcome.exitStatus, 2) << wrong;
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(
            outcome.errors,
            "velhls: error: --max-bandwidth: expected bits per second, as 2500000, 2500k or 2.5M, seen \"" +
                wrong + "\"\nRun velhls with --help for more information.\n");
    }
}

TEST(EditCommand, RefusesToDropAllVariantsAndThoseItCannotJudge) {
    const Outcome none = edit({"--min-bandwidth", "5000"}, master);
    EXPECT_EQ(none.exitStatus, 1);
    EXPECT_EQ(none.errors, "<stdin>:7: error: no variant would be left: nothing is changed\n");
    EXPECT_EQ(none.output, "");
    const Outcome unknown = edit({"--min-bandwidth", "1"}, "#EXT-X-STREAM-INF:BANDWIDTH=x\nv\n");
    EXPECT_EQ(unknown.exitStatus, 1);
    EXPECT_EQ(unknown.errors, "<stdin>:1: error: expected a BANDWIDTH to judge the variant by\n");
    EXPECT_EQ(edit({"--max-bandwidth", "1"}, media).exitStatus, 2);
    EXPECT_EQ(edit({"--drop-codec", "avc1"}, "").exitStatus, 2);
}

TEST(EditCommand, RefusesWhatATagCannotBeGiven) {
    const Outcome refused = edit({"--set", "EXT-X-MAP:URI=a\"b"}, media);
    EXPECT_EQ(refused.exitStatus, 1);
    EXPECT_EQ(refused.errors, "<stdin>:4: error: URI: a quoted string holds no quote and no line end\n");
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{"--set", "EXT-X-MAP"},
                                                      {"--set", "EXT-X-MAP:URI"},
                                                      {"--set", "EXT-X-VERSION:A=1"},
                                                      {"--remove", "EXTINF:A"},
                                                      {"--remove", ""},
                                                      {"--remove", ":A"},
                                                      {"--apply"},
                                                      {"--apply", "-"},
                                                      {"--insert-before", "1"},
                                                      {"--insert-before", "x", "y"},
                                                      {"--unknown"},
                                                      {"--max-bandwidth", "-1"}}) {
        const Outcome outcome = edit(arguments, media);
        EXPECT_EQ(outcome.exitStatus, 2) << arguments[0];
        EXPECT_EQ(outcome.output, "");
    }
}

TEST(EditCommand, ReplacesAFileInPlaceOnlyWhenSomethingChanges) {
    const TemporaryFolder folder;
    const std::string path = folder.with("media.m3u8", media);
    const auto written = std::filesystem::last_write_time(path) - std::chrono::hours(1);
    std::filesystem::last_write_time(path, written);
    const Outcome none = edit({path, "--apply", "--remove", "EXT-X-OTHER"});
    EXPECT_EQ(none.exitStatus, 0);
    EXPECT_EQ(none.output + none.errors, "");
    EXPECT_EQ(std::filesystem::last_write_time(path), written);

    const Outcome some = edit({path, "--apply", "--remove", "EXT-X-MAP"});
    EXPECT_EQ(some.exitStatus, 0);
    EXPECT_EQ(some.output + some.errors, "");
    EXPECT_EQ(contentOf(path), edited({"--remove", "EXT-X-MAP"}, media));

    EXPECT_EQ(edit({path, "--apply", "--set", "EXT-X-MAP:URI=a\"b", "--remove", "EXTM3U"}).exitStatus, 0);
    const std::string before = contentOf(path);
    EXPECT_EQ(edit({path, "--apply", "--append-query", "\n"}).exitStatus, 2);
    EXPECT_EQ(contentOf(path), before);
    EXPECT_EQ(edit({path, "--apply", "-o", folder.file("other")}).exitStatus, 2);
    EXPECT_EQ(edit({folder.file("missing"), "--apply"}).exitStatus, 2);
}

TEST(EditCommand, TakesSizesAsTheOtherCommandsDo) {
    EXPECT_EQ(edited({"--max-bytes", "1k"}, media), media);
    EXPECT_EQ(edit({"--max-bytes", "10"}, media).exitStatus, 2);
    const Outcome wrong = edit({"--max-bytes", "many"}, media);
    EXPECT_EQ(wrong.exitStatus, 2);
    EXPECT_THAT(wrong.errors, HasSubstr("expected a number of bytes, as 10k, seen \"many\""));
}

TEST(EditCommand, WritesToAnotherFile) {
    const TemporaryFolder folder;
    const std::string path = folder.with("media.m3u8", media);
    EXPECT_EQ(edit({path, "-o", folder.file("out"), "--remove", "EXTM3U"}).exitStatus, 0);
    EXPECT_EQ(contentOf(folder.file("out")), media.substr(8));
    EXPECT_EQ(contentOf(path), media);
}

TEST(EditCommand, ShowsAUnifiedDiff) {
    EXPECT_EQ(edited({"--diff"}, media), "");
    EXPECT_EQ(edited({"--diff", "--remove", "EXT-X-OTHER", "--set", "EXT-X-MAP:URI=init.mp4"}, media), "");
    EXPECT_EQ(
        edited({"--diff", "--set", "EXT-X-MAP:URI=i.mp4", "--insert-before", "8", "# x"}, media),
        "--- <stdin>\n+++ <stdin>\n@@ -1,8 +1,9 @@\n #EXTM3U\n #EXT-X-TARGETDURATION:6\n # kept\n"
        "-#EXT-X-MAP:URI=\"init.mp4\"\n+#EXT-X-MAP:URI=\"i.mp4\"\n #EXTINF:6,Title, and more\n a.m4s?x=1#f\n"
        " #EXTINF:6,\n+# x\n b.m4s\n");
    EXPECT_EQ(edited({"--diff", "--insert-before", "2", "b"}, "a"),
              "--- <stdin>\n+++ <stdin>\n@@ -1 +1,2 @@\n-a\n\\ No newline at end of file\n+a\n+b\n"
              "\\ No newline at end of file\n");
    EXPECT_EQ(edited({"--diff", "--insert-before", "1", "b"}, ""),
              "--- <stdin>\n+++ <stdin>\n@@ -0,0 +1 @@\n+b\n");
    EXPECT_EQ(edited({"--diff", "--remove", "EXTM3U"}, "#EXTM3U\r\n"),
              "--- <stdin>\n+++ <stdin>\n@@ -1 +0,0 @@\n-#EXTM3U\r\n");
}

TEST(EditCommand, ShowsChangesFarApartInHunksOfTheirOwn) {
    std::string text;
    for (int line = 1; line <= 20; ++line)
        text += "#A" + std::to_string(line) + "\n";
    EXPECT_EQ(edited({"--diff", "--remove", "A2", "--insert-before", "18", "#B"}, text),
              "--- <stdin>\n+++ <stdin>\n@@ -1,5 +1,4 @@\n #A1\n-#A2\n #A3\n #A4\n #A5\n"
              "@@ -15,6 +14,7 @@\n #A15\n #A16\n #A17\n+#B\n #A18\n #A19\n #A20\n");
    // Six lines between two changes are the context of both.
    EXPECT_EQ(
        edited({"--diff", "--remove", "A2", "--insert-before", "9", "#B"}, text),
        "--- <stdin>\n+++ <stdin>\n@@ -1,11 +1,11 @@\n #A1\n-#A2\n #A3\n #A4\n #A5\n #A6\n #A7\n #A8\n+#B\n"
        " #A9\n #A10\n #A11\n");
    EXPECT_THAT(edited({"--diff", "--remove", "A2", "--insert-before", "10", "#B"}, text),
                HasSubstr("\n@@ -7,6 +6,7 @@\n #A7\n #A8\n #A9\n+#B\n"));
}

TEST(EditCommand, ShowsWhatItReplaces) {
    const TemporaryFolder folder;
    const std::string path = folder.with("media.m3u8", "#EXTM3U\na\n");
    const Outcome outcome = edit({path, "--apply", "--diff", "--remove", "EXTM3U"});
    EXPECT_EQ(outcome.output, "--- " + path + "\n+++ " + path + "\n@@ -1,2 +1 @@\n-#EXTM3U\n a\n");
    EXPECT_EQ(contentOf(path), "a\n");
}

}  // namespace
