#include <array>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Base/XMLNode.h"

namespace Vn {

namespace {

using namespace std::string_literals;

Status parse(std::string const & bytes, XMLNode & root) {
    return XMLNode::parse(bytes, "test.xml", root);
}

std::string written(XMLNode const & node) {
    std::string text;
    EXPECT_TRUE(node.write(text).ok());
    return text;
}

// Nothing is printed, whatever is read.
class XMLNodeTests : public testing::Test {
protected:
    XMLNodeTests() { testing::internal::CaptureStderr(); }
    ~XMLNodeTests() override { EXPECT_EQ(testing::internal::GetCapturedStderr(), ""); }
};

TEST_F(XMLNodeTests, ADocumentIsMadeAndReadBack) {
    XMLNode const root("Options");
    XMLNode const group = root.addChild("Group");
    EXPECT_TRUE(group.attribute("Id").text(L"<\"ä\" & 日本>"));
    group.addChild("Option");
    group.addChild("Option");
    std::string const text = written(root);
    EXPECT_EQ(text, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                    "<Options>\n"
                    "  <Group Id=\"&lt;&quot;ä&quot; &amp; 日本&gt;\">\n"
                    "    <Option/>\n"
                    "    <Option/>\n"
                    "  </Group>\n"
                    "</Options>\n");
    XMLNode read;
    ASSERT_TRUE(parse(text, read).ok());
    EXPECT_EQ(read.name(), "Options");
    EXPECT_EQ(read.firstChild().attribute("Id").text(), L"<\"ä\" & 日本>");
    EXPECT_EQ(written(read), text);
}

TEST_F(XMLNodeTests, NoElementDoesNothing) {
    XMLNode const none;
    EXPECT_FALSE(none);
    EXPECT_EQ(none.name(), "");
    EXPECT_FALSE(none.firstChild());
    EXPECT_FALSE(none.nextSibling());
    EXPECT_FALSE(none.addChild("a"));
    EXPECT_FALSE(none.attribute("a").exists());
    EXPECT_EQ(none.attribute("a").text(), L"");
    EXPECT_FALSE(none.attribute("a").text(L"x"));
    EXPECT_FALSE(none.attribute("a").write(1));
    EXPECT_EQ(written(none), "");
}

TEST_F(XMLNodeTests, ElementsAreWalkedAndAllElseIsPassedOver) {
    XMLNode root;
    ASSERT_TRUE(
        parse("<!-- a --><r> text <a/><!-- b --><?p i?><![CDATA[<c/>]]><n:d xmlns:n='u'/></r>",
              root)
            .ok());
    XMLNode const a = root.firstChild();
    EXPECT_EQ(a.name(), "a");
    EXPECT_EQ(a.nextSibling().name(), "d");
    EXPECT_FALSE(a.nextSibling().nextSibling());
    EXPECT_FALSE(a.firstChild());
    EXPECT_TRUE(root.firstChild() == a);
}

TEST_F(XMLNodeTests, WhatIsNotKnownStays) {
    std::string const text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                             "<!-- before -->\n<?p i?>\n"
                             "<r a=\"1\" b=\"2\">\n"
                             "   odd   text <!-- in --> <![CDATA[<raw>]]>\n"
                             "\t<x:y xmlns:x=\"u\" x:a=\"3\">&lt;&#xE4;</x:y>\n"
                             "</r>\n"
                             "<!-- after -->\n";
    XMLNode root;
    ASSERT_TRUE(parse(text, root).ok());
    std::string expected = text;
    expected.replace(expected.find("&#xE4;"), 6, "ä");
    EXPECT_EQ(written(root), expected);
    XMLNode again;
    ASSERT_TRUE(parse(written(root), again).ok());
    EXPECT_EQ(written(again), expected);
}

TEST_F(XMLNodeTests, ADocumentLivesAsLongAsOneOfItsNodes) {
    XMLNode child;
    {
        XMLNode root;
        ASSERT_TRUE(parse("<r><a x='1'/></r>", root).ok());
        child = root.firstChild();
    }
    EXPECT_EQ(child.attribute("x").text(), L"1");
}

TEST_F(XMLNodeTests, AttributesHaveValues) {
    XMLNode const node("n");
    XMLAttributeProxy const attribute = node.attribute("Value");
    EXPECT_FALSE(attribute.exists());
    bool flag = false;
    int whole = 0;
    double real = 0.0;
    EXPECT_FALSE(attribute.read(flag));

    EXPECT_TRUE(attribute.write(true));
    EXPECT_EQ(attribute.text(), L"1");
    EXPECT_TRUE(attribute.read(flag));
    EXPECT_TRUE(flag);
    EXPECT_TRUE(attribute.write(false));
    EXPECT_EQ(attribute.text(), L"0");
    EXPECT_TRUE(attribute.write(-12));
    EXPECT_EQ(attribute.text(), L"-12");
    EXPECT_TRUE(attribute.read(whole));
    EXPECT_EQ(whole, -12);
    EXPECT_TRUE(attribute.write(0.00000001));
    EXPECT_EQ(attribute.text(), L"0.00000001");
    EXPECT_TRUE(attribute.read(real));
    EXPECT_EQ(real, 0.00000001);
    EXPECT_TRUE(attribute.text(L"0,5"));
    EXPECT_TRUE(attribute.read(real));
    EXPECT_EQ(real, 0.5);

    for (wchar_t const * const text : {L"ON", L"true", L"", L"2", L"01"}) {
        EXPECT_TRUE(attribute.text(text));
        flag = true;
        EXPECT_FALSE(attribute.read(flag)) << text;
        EXPECT_TRUE(flag);
    }
    EXPECT_TRUE(attribute.exists());
    EXPECT_EQ(written(node), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<n Value=\"01\"/>\n");
}

TEST_F(XMLNodeTests, ATextThatXmlCannotHoldIsRefused) {
    XMLNode const node("n");
    EXPECT_TRUE(node.attribute("a").text(L"kept"));
    for (wchar_t const c : {L'\1', L'\x1F', L'\xFFFE', L'\xFFFF'})
        EXPECT_FALSE(node.attribute("a").text(std::wstring(L"x") + c));
    EXPECT_EQ(node.attribute("a").text(), L"kept");
    EXPECT_TRUE(node.attribute("a").text(L"tab\t, line\n"));
    XMLNode read;
    ASSERT_TRUE(parse(written(node), read).ok());
    EXPECT_EQ(read.attribute("a").text(), L"tab\t, line\n");
}

TEST_F(XMLNodeTests, AnAttributeWithAPrefixIsAnotherOne) {
    XMLNode root;
    ASSERT_TRUE(parse("<r xmlns:x='u' x:Value='1'/>", root).ok());
    EXPECT_FALSE(root.attribute("Value").exists());
    EXPECT_TRUE(root.attribute("Value").write(2));
    EXPECT_NE(written(root).find("x:Value=\"1\" Value=\"2\""), std::string::npos);
}

std::string utf16(std::string const & ascii, bool bigEndian) {
    std::string bytes = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
    for (char const c : ascii) {
        if (bigEndian) bytes += '\0';
        bytes += c;
        if (!bigEndian) bytes += '\0';
    }
    return bytes;
}

TEST_F(XMLNodeTests, EncodingsOfEverySystemAreRead) {
    std::string const plain = "<r a='1'/>";
    for (std::string const & bytes :
         {plain, "\xEF\xBB\xBF" + plain, utf16(plain, false), utf16(plain, true),
          utf16("<?xml version='1.0' encoding='UTF-16'?>" + plain, false),
          "<?xml version='1.0' encoding='utf-8'?>" + plain,
          "<?xml version='1.0' encoding='US-ASCII'?>" + plain}) {
        XMLNode root;
        Status const status = parse(bytes, root);
        ASSERT_TRUE(status.ok()) << status.toString();
        EXPECT_EQ(root.attribute("a").text(), L"1");
        // Whatever it was, UTF-8 is written.
        EXPECT_EQ(written(root), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<r a=\"1\"/>\n");
    }
    XMLNode root;
    ASSERT_TRUE(parse("<?xml version='1.0' encoding='ISO-8859-1'?><r a='\xE4'/>", root).ok());
    EXPECT_EQ(root.attribute("a").text(), L"ä");
}

TEST_F(XMLNodeTests, OtherEncodingsAreDamage) {
    for (std::string const & bytes :
         {"<?xml version='1.0' encoding='ISO-8859-2'?><r/>"s,
          "<?xml version='1.0' encoding='Shift_JIS'?><r/>"s,
          "<?xml version='1.0' encoding='windows-1252'?><r/>"s,
          "<?xml version='1.0' encoding='nonsense'?><r/>"s, "<r a='\xE4'/>"s, "\0\0\0<\0\0\0r"s,
          "<\0\0\0r\0\0\0/\0\0\0>\0\0\0"s, "\x4C\x6F\xA7\x94\x93"s, "\xFF\xFE\0\0<\0\0\0"s}) {
        XMLNode root("kept");
        EXPECT_EQ(parse(bytes, root).code(), StatusCorrupt) << bytes;
        EXPECT_EQ(root.name(), "kept");
    }
}

// It would come out again as something else, or not at all.
TEST_F(XMLNodeTests, WhatIsNotInItsEncodingIsDamage) {
    std::string const lone = "<\0r\0>\0\x00\xD8<\0/\0r\0>\0"s;
    for (std::string const & bytes :
         {"<r/><!--\xFF-->"s, "<r>\xC0\x80</r>"s, "<r>\xED\xA0\x80</r>"s,
          "<r>\xF4\x90\x80\x80</r>"s, "<r/>\n\xC3"s, "<!--\xE4--><r/>"s,
          "<?xml version='1.0' encoding='ASCII'?><r>\xC3\xA4</r>"s,
          "<?xml version='1.0' encoding='UTF-16'?><r/>"s, lone, "\xFF\xFE<"s,
          utf16("<?xml version='1.0' encoding='UTF-8'?><r/>", false),
          "<?xml encoding='UTF-8'?><r/>"s, "<?xml version='1.0' encoding='UTF-8?><r/>"s,
          "<?xml version='1.0' encoding='UTF-8' encoding='ASCII'?><r/>"s}) {
        XMLNode root("kept");
        EXPECT_EQ(parse(bytes, root).code(), StatusCorrupt) << bytes;
    }
    XMLNode root;
    std::string const text = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
                             "<r>\xF0\x9F\x98\x80</r>\n";
    ASSERT_TRUE(parse(text, root).ok());
    EXPECT_EQ(written(root), text);
}

TEST_F(XMLNodeTests, CharactersOfEveryLengthComeFromUtf16) {
    std::string const text = "<r a=\"x\xC3\xA4\xE6\x97\xA5\xF0\x9F\x98\x80\"/>";
    std::string bytes = "\xFE\xFF\0<\0r\0 \0a\0=\0\"\0x\0\xE4\x65\xE5\xD8\x3D\xDE\0\0\"\0/\0>"s;
    XMLNode root;
    Status const status = parse(bytes, root);
    ASSERT_TRUE(status.ok()) << status.toString();
    EXPECT_NE(written(root).find(text), std::string::npos) << written(root);
}

TEST_F(XMLNodeTests, WhatIsNotWellFormedIsDamage) {
    for (std::string const & bytes :
         {""s, " "s, "<"s, "text"s, "<r>"s, "<r></s>"s, "<r a=1/>"s, "<r a='1' a='2'/>"s,
          "<r/><r/>"s, "<r>&undeclared;</r>"s, "<r a='&undeclared;'/>"s, "<r>\1</r>"s, "<r>\0</r>"s,
          "<?xml version='1.0'?>"s, "<!-- only -->"s, "<r a='<'/>"s, "<r>]]></r>"s}) {
        XMLNode root("kept");
        Status const status = parse(bytes, root);
        EXPECT_EQ(status.code(), StatusCorrupt) << bytes;
        EXPECT_EQ(status.subject(), "test.xml");
        EXPECT_FALSE(status.cause().empty()) << bytes;
        EXPECT_EQ(root.name(), "kept");
    }
}

// Nothing of it is read, so that what it declares costs nothing.
TEST_F(XMLNodeTests, ADoctypeIsDamage) {
    std::string laughs = "<!DOCTYPE r [<!ENTITY a0 'ha'>";
    for (int i = 1; i < 10; ++i) {
        std::string const before = "&a" + std::to_string(i - 1) + ";";
        laughs += "<!ENTITY a" + std::to_string(i) + " '";
        for (int j = 0; j < 10; ++j) laughs += before;
        laughs += "'>";
    }
    for (std::string const & bytes :
         {laughs + "]><r>&a9;</r>", laughs + "]><r a='&a9;'/>", "<!DOCTYPE r><r/>"s,
          "<!DOCTYPE r SYSTEM 'http://localhost/none.dtd'><r/>"s,
          "<!DOCTYPE r [<!ENTITY x SYSTEM 'file:///etc/passwd'>]><r>&x;</r>"s,
          "<!DOCTYPE r [<!ENTITY % x SYSTEM 'file:///etc/passwd'> %x;]><r/>"s,
          "<!DOCTYPE r [<!ATTLIST r a CDATA 'default'>]><r/>"s, "<!DOCTYPE r ["s}) {
        XMLNode root("kept");
        Status const status = parse(bytes, root);
        EXPECT_EQ(status.code(), StatusCorrupt) << bytes;
        EXPECT_EQ(root.name(), "kept");
    }
}

TEST_F(XMLNodeTests, WhatIsTooDeepOrTooLongIsDamage) {
    XMLNode root;
    std::string deep;
    for (int i = 0; i < 1000000; ++i) deep += "<a>";
    EXPECT_EQ(parse(deep, root).code(), StatusCorrupt);
    for (int i = 0; i < 1000000; ++i) deep += "</a>";
    EXPECT_EQ(parse(deep, root).code(), StatusCorrupt);
    EXPECT_EQ(parse("<r a='" + std::string(10000001, 'x') + "'/>", root).code(), StatusCorrupt);
    // What the parser makes of this is its own, but it isn't want of memory.
    for (char const * const end : {"</r>", "<a/>\n</r>", "<b>"})
        EXPECT_NE(parse("<r>" + std::string(15000000, 'x') + end, root).code(), StatusOutOfMemory);
    // Short of that it is read.
    std::string const text(1000000, 'x');
    ASSERT_TRUE(parse("<r a='" + text + "'/>", root).ok());
    EXPECT_EQ(root.attribute("a").text().size(), text.size());
}

TEST_F(XMLNodeTests, IncludesAreLeftAlone) {
    std::string const text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                             "<r xmlns:xi=\"http://www.w3.org/2001/XInclude\">"
                             "<xi:include href=\"/etc/passwd\" parse=\"text\"/></r>\n";
    XMLNode root;
    ASSERT_TRUE(parse(text, root).ok());
    EXPECT_EQ(written(root), text);
}

TEST_F(XMLNodeTests, ManyElementsCostNoStack) {
    std::string text = "<r>";
    for (int i = 0; i < 200000; ++i) text += "<a/>";
    text += "</r>";
    XMLNode root;
    ASSERT_TRUE(parse(text, root).ok());
    int count = 0;
    for (XMLNode each = root.firstChild(); each; each = each.nextSibling()) ++count;
    EXPECT_EQ(count, 200000);
}

TEST_F(XMLNodeTests, DocumentsOfSeveralThreadsDoNotMeet) {
    std::vector<std::thread> threads;
    std::array<bool, 8> good{};
    for (std::size_t i = 0; i < good.size(); ++i) {
        threads.emplace_back([&good, i] {
            bool all = true;
            for (int j = 0; j < 50; ++j) {
                XMLNode root;
                all = all && parse("<r a='" + std::to_string(i) + "'><b/></r>", root).ok() &&
                      root.attribute("a").text() == std::to_wstring(i) &&
                      parse("<r><b></r>", root).code() == StatusCorrupt;
            }
            good[i] = all;
        });
    }
    for (std::thread & thread : threads) thread.join();
    for (bool const each : good) EXPECT_TRUE(each);
}

} // namespace

} // namespace Vn
