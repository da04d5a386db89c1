#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/VELHLS.h"

#include "tests/manifest/ManifestDescription.h"

namespace {

using namespace std::string_literals;
using playlist::describe;

using Manifest = VELHLSParsedManifest;
using Rendition = VELHLSMediaStreamRendition;
using Tags = std::vector<std::string>;

const std::string variantUri = "v.m3u8";

bool begins(const std::string& text, const std::string& start) {
    return text.compare(0, start.size(), start) == 0;
}

/// The tags as a playlist, a URI line after each EXT-X-STREAM-INF.
std::string textOf(const Tags& tags) {
    std::string text;
    for (const std::string& tag : tags) {
        text += tag + "\n";
        if (begins(tag, "#EXT-X-STREAM-INF:")) text += variantUri + "\n";
    }
    return text;
}

void fileVariant(Manifest& manifest, const std::shared_ptr<VELHLSMediaVariant>& variant) {
    ASSERT_NE(variant, nullptr);
    manifest.variants.emplace(variant->bandwidth, variant);
    if (!variant->isIFrame) manifest.streamVariants.push_back(variant);
}

void fileRendition(Manifest& manifest, const std::shared_ptr<Rendition>& rendition) {
    ASSERT_NE(rendition, nullptr);
    manifest.renditions[rendition->type][rendition->groupId].emplace(rendition->name, rendition);
}

void fileSessionKey(Manifest& manifest, const std::string& tag) {
    const auto key = std::make_shared<VELHLSProtectionData>(VELHLSProtectionData::None, "", "", "",
                                                            std::vector<std::int32_t>());
    ASSERT_EQ(key->parse(tag), 0);
    manifest.sessionKeys.push_back(key);
}

void file(Manifest& manifest, const std::string& tag) {
    if (begins(tag, "#EXT-X-STREAM-INF:")) {
        fileVariant(manifest, VELHLSMediaVariant::parseVariant(tag, variantUri));
    } else if (begins(tag, "#EXT-X-I-FRAME-STREAM-INF:")) {
        fileVariant(manifest, VELHLSMediaVariant::parseVariant(tag, ""));
    } else if (begins(tag, "#EXT-X-MEDIA:")) {
        fileRendition(manifest, Rendition::parse(tag));
    } else if (begins(tag, "#EXT-X-SESSION-KEY:")) {
        fileSessionKey(manifest, tag);
    } else {
        manifest.sessionData.push_back(VELHLSManifestSessionData::parseSessionData(tag));
        ASSERT_NE(manifest.sessionData.back(), nullptr);
    }
}

/// A manifest whose records were parsed one by one and filed by hand: nothing has validated it.
Manifest filedByHand(const Tags& tags) {
    Manifest manifest;
    for (const std::string& tag : tags) {
        SCOPED_TRACE(tag);
        file(manifest, tag);
    }
    return manifest;
}

std::shared_ptr<Manifest> parsed(const std::string& text) {
    std::istringstream input(text);
    return Manifest::parseManifest(input, nullptr);
}

/// `validate` of the manifest, which it must not change.
bool validates(const Manifest& manifest) {
    const std::string before = describe(manifest);
    const bool valid = manifest.validate();
    EXPECT_EQ(describe(manifest), before);
    EXPECT_EQ(manifest.validate(), valid) << "asked again";
    return valid;
}

/// Both roads to one answer: the manifest filed by hand, and the playlist parsed.
void expectValid(const Tags& tags, bool valid) {
    const std::string text = textOf(tags);
    SCOPED_TRACE(text);
    EXPECT_EQ(validates(filedByHand(tags)), valid);
    EXPECT_EQ(parsed(text) != nullptr, valid);
}

/// The tags before and after a variant without groups, which makes rule 1 hold.
void expectValidWithVariant(const Tags& tags, bool valid) {
    const std::string variant = "#EXT-X-STREAM-INF:BANDWIDTH=1";
    Tags after = tags;
    after.insert(after.begin(), variant);
    expectValid(after, valid);
    Tags before = tags;
    before.push_back(variant);
    expectValid(before, valid);
}

std::string media(const std::string& type, const std::string& groupId, const std::string& name,
                  const std::string& more = "") {
    return "#EXT-X-MEDIA:TYPE=" + type + ",GROUP-ID=\"" + groupId + "\",NAME=\"" + name + "\"" + more;
}

std::string audio(const std::string& groupId, const std::string& name, const std::string& more = "") {
    return media("AUDIO", groupId, name, more);
}

std::string stream(const std::string& bandwidth, const std::string& more = "") {
    return "#EXT-X-STREAM-INF:BANDWIDTH=" + bandwidth + more;
}

std::string iFrame(const std::string& more = "") {
    return "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=1,URI=\"i\"" + more;
}

std::string sessionData(const std::string& dataId, const std::string& more = "") {
    return "#EXT-X-SESSION-DATA:FIRST=1,VALUE=\"v\",DATA-ID=\"" + dataId + "\"" + more;
}

std::string sessionKey(const std::string& uri, const std::string& more = "") {
    return "#EXT-X-SESSION-KEY:METHOD=AES-128,URI=\"" + uri + "\"" + more;
}

// ---------------------------------------------------------------------------------------------------------
// Variants are there

TEST(VELHLSParsedManifestValidate, DemandsAVariantOfEitherKind) {
    EXPECT_FALSE(validates(Manifest()));
    expectValid({}, false);
    expectValid({stream("1")}, true);
    expectValid({iFrame()}, true);
    expectValid({iFrame(), stream("1"), iFrame()}, true);
    expectValid({audio("g", "n")}, false);
    expectValid({sessionData("a")}, false);
    expectValid({sessionKey("k")}, false);
    expectValid({audio("g", "n"), sessionData("a"), sessionKey("k")}, false);
    expectValid({audio("g", "n"), sessionData("a"), sessionKey("k"), iFrame()}, true);
}

TEST(VELHLSParsedManifestValidate, LooksForVariantsInTheMultimapOnly) {
    Manifest manifest = filedByHand({stream("1")});
    manifest.variants.clear();
    EXPECT_FALSE(validates(manifest)) << "the vector of stream variants is not looked at";

    manifest = filedByHand({stream("1")});
    manifest.streamVariants.clear();
    EXPECT_TRUE(validates(manifest));
}

// ---------------------------------------------------------------------------------------------------------
// Group references resolve

TEST(VELHLSParsedManifestValidate, LooksReferencesUpUnderTheirType) {
    const Tags types = {"AUDIO", "VIDEO", "SUBTITLES", "CLOSED-CAPTIONS"};
    for (const std::string& present : types) {
        const std::string rendition =
            media(present, "g", "n", present == "CLOSED-CAPTIONS" ? ",INSTREAM-ID=\"CC1\"" : "");
        for (const std::string& referenced : types) {
            const std::string reference = "," + referenced + "=\"g\"";
            expectValid({rendition, stream("1", reference)}, referenced == present);
            expectValid({stream("1", reference), rendition}, referenced == present);
            expectValid({rendition, iFrame(reference)}, referenced == present);
        }
    }
}

TEST(VELHLSParsedManifestValidate, ComparesGroupIdsByteForByte) {
    for (const std::string& groupId : {"G"s, "g "s, " g"s, "gg"s, "g\0"s, ""s, "\xC3\xA9"s}) {
        expectValid({audio("g", "n"), stream("1", ",AUDIO=\"" + groupId + "\"")}, false);
    }
    for (const std::string& groupId : {"G"s, "g "s, "g\0h"s, "\xC3\xA9"s, "a,b"s, "a=b"s}) {
        expectValid({audio(groupId, "n"), stream("1", ",AUDIO=\"" + groupId + "\"")}, true);
    }
}

TEST(VELHLSParsedManifestValidate, ChecksTheReferencesOfEveryVariant) {
    const std::string good = ",AUDIO=\"g\"";
    const std::string bad = ",AUDIO=\"h\"";
    expectValid({audio("g", "n"), stream("1", good), stream("2", good), stream("3")}, true);
    expectValid({audio("g", "n"), stream("1", bad), stream("2", good), stream("3")}, false);
    expectValid({audio("g", "n"), stream("3", good), stream("2", bad), stream("1")}, false);
    expectValid({audio("g", "n"), stream("1", good), stream("1", good), stream("1", bad)}, false);
    expectValid({audio("g", "n"), stream("1", good), iFrame(bad)}, false);
}

TEST(VELHLSParsedManifestValidate, ChecksEveryReferenceOfAVariant) {
    const Tags renditions = {audio("a", "n"), media("VIDEO", "v", "n"), media("SUBTITLES", "s", "n"),
                             media("CLOSED-CAPTIONS", "c", "n", ",INSTREAM-ID=\"CC1\"")};
    const std::string references = ",AUDIO=\"a\",VIDEO=\"v\",SUBTITLES=\"s\",CLOSED-CAPTIONS=\"c\"";
    Tags all = renditions;
    all.push_back(stream("1", references));
    expectValid(all, true);
    for (std::size_t index = 0; index < renditions.size(); ++index) {
        Tags lessOne = all;
        lessOne.erase(lessOne.begin() + static_cast<std::ptrdiff_t>(index));
        expectValid(lessOne, false);
    }
}

TEST(VELHLSParsedManifestValidate, NoneIsAReferenceExceptForClosedCaptions) {
    expectValid({stream("1", ",CLOSED-CAPTIONS=NONE")}, true);
    expectValid({stream("1", ",CLOSED-CAPTIONS=\"NONE\"")}, true);
    expectValid({stream("1", ",CLOSED-CAPTIONS=none")}, false);
    expectValid({stream("1", ",AUDIO=NONE")}, false);
    expectValid({stream("1", ",VIDEO=NONE")}, false);
    expectValid({stream("1", ",SUBTITLES=NONE")}, false);
}

TEST(VELHLSParsedManifestValidate, ReferencedGroupMustHoldARendition) {
    Manifest manifest = filedByHand({stream("1", ",AUDIO=\"g\"")});
    EXPECT_FALSE(validates(manifest)) << "no such type";
    manifest.renditions[Rendition::Audio];
    EXPECT_FALSE(validates(manifest)) << "no such group";
    manifest.renditions[Rendition::Audio]["g"];
    EXPECT_FALSE(validates(manifest)) << "nothing in the group";
    file(manifest, audio("g", "n"));
    EXPECT_TRUE(validates(manifest));
}

TEST(VELHLSParsedManifestValidate, EmptyTypesAndGroupsThatNoVariantNamesAreNoFault) {
    Manifest manifest = filedByHand({stream("1")});
    manifest.renditions[Rendition::Audio];
    EXPECT_TRUE(validates(manifest));
    manifest.renditions[Rendition::Audio]["g"];
    EXPECT_TRUE(validates(manifest));
    manifest.renditions[Rendition::Audio]["h"];
    EXPECT_TRUE(validates(manifest)) << "two groups of nothing agree";
}

TEST(VELHLSParsedManifestValidate, AddsNothingWhereItLooks) {
    const Manifest manifest = filedByHand({stream("1", ",AUDIO=\"g\",SUBTITLES=\"s\"")});
    EXPECT_FALSE(manifest.validate());
    EXPECT_TRUE(manifest.renditions.empty());
}

// ---------------------------------------------------------------------------------------------------------
// The groups of one type agree

TEST(VELHLSParsedManifestValidate, GroupsOfOneTypeOfferTheSameNames) {
    const std::string uri = ",URI=\"u\"";
    expectValidWithVariant({audio("A", "English"), audio("A", "French")}, true);
    expectValidWithVariant(
        {audio("A", "English"), audio("A", "French"), audio("B", "English", uri), audio("B", "French", uri)},
        true);
    expectValidWithVariant({audio("A", "English"), audio("A", "French"), audio("B", "English")}, false);
    expectValidWithVariant({audio("A", "English"), audio("B", "English"), audio("B", "French")}, false);
    expectValidWithVariant({audio("A", "English"), audio("A", "French"), audio("B", "English"),
                            audio("B", "French"), audio("B", "German")},
                           false);
    expectValidWithVariant({audio("A", "English"), audio("B", "French")}, false);
    expectValidWithVariant({audio("A", "English"), audio("B", "english")}, false);
}

TEST(VELHLSParsedManifestValidate, EveryGroupIsComparedAndNotOnlyTheSecond) {
    const Tags agreeing = {audio("a", "n"), audio("b", "n"), audio("c", "n"), audio("d", "n")};
    expectValidWithVariant(agreeing, true);
    for (const std::string& group : {"a"s, "b"s, "c"s, "d"s}) {
        Tags withOneMore = agreeing;
        withOneMore.push_back(audio(group, "more"));
        expectValidWithVariant(withOneMore, false);
        withOneMore.insert(withOneMore.begin(), withOneMore.back());
        withOneMore.pop_back();
        expectValidWithVariant(withOneMore, false);
    }
}

TEST(VELHLSParsedManifestValidate, GroupsOfDifferentTypesNeedNotAgree) {
    expectValidWithVariant({audio("g", "n"), media("VIDEO", "g", "other"), media("SUBTITLES", "h", "n"),
                            media("SUBTITLES", "h", "m")},
                           true);
    expectValidWithVariant(
        {audio("g", "n"), audio("h", "n"), media("SUBTITLES", "g", "n"), media("SUBTITLES", "h", "m")},
        false);
}

TEST(VELHLSParsedManifestValidate, RenditionsOfOneNameAreEqualButForUriGroupAndTrackType) {
    const struct {
        std::string type;
        std::string inA;
        std::string inB;
        bool valid;
    } rows[] = {
        {"AUDIO", "", "", true},
        {"AUDIO", ",URI=\"a\"", ",URI=\"b\"", true},
        {"AUDIO", ",URI=\"a\"", "", true},
        {"AUDIO", ",AUDIO-TRACK-TYPE=\"a\"", ",AUDIO-TRACK-TYPE=\"b\"", true},
        {"AUDIO", ",UNKNOWN=\"a\"", ",UNKNOWN=\"b\"", true},
        {"AUDIO", ",CHANNELS=\"2\"", ",CHANNELS=\"6\"", true},
        {"AUDIO", ",LANGUAGE=\"en\"", ",LANGUAGE=\"en\"", true},
        {"AUDIO", ",LANGUAGE=\"en\"", ",LANGUAGE=\"EN\"", false},
        {"AUDIO", ",LANGUAGE=\"en\"", "", false},
        {"AUDIO", ",ASSOC-LANGUAGE=\"en\"", ",ASSOC-LANGUAGE=\"fr\"", false},
        {"AUDIO", ",ASSOC-LANGUAGE=\"en\"", "", false},
        {"AUDIO", ",LANGUAGE=\"en\"", ",ASSOC-LANGUAGE=\"en\"", false},
        {"AUDIO", ",DEFAULT=YES", ",DEFAULT=YES", true},
        {"AUDIO", ",DEFAULT=YES", ",DEFAULT=NO", false},
        {"AUDIO", ",DEFAULT=NO", "", true},
        {"AUDIO", ",DEFAULT=YES,AUTOSELECT=NO", ",DEFAULT=YES,AUTOSELECT=YES", true},
        {"AUDIO", ",DEFAULT=YES", ",AUTOSELECT=YES", false},
        {"AUDIO", ",AUTOSELECT=YES", ",AUTOSELECT=YES", true},
        {"AUDIO", ",AUTOSELECT=YES", "", false},
        {"SUBTITLES", ",FORCED=YES", ",FORCED=YES", true},
        {"SUBTITLES", ",FORCED=YES", "", false},
        {"CLOSED-CAPTIONS", ",INSTREAM-ID=\"CC1\"", ",INSTREAM-ID=\"CC1\"", true},
        {"CLOSED-CAPTIONS", ",INSTREAM-ID=\"CC1\"", ",INSTREAM-ID=\"CC2\"", false},
        {"VIDEO", ",CHARACTERISTICS=\"a,b\"", ",CHARACTERISTICS=\"b,a,b\"", true},
        {"VIDEO", ",CHARACTERISTICS=\"a,b\"", ",CHARACTERISTICS=\"a\"", false},
        {"VIDEO", ",CHARACTERISTICS=\"a\"", ",CHARACTERISTICS=\"A\"", false},
        {"VIDEO", ",CHARACTERISTICS=\"\"", "", false},
    };
    for (const auto& row : rows) {
        expectValidWithVariant({media(row.type, "A", "n", row.inA), media(row.type, "B", "n", row.inB)},
                               row.valid);
        expectValidWithVariant({media(row.type, "A", "n", row.inB), media(row.type, "B", "n", row.inA)},
                               row.valid);
    }
}

TEST(VELHLSParsedManifestValidate, OneRenditionOfAGroupMayBeDefault) {
    const std::string isDefault = ",DEFAULT=YES";
    expectValidWithVariant({audio("A", "1"), audio("A", "2")}, true);
    expectValidWithVariant({audio("A", "1", isDefault), audio("A", "2")}, true);
    expectValidWithVariant({audio("A", "1"), audio("A", "2", isDefault)}, true);
    expectValidWithVariant({audio("A", "1", isDefault), audio("A", "2", isDefault)}, false);
    expectValidWithVariant({audio("A", "1", isDefault), audio("A", "2"), audio("A", "3", isDefault)}, false);
    expectValidWithVariant({audio("A", "1", isDefault), media("VIDEO", "A", "1", isDefault)}, true);
}

TEST(VELHLSParsedManifestValidate, OtherGroupsHaveTheSameDefaultAsTheFirst) {
    const std::string isDefault = ",DEFAULT=YES";
    expectValidWithVariant(
        {audio("A", "1", isDefault), audio("A", "2"), audio("B", "1", isDefault), audio("B", "2")}, true);
    expectValidWithVariant(
        {audio("A", "1", isDefault), audio("A", "2"), audio("B", "1"), audio("B", "2", isDefault)}, false);
    expectValidWithVariant(
        {audio("A", "1", isDefault), audio("A", "2"), audio("B", "1", isDefault), audio("B", "2", isDefault)},
        false);
    expectValidWithVariant({audio("A", "1", isDefault), audio("A", "2", isDefault),
                            audio("B", "1", isDefault), audio("B", "2", isDefault)},
                           false);
}

TEST(VELHLSParsedManifestValidate, GroupsThatNoVariantNamesAreCheckedToo) {
    expectValid({audio("A", "1"), audio("B", "1"), audio("B", "2"), stream("1", ",AUDIO=\"A\"")}, false);
    expectValid({audio("A", "1"), media("SUBTITLES", "B", "1"), media("SUBTITLES", "C", "2"),
                 stream("1", ",AUDIO=\"A\"")},
                false);
    expectValid({audio("A", "1"), media("VIDEO", "B", "1", ",DEFAULT=YES"),
                 media("VIDEO", "B", "2", ",DEFAULT=YES"), stream("1", ",AUDIO=\"A\"")},
                false);
}

TEST(VELHLSParsedManifestValidate, RepeatedRenditionThatWasDroppedDoesNotCount) {
    expectValidWithVariant({audio("A", "1", ",DEFAULT=YES"), audio("A", "1", ",LANGUAGE=\"en\""),
                            audio("B", "1", ",DEFAULT=YES")},
                           true);
}

TEST(VELHLSParsedManifestValidate, TypesBeyondTheFourAreCheckedAlike) {
    constexpr auto otherType = static_cast<Rendition::RenditionType>(7);
    const auto other = [&](const std::string& name) {
        return std::make_shared<Rendition>(otherType, "", nullptr, "g", "", "", name, false, false, false, "",
                                           "");
    };
    Manifest manifest = filedByHand({stream("1")});
    manifest.variants.begin()->second->groupIds[otherType] = "g";
    EXPECT_FALSE(validates(manifest));
    manifest.renditions[otherType]["g"]["n"] = other("n");
    EXPECT_TRUE(validates(manifest));
    manifest.renditions[otherType]["h"]["m"] = other("m");
    EXPECT_FALSE(validates(manifest));
}

// ---------------------------------------------------------------------------------------------------------
// Session data is unique

TEST(VELHLSParsedManifestValidate, SessionDataIsUniqueByIdAndLanguage) {
    const std::string en = ",LANGUAGE=\"en\"";
    const std::string fr = ",LANGUAGE=\"fr\"";
    expectValidWithVariant({sessionData("a")}, true);
    expectValidWithVariant({sessionData("a"), sessionData("a")}, false);
    expectValidWithVariant({sessionData("a"), sessionData("b")}, true);
    expectValidWithVariant({sessionData("a"), sessionData("A")}, true);
    expectValidWithVariant({sessionData("a"), sessionData("a ")}, true);
    expectValidWithVariant({sessionData("a\0b"s), sessionData("a\0c"s)}, true);
    expectValidWithVariant({sessionData("a", en), sessionData("a", fr)}, true);
    expectValidWithVariant({sessionData("a", en), sessionData("a")}, true);
    expectValidWithVariant({sessionData("a"), sessionData("a", ",LANGUAGE=\"\"")}, false);
    expectValidWithVariant({sessionData("a", en), sessionData("a", ",LANGUAGE=\"EN\"")}, true);
    expectValidWithVariant({sessionData("a", en), sessionData("b", en), sessionData("a", en)}, false);
    expectValidWithVariant({sessionData("a"), sessionData("b"), sessionData("c"), sessionData("b")}, false);
}

TEST(VELHLSParsedManifestValidate, ValueAndUriDoNotTellSessionDataApart) {
    expectValidWithVariant({"#EXT-X-SESSION-DATA:FIRST=1,DATA-ID=\"a\",VALUE=\"1\"",
                            "#EXT-X-SESSION-DATA:FIRST=1,DATA-ID=\"a\",VALUE=\"2\""},
                           false);
    expectValidWithVariant({"#EXT-X-SESSION-DATA:FIRST=1,DATA-ID=\"a\",VALUE=\"1\"",
                            "#EXT-X-SESSION-DATA:FIRST=1,DATA-ID=\"a\",URI=\"1\""},
                           false);
}

TEST(VELHLSParsedManifestValidate, ColonInAnIdMayMakeSessionDataLookTheSame) {
    expectValidWithVariant({sessionData("a:b"), sessionData("a", ",LANGUAGE=\"b:\"")}, false);
    expectValidWithVariant({sessionData("a:b", ",LANGUAGE=\"c\""), sessionData("a", ",LANGUAGE=\"b:c\"")},
                           false);
    expectValidWithVariant({sessionData("a:b"), sessionData("a", ",LANGUAGE=\"b\"")}, true);
    expectValidWithVariant({sessionData("a:"), sessionData("a")}, true);
}

// ---------------------------------------------------------------------------------------------------------
// Session keys are unique

const std::string initializationVector = ",IV=0x0123456789abcdef0123456789abcdef";

TEST(VELHLSParsedManifestValidate, SessionKeysThatDifferInOnePartPass) {
    const std::string key = sessionKey("k");
    for (const std::string& other : {
             "#EXT-X-SESSION-KEY:METHOD=SAMPLE-AES,URI=\"k\""s,
             sessionKey("K"),
             sessionKey("k "),
             sessionKey("k", initializationVector),
             sessionKey("k", ",KEYFORMAT=\"identity\""),
             sessionKey("k", ",KEYFORMATVERSIONS=\"2\""),
             sessionKey("k", ",KEYFORMATVERSIONS=\"1/1\""),
             sessionKey("k", ",KEYFORMATVERSIONS=\"11\""),
         }) {
        expectValidWithVariant({key, other}, true);
        expectValidWithVariant({other, key}, true);
        expectValidWithVariant({key, other, other}, false);
        expectValidWithVariant({key, other, key}, false);
    }
    expectValidWithVariant(
        {sessionKey("k", initializationVector), sessionKey("k", ",IV=0x0123456789abcdef0123456789abcdee")},
        true);
    expectValidWithVariant(
        {sessionKey("k", ",KEYFORMATVERSIONS=\"1/2\""), sessionKey("k", ",KEYFORMATVERSIONS=\"2/1\""),
         sessionKey("k", ",KEYFORMATVERSIONS=\"12\"")},
        true);
}

TEST(VELHLSParsedManifestValidate, SessionKeysThatAreTheSameFail) {
    const std::string key = sessionKey("k");
    expectValidWithVariant({key}, true);
    expectValidWithVariant({key, key}, false);
    expectValidWithVariant({key, sessionKey("k", ",KEYFORMATVERSIONS=\"1\"")}, false);
    expectValidWithVariant({key, sessionKey("k", ",KEYFORMATVERSIONS=\"01\"")}, false);
    expectValidWithVariant({key, sessionKey("k", ",KEYFORMAT=\"\"")}, false);
    expectValidWithVariant({key, sessionKey("k", ",UNKNOWN=1")}, false);
    expectValidWithVariant({key, "#EXT-X-SESSION-KEY:URI=\"k\",METHOD=AES-128"}, false);
    expectValidWithVariant({key, sessionKey("l"), sessionKey("m"), key}, false);
}

TEST(VELHLSParsedManifestValidate, InitializationVectorsAreComparedAsWritten) {
    expectValidWithVariant({sessionKey("k", ",IV=0x0123456789abcdef0123456789abcdef"),
                            sessionKey("k", ",IV=0x0123456789ABCDEF0123456789ABCDEF")},
                           true);
}

TEST(VELHLSParsedManifestValidate, ColonInAPartMayMakeSessionKeysLookTheSame) {
    expectValidWithVariant({sessionKey("k:"), sessionKey("k", ",KEYFORMAT=\":\"")}, false);
    expectValidWithVariant({sessionKey("k::f"), sessionKey("k", ",KEYFORMAT=\"f::\"")}, false);
    expectValidWithVariant({sessionKey("k:"), sessionKey("k")}, true);
}

std::shared_ptr<VELHLSProtectionData> key(int method, const std::vector<std::int32_t>& versions) {
    auto made = std::make_shared<VELHLSProtectionData>(
        static_cast<VELHLSProtectionData::ProtectionMethod>(method), "k", "", "", versions);
    made->keyFormatVersions = versions;
    return made;
}

TEST(VELHLSParsedManifestValidate, KeysFiledByHandAreComparedByMethodNumberAndVersions) {
    using Keys = std::vector<std::shared_ptr<VELHLSProtectionData>>;
    const struct {
        Keys keys;
        bool valid;
    } rows[] = {
        {{key(0, {1}), key(1, {1}), key(2, {1}), key(3, {1}), key(-1, {1})}, true},
        {{key(0, {1}), key(0, {1})}, false},
        {{key(3, {1}), key(3, {1})}, false},
        {{key(1, {}), key(1, {1})}, true},
        {{key(1, {}), key(1, {})}, false},
        {{key(1, {1, 2}), key(1, {12}), key(1, {2, 1}), key(1, {1, 2, 0})}, true},
        {{key(1, {-1}), key(1, {1}), key(1, {-2147483647 - 1}), key(1, {2147483647})}, true},
        {{key(1, {1, 2}), key(1, {1, 2})}, false},
    };
    for (const auto& row : rows) {
        Manifest manifest = filedByHand({stream("1")});
        manifest.sessionKeys = row.keys;
        EXPECT_EQ(validates(manifest), row.valid) << describe(manifest);
    }
}

TEST(VELHLSParsedManifestValidate, OneRecordFiledTwiceIsNotUnique) {
    Manifest manifest = filedByHand({stream("1"), sessionKey("k"), sessionData("a")});
    EXPECT_TRUE(validates(manifest));
    Manifest keyTwice = manifest;
    keyTwice.sessionKeys.push_back(keyTwice.sessionKeys.back());
    EXPECT_FALSE(validates(keyTwice));
    Manifest dataTwice = manifest;
    dataTwice.sessionData.push_back(dataTwice.sessionData.back());
    EXPECT_FALSE(validates(dataTwice));
    Manifest variantTwice = manifest;
    variantTwice.variants.insert(*variantTwice.variants.begin());
    EXPECT_TRUE(validates(variantTwice)) << "variants need not be unique";
}

// ---------------------------------------------------------------------------------------------------------
// All rules together

/// Breaks one rule each, and nothing else.
const std::vector<std::function<void(Manifest&)>> faults = {
    [](Manifest& manifest) { manifest.variants.clear(); },
    [](Manifest& manifest) { manifest.variants.begin()->second->groupIds[Rendition::Video] = "none"; },
    [](Manifest& manifest) { file(manifest, audio("B", "more")); },
    [](Manifest& manifest) { file(manifest, sessionData("a")); },
    [](Manifest& manifest) { file(manifest, sessionKey("k")); },
};

TEST(VELHLSParsedManifestValidate, IsTrueOnlyWhenNoRuleIsBroken) {
    const std::size_t combinations = std::size_t{1} << faults.size();
    for (std::size_t broken = 0; broken < combinations; ++broken) {
        Manifest manifest = filedByHand({audio("A", "n"), audio("B", "n"), stream("1", ",AUDIO=\"A\""),
                                         sessionData("a"), sessionKey("k")});
        // The fault that removes the variants comes last: the others need one.
        for (std::size_t rule = faults.size(); rule-- > 0;) {
            if ((broken >> rule & 1U) != 0) faults[rule](manifest);
        }
        EXPECT_EQ(validates(manifest), broken == 0) << "broken rules: " << broken << "\n"
                                                    << describe(manifest);
    }
}

TEST(VELHLSParsedManifestValidate, DoesNotRepeatTheRulesOfTheRecords) {
    Manifest manifest = filedByHand({audio("A", "n"), stream("1"), sessionData("a"), sessionKey("k")});
    auto& variant = *manifest.variants.begin()->second;
    variant.uri.clear();
    variant.bandwidth = 0;
    EXPECT_FALSE(variant.validate());
    EXPECT_TRUE(validates(manifest));

    auto& rendition = *manifest.renditions.at(Rendition::Audio).at("A").at("n");
    rendition.forced = true;
    rendition.type = Rendition::Unknown;
    EXPECT_FALSE(rendition.validate());
    EXPECT_TRUE(validates(manifest));

    auto& entry = *manifest.sessionData.front();
    entry.dataId.clear();
    EXPECT_FALSE(entry.validate());
    EXPECT_TRUE(validates(manifest));

    auto& sessionKeyRecord = *manifest.sessionKeys.front();
    sessionKeyRecord.iv = "no hexadecimal digits";
    EXPECT_FALSE(sessionKeyRecord.validate());
    EXPECT_TRUE(validates(manifest));
}

TEST(VELHLSParsedManifestValidate, DoesNotReadTheOtherMembers) {
    Manifest manifest = filedByHand({stream("1")});
    manifest.version = -5;
    manifest.startTimeOffset = 1e300;
    manifest.hasZORStreamInformation = true;
    manifest.zorStreamInformation.assign(3, nullptr);
    manifest.streamVariants.assign(3, nullptr);
    EXPECT_TRUE(validates(manifest));
}

TEST(VELHLSParsedManifestValidate, NullRecordFails) {
    const Manifest whole = filedByHand({audio("A", "n"), audio("B", "n"), media("SUBTITLES", "s", "n"),
                                        stream("1", ",AUDIO=\"A\""), sessionData("a"), sessionKey("k")});
    ASSERT_TRUE(validates(whole));
    const std::vector<std::pair<std::string, std::function<void(Manifest&)>>> rows = {
        {"variant", [](Manifest& manifest) { manifest.variants.begin()->second = nullptr; }},
        {"one more variant", [](Manifest& manifest) { manifest.variants.emplace(9, nullptr); }},
        {"rendition of the first group",
         [](Manifest& manifest) { manifest.renditions.at(Rendition::Audio).at("A").at("n") = nullptr; }},
        {"rendition of another group",
         [](Manifest& manifest) { manifest.renditions.at(Rendition::Audio).at("B").at("n") = nullptr; }},
        {"rendition of an only group",
         [](Manifest& manifest) { manifest.renditions.at(Rendition::Subtitles).at("s").at("n") = nullptr; }},
        {"one more rendition in both groups",
         [](Manifest& manifest) {
             manifest.renditions.at(Rendition::Audio).at("A")["z"] = nullptr;
             manifest.renditions.at(Rendition::Audio).at("B")["z"] = nullptr;
         }},
        {"session data", [](Manifest& manifest) { manifest.sessionData.front() = nullptr; }},
        {"one more session data", [](Manifest& manifest) { manifest.sessionData.push_back(nullptr); }},
        {"session key", [](Manifest& manifest) { manifest.sessionKeys.front() = nullptr; }},
        {"one more session key", [](Manifest& manifest) { manifest.sessionKeys.push_back(nullptr); }},
    };
    for (const auto& [record, remove] : rows) {
        Manifest manifest = whole;
        remove(manifest);
        EXPECT_FALSE(validates(manifest)) << record;
    }
}

// ---------------------------------------------------------------------------------------------------------
// Sizes: an answer that compared all pairs of so many records would not come within the time

constexpr int many = 200000;
constexpr std::chrono::seconds patience(20);

void expectQuickAnswer(const Manifest& manifest, bool valid) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(manifest.validate(), valid);
    EXPECT_LT(std::chrono::steady_clock::now() - start, patience);
}

