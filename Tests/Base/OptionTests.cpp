#include <gtest/gtest.h>

#include "Platform/Base/XMLNode.h"
#include "Tests/Base/TestOptions.h"

namespace Vn {

namespace {

using Testing::TestGroup;
using Told = std::vector<std::string>;

// Options in no file.
class OptionTests : public testing::Test {
protected:
    TestGroup m_group{std::filesystem::path()};
    Status m_status;
};

TEST_F(OptionTests, AllThreeValuesStartAsTheDefault) {
    EXPECT_EQ(m_group.number.value(), 3);
    EXPECT_EQ(m_group.number.defaultValue(), 3);
    EXPECT_EQ(m_group.number.savedValue(), 3);
    EXPECT_FALSE(m_group.number.dirty());
    EXPECT_FALSE(m_group.number.nonDefault());
    EXPECT_TRUE(m_group.flag.value());
    EXPECT_EQ(m_group.real.value(), 9999.9999);
}

TEST_F(OptionTests, TypesHaveTheirNumbers) {
    EXPECT_EQ(m_group.flag.valueType(), 2);
    EXPECT_EQ(m_group.number.valueType(), 3);
    EXPECT_EQ(m_group.real.valueType(), 8);
}

TEST_F(OptionTests, ABoolIsSetByOnAndOff) {
    for (wchar_t const * const text : {L"OFF", L"off", L"Off", L"oFf"}) {
        m_group.flag.setValueFromString(L"ON");
        m_group.flag.setValueFromString(text);
        EXPECT_FALSE(m_group.flag.value()) << text;
    }
    for (wchar_t const * const text : {L"1", L"", L"true", L"yes", L"ON ", L"O", L"0"}) {
        m_group.flag.setValueFromString(text);
        EXPECT_FALSE(m_group.flag.value()) << text;
        EXPECT_FALSE(m_group.flag.doesStringMatchValue(text)) << text;
    }
    m_group.flag.setValueFromString(L"on");
    EXPECT_TRUE(m_group.flag.value());
    EXPECT_TRUE(m_group.flag.doesStringMatchValue(L"On"));
    EXPECT_FALSE(m_group.flag.doesStringMatchValue(L"OFF"));
    EXPECT_EQ(m_group.flag.toString(), L"ON");
}

TEST_F(OptionTests, ATextThatIsNoIntKeepsTheValueAndTellsNobody) {
    m_group.number.setValueFromString(L"7");
    m_group.told.clear();
    for (wchar_t const * const text : {L"abc", L"", L"5.0", L"99999999999"}) {
        m_group.number.setValueFromString(text);
        EXPECT_EQ(m_group.number.value(), 7) << text;
        EXPECT_FALSE(m_group.number.doesStringMatchValue(text)) << text;
    }
    EXPECT_EQ(m_group.told, Told{});
    EXPECT_TRUE(m_group.number.doesStringMatchValue(L"7"));
    EXPECT_TRUE(m_group.number.doesStringMatchValue(L"+07"));
    EXPECT_FALSE(m_group.number.doesStringMatchValue(L"8"));
    EXPECT_EQ(m_group.number.toString(), L"7");
}

TEST_F(OptionTests, ADoubleTakesEitherDecimalMark) {
    m_group.real.setValueFromString(L"0,5");
    EXPECT_EQ(m_group.real.value(), 0.5);
    m_group.real.setValueFromString(L"2.5E3");
    EXPECT_EQ(m_group.real.value(), 2500.0);
    m_group.told.clear();
    for (wchar_t const * const text : {L"1,234.5", L"inf", L"NaN", L"", L"x", L"1E999"}) {
        m_group.real.setValueFromString(text);
        EXPECT_EQ(m_group.real.value(), 2500.0) << text;
        EXPECT_FALSE(m_group.real.doesStringMatchValue(text)) << text;
    }
    EXPECT_EQ(m_group.told, Told{});
    EXPECT_EQ(m_group.real.toString(), L"2500");
}

TEST_F(OptionTests, DoublesMatchNearlyButAChangeIsExact) {
    m_group.real.setValueFromString(L"0.00000001");
    EXPECT_TRUE(m_group.real.doesStringMatchValue(L"0.000000001"));
    EXPECT_FALSE(m_group.real.doesStringMatchValue(L"0.00000003"));
    m_group.told.clear();
    m_group.real.setValueFromString(L"0.000000001");
    EXPECT_EQ(m_group.real.value(), 0.000000001);
    EXPECT_EQ(m_group.told, Told{"RealId"});
}

TEST_F(OptionTests, AChangeIsToldToTheGroupAndThenToTheListener) {
    // Both note what they are told in one list.
    class Listener : public OptionGroup {
    public:
        explicit Listener(TestGroup & group) : OptionGroup("Listener", L""), m_rGroup(group) {}
        void onOptionChanged(OptionBase * option) override {
            m_rGroup.told.push_back("listener: " + option->id());
        }

    private:
        TestGroup & m_rGroup;
    };
    Listener listener(m_group);
    m_group.number.listener(&listener);
    EXPECT_EQ(m_group.number.listener(), &listener);
    m_group.number.setValueFromString(L"4");
    EXPECT_EQ(m_group.told, (Told{"NumberId", "listener: NumberId"}));
    m_group.number.setValueFromString(L"4"); // no change
    EXPECT_EQ(m_group.told.size(), 2U);
    m_group.number.reset(m_status);
    EXPECT_EQ(m_group.told.size(), 4U);
    m_group.number.reset(m_status);
    EXPECT_EQ(m_group.told.size(), 4U);
    m_group.number.listener(nullptr);
    m_group.number.setValueFromString(L"5");
    EXPECT_EQ(m_group.told.back(), "NumberId");
    EXPECT_EQ(m_group.told.size(), 5U);
}

TEST_F(OptionTests, ResetTakesTheDefault) {
    m_group.number.setValueFromString(L"8");
    EXPECT_TRUE(m_group.number.dirty());
    EXPECT_TRUE(m_group.number.nonDefault());
    m_group.number.postSave();
    EXPECT_FALSE(m_group.number.dirty());
    EXPECT_TRUE(m_group.number.nonDefault());
    m_group.number.reset(m_status);
    EXPECT_EQ(m_group.number.value(), 3);
    EXPECT_EQ(m_group.number.savedValue(), 8);
    EXPECT_TRUE(m_group.number.dirty());
    EXPECT_FALSE(m_group.number.nonDefault());
}

TEST_F(OptionTests, AnElementHoldsTheValue) {
    XMLNode node("Option");
    struct Row {
        OptionBase & option;
        wchar_t const * set;
        wchar_t const * written;
        wchar_t const * other;
    };
    for (Row const & row :
         {Row{m_group.flag, L"OFF", L"0", L"1"}, Row{m_group.number, L"12", L"12", L"-1"},
          Row{m_group.real, L"1E-8", L"0.00000001", L"0,25"}}) {
        row.option.setValueFromString(row.set);
        row.option.save(node, m_status);
        EXPECT_EQ(node.attribute("Value").text(), row.written);
        EXPECT_TRUE(row.option.dirty()) << "until it is saved";
        m_group.told.clear();
        row.option.load(node, m_status);
        EXPECT_FALSE(row.option.dirty());
        EXPECT_TRUE(node.attribute("Value").text(row.other));
        EXPECT_TRUE(row.option.reload(node, m_status));
        EXPECT_FALSE(row.option.reload(node, m_status));
        EXPECT_FALSE(row.option.dirty());
        EXPECT_EQ(m_group.told, Told{}) << "nobody is told";
    }
    EXPECT_TRUE(m_group.flag.value());
    EXPECT_EQ(m_group.number.value(), -1);
    EXPECT_EQ(m_group.real.value(), 0.25);
    EXPECT_TRUE(m_status.ok());
}

TEST_F(OptionTests, AnElementWithoutAValueChangesNothing) {
    XMLNode node("Option");
    m_group.number.setValueFromString(L"9");
    m_group.number.load(node, m_status);
    EXPECT_EQ(m_group.number.value(), 9);
    EXPECT_TRUE(m_group.number.dirty());
    EXPECT_TRUE(m_status.ok());
}

TEST_F(OptionTests, AnElementWithAnotherTextKeepsTheValueAndNamesTheOption) {
    XMLNode node("Option");
    m_group.number.setValueFromString(L"9");
    EXPECT_TRUE(node.attribute("Value").text(L"nine"));
    m_group.number.load(node, m_status);
    EXPECT_EQ(m_group.number.value(), 9);
    EXPECT_EQ(m_status.code(), StatusCorrupt);
    EXPECT_EQ(m_status.subject(), "NumberId");
    EXPECT_NE(m_status.cause().find("nine"), std::string::npos);
    EXPECT_TRUE(node.attribute("Value").text(L"ON"));
    m_status = Status();
    EXPECT_FALSE(m_group.flag.reload(node, m_status));
    EXPECT_EQ(m_status.subject(), "FlagId");
}

TEST_F(OptionTests, AStubValueComesInSilently) {
    m_group.number.setFromDynamicStubValue(L"6");
    EXPECT_EQ(m_group.number.value(), 6);
    EXPECT_EQ(m_group.number.savedValue(), 6);
    EXPECT_FALSE(m_group.number.dirty());
    EXPECT_EQ(m_group.told, Told{});
    m_group.number.setFromDynamicStubValue(L"six");
    EXPECT_EQ(m_group.number.value(), 6);
    m_group.flag.setFromDynamicStubValue(L"off");
    EXPECT_FALSE(m_group.flag.value());
    EXPECT_EQ(m_group.flag.getDynamicStubValue(), L"OFF");
    EXPECT_EQ(m_group.real.getDynamicStubValue(), L"9999.9999");
}

TEST_F(OptionTests, ChoicesConstrainThePageAndNotTheValue) {
    m_group.number.addChoice(L"0", L"none");
    m_group.number.addChoice(L"1", L"one");
    ASSERT_EQ(m_group.number.choices().size(), 2U);
    EXPECT_EQ(m_group.number.choices()[1].value, L"1");
    EXPECT_EQ(m_group.number.choices()[1].text, L"one");
    m_group.number.setValueFromString(L"12");
    EXPECT_EQ(m_group.number.value(), 12);
    EXPECT_FALSE(m_group.number.choose(L"12"));
    EXPECT_EQ(m_group.chosen, Told{});
    EXPECT_TRUE(m_group.number.choose(L"1"));
    EXPECT_EQ(m_group.number.value(), 1);
    EXPECT_EQ(m_group.chosen, Told{"NumberId 1"});
}

TEST_F(OptionTests, AnOptionTellsWhereItStands) {
    EXPECT_EQ(m_group.number.id(), "NumberId");
    EXPECT_EQ(m_group.number.userName(), L"Number");
    EXPECT_EQ(m_group.number.group(), &m_group);
    EXPECT_EQ(m_group.number.subGroup(), nullptr);
    EXPECT_FALSE(m_group.number.advanced());
    m_group.number.advanced(true);
    EXPECT_TRUE(m_group.number.advanced());
    SubOptionGroup * const sub = m_group.makeSubGroup("Sub", L"Sub", L"Tip", true, false);
    m_group.number.subGroup(sub);
    EXPECT_EQ(m_group.number.subGroup(), sub);
    EXPECT_EQ(sub->group(), &m_group);
    EXPECT_TRUE(sub->isShown());
    EXPECT_FALSE(sub->isExpanded());
    EXPECT_EQ(sub->valueType(), OptionBase::DataTypeNone);
    EXPECT_EQ(m_group.subGroups().size(), 1U);
    EXPECT_EQ(m_group.options().size(), 3U) << "a sub-group isn't an option of the group";
}

TEST_F(OptionTests, AnOptionLeavesItsGroup) {
    {
        Option<int> const more("MoreId", L"", L"", &m_group, 1);
        EXPECT_EQ(m_group.options().size(), 4U);
        EXPECT_EQ(m_group.findOption("MoreId"), &more);
    }
    EXPECT_EQ(m_group.options().size(), 3U);
    EXPECT_EQ(m_group.findOption("MoreId"), nullptr);
    EXPECT_EQ(m_group.findOption("FlagId"), &m_group.flag);
    Option<bool> alone("AloneId", L"", L"", nullptr, false);
    alone.setValueFromString(L"ON"); // tells nobody
    EXPECT_TRUE(alone.value());
}

} // namespace

} // namespace Vn
