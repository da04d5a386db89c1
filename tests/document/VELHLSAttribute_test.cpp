#include "velhls/document/VELHLSAttribute.h"

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

const char* nameOf(VELHLSAttribute::Fault fault) {
    switch (fault) {
        case VELHLSAttribute::None:
            return "";
        case VELHLSAttribute::NameMissing:
            return "NameMissing";
        case VELHLSAttribute::NameInvalid:
            return "NameInvalid";
        case VELHLSAttribute::EqualsMissing:
            return "EqualsMissing";
        case VELHLSAttribute::ValueMissing:
            return "ValueMissing";
        case VELHLSAttribute::WhiteSpace:
            return "WhiteSpace";
        case VELHLSAttribute::QuoteUnclosed:
            return "QuoteUnclosed";
        case VELHLSAttribute::TextAfterQuote:
            return "TextAfterQuote";
        case VELHLSAttribute::QuoteInValue:
            return "QuoteInValue";
    }
    return "?";
}

/// Each as <name>=<value>, quoted with a q, and its fault with its column and length.
std::string scanned(const std::string& list) {
    std::string all;
    for (const VELHLSAttribute& attribute : VELHLSAttributes(list)) {
        if (!all.empty()) all += ' ';
        all.append("<").append(attribute.name).append(attribute.quoted ? ">=q<" : ">=<");
        all.append(attribute.value).append(">");
        if (attribute.fault == VELHLSAttribute::None) continue;
        all.append(nameOf(attribute.fault)).append("@");
        all += std::to_string(attribute.faultText.data() - list.data()) + "+";
        all += std::to_string(attribute.faultText.size());
    }
    return all;
}

TEST(VELHLSAttributes, ReadsWhatKeepsTheGrammar) {
    EXPECT_EQ(scanned(""), "");
    EXPECT_EQ(scanned("A=1"), "<A>=<1>");
    EXPECT_EQ(scanned("A=1,B-2=\"x\",C=0xF"), "<A>=<1> <B-2>=q<x> <C>=<0xF>");
    EXPECT_EQ(scanned("A=\"a, b=c\",B=\"\""), "<A>=q<a, b=c> <B>=q<>");
    EXPECT_EQ(scanned("A=1=2"), "<A>=<1=2>");
    EXPECT_EQ(scanned("A=1,A=2"), "<A>=<1> <A>=<2>");
}

TEST(VELHLSAttributes, TellsWhatBreaksTheGrammarAndGoesOn) {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {",", "<>=<>NameMissing@0+0 <>=<>NameMissing@1+0"},
        {"A=1,", "<A>=<1> <>=<>NameMissing@4+0"},
        {",A=1", "<>=<>NameMissing@0+0 <A>=<1>"},
        {"A=1,,B=2", "<A>=<1> <>=<>NameMissing@4+0 <B>=<2>"},
        {"=1,B=2", "<>=<1>NameMissing@0+0 <B>=<2>"},
        {"a=1,B=2", "<a>=<1>NameInvalid@0+1 <B>=<2>"},
        {"A_B=1,B=2", "<A_B>=<1>NameInvalid@0+3 <B>=<2>"},
        {"A,B=2", "<A>=<>EqualsMissing@1+0 <B>=<2>"},
        {"A", "<A>=<>EqualsMissing@1+0"},
        {"A;B=2,C=3", "<A;B>=<2>NameInvalid@0+3 <C>=<3>"},
        {"A=,B=2", "<A>=<>ValueMissing@2+0 <B>=<2>"},
        {"A=", "<A>=<>ValueMissing@2+0"},
        {"A=1, B=2", "<A>=<1> <B>=<2>WhiteSpace@4+1"},
        {"A=1,\t B=2", "<A>=<1> <B>=<2>WhiteSpace@4+2"},
        {" A=1", "<A>=<1>WhiteSpace@0+1"},
        {"A =1", "<A>=<1>WhiteSpace@1+1"},
        {"A= 1", "<A>=<1>WhiteSpace@2+1"},
        {"A= \"1\"", "<A>=q<1>WhiteSpace@2+1"},
        {"A=1 ,B=2", "<A>=<1>WhiteSpace@3+1 <B>=<2>"},
        {"A=1 2,B=2", "<A>=<1 2>WhiteSpace@3+1 <B>=<2>"},
        {"A=\"1\" ,B=2", "<A>=q<1>WhiteSpace@5+1 <B>=<2>"},
        {"A=\"1,B=2", "<A>=q<1,B=2>QuoteUnclosed@2+1"},
        {"A=\"", "<A>=q<>QuoteUnclosed@2+1"},
        {"A=\"1\"2,B=2", "<A>=q<1>TextAfterQuote@5+1 <B>=<2>"},
        {"A=\"1\"B=2,C=3", "<A>=q<1>TextAfterQuote@5+3 <C>=<3>"},
        {"A=0x1\"2,B=2", "<A>=<0x1\"2>QuoteInValue@5+1 <B>=<2>"},
        {"A=1,\"B=2\"", "<A>=<1> <\"B>=<2\">NameInvalid@4+2"},
    };
    for (const auto& [list, expected] : rows)
        EXPECT_EQ(scanned(list), expected) << list;
}

TEST(VELHLSAttributes, FindsTheFirstOfAName) {
    const VELHLSAttributes attributes("A=1,B=\"2\",B=3");
    ASSERT_TRUE(attributes.find("B"));
    EXPECT_EQ(attributes.find("B")->value, "2");
    EXPECT_EQ(attributes.find("B")->writtenValue, "\"2\"");
    EXPECT_EQ(attributes.find("B")->text, "B=\"2\"");
    EXPECT_FALSE(attributes.find("C"));
    EXPECT_FALSE(attributes.find(""));
}

}  // namespace