TEST(VELHLSParsedManifestValidate, IsQuickForManySessionData) {
    Manifest manifest = filedByHand({stream("1")});
    for (int index = 0; index < many; ++index) {
        manifest.sessionData.push_back(
            std::make_shared<VELHLSManifestSessionData>(std::to_string(index), "v", "", ""));
    }
    expectQuickAnswer(manifest, true);
    manifest.sessionData.push_back(manifest.sessionData.front());
    expectQuickAnswer(manifest, false);
}

TEST(VELHLSParsedManifestValidate, IsQuickForManySessionKeys) {
    Manifest manifest = filedByHand({stream("1")});
    for (int index = 0; index < many; ++index) {
        manifest.sessionKeys.push_back(std::make_shared<VELHLSProtectionData>(
            VELHLSProtectionData::AES128, std::to_string(index), "", "", std::vector<std::int32_t>{}));
    }
    expectQuickAnswer(manifest, true);
    manifest.sessionKeys.push_back(manifest.sessionKeys.front());
    expectQuickAnswer(manifest, false);
}

TEST(VELHLSParsedManifestValidate, IsQuickForManyGroupsAndReferences) {
    Manifest manifest;
    for (int index = 0; index < many; ++index) {
        const std::string groupId = "g" + std::to_string(index);
        fileRendition(manifest, std::make_shared<Rendition>(Rendition::Audio, "", nullptr, groupId, "", "",
                                                            "n", false, false, false, "", ""));
        auto variant = std::make_shared<VELHLSMediaVariant>(1, 0, "", "", "u", nullptr, false, 0);
        variant->groupIds[Rendition::Audio] = groupId;
        fileVariant(manifest, variant);
    }
    expectQuickAnswer(manifest, true);
    fileRendition(manifest, std::make_shared<Rendition>(Rendition::Audio, "", nullptr, "g7", "", "", "more",
                                                        false, false, false, "", ""));
    expectQuickAnswer(manifest, false);
}

TEST(VELHLSParsedManifestValidate, IsQuickForManyRenditionsInTwoGroups) {
    Manifest manifest = filedByHand({stream("1")});
    for (int index = 0; index < many; ++index) {
        for (const std::string& groupId : {"A"s, "B"s}) {
            fileRendition(manifest,
                          std::make_shared<Rendition>(Rendition::Audio, "", nullptr, groupId, "", "",
                                                      std::to_string(index), false, false, false, "", ""));
        }
    }
    expectQuickAnswer(manifest, true);
    manifest.renditions.at(Rendition::Audio).at("B").erase("199999");
    expectQuickAnswer(manifest, false);
}

}  // namespace
