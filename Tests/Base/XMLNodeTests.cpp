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

TEST(XMLNodeTests, ADocumentIsMadeAndReadBack) {
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

TEST(XMLNodeTests, NoElementDoesNothing) {
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

TEST(XMLNodeTests, ElementsAreWalkedAndAllElseIsPassedOver) {
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

TEST(XMLNodeTests, WhatIsNotKnownStays) {
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

TEST(XMLNodeTests, ADocumentLivesAsLongAsOneOfItsNodes) {
    XMLNode child;
    {
        XMLNode root;
        ASSERT_TRUE(parse("<r><a x='1'/></r>", root).ok());
        child = root.firstChild();
    }
    EXPECT_EQ(child.attribute("x").text(), L"1");
}

TEST(XMLNodeTests, AttributesHaveValues) {
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

TEST(XMLNodeTests, ATextThatXmlCannotHoldIsRefused) {
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

TEST(XMLNodeTests, AnAttributeWithAPrefixIsAnotherOne) {
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

TEST(XMLNodeTests, EncodingsOfEverySystemAreRead) {
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

TEST(XMLNodeTests, OtherEncodingsAreDamage) {
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

TEST(XMLNodeTests, WhatIsNotWellFormedIsDamage) {
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
TEST(XMLNodeTests, ADoctypeIsDamage) {
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

TEST(XMLNodeTests, WhatIsTooDeepOrTooLongIsDamage) {
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

TEST(XMLNodeTests, IncludesAreLeftAlone) {
    std::string const text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                             "<r xmlns:xi=\"http://www.w3.org/2001/XInclude\">"
                             "<xi:include href=\"/etc/passwd\" parse=\"text\"/></r>\n";
    XMLNode root;
    ASSERT_TRUE(parse(text, root).ok());
    EXPECT_EQ(written(root), text);
}

TEST(XMLNodeTests, ManyElementsCostNoStack) {
    std::string text = "<r>";
    for (int i = 0; i < 200000; ++i) text += "<a/>";
    text += "</r>";
    XMLNode root;
    ASSERT_TRUE(parse(text, root).ok());
    int count = 0;
    for (XMLNode each = root.firstChild(); each; each = each.nextSibling()) ++count;
    EXPECT_EQ(count, 200000);
}

TEST(XMLNodeTests, DocumentsOfSeveralThreadsDoNotMeet) {
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
