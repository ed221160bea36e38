// Objects that are made of translated texts.

#include "Platform/Base/PerLanguage.h"

#include <gtest/gtest.h>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace Vn {

namespace {

class PerLanguageTests : public testing::Test {
protected:
    ~PerLanguageTests() override {
        m_names.clear();
        StringTable::language("");
    }

    // The object that was made of the present language's name.
    std::string & name() {
        return m_names.get([this] {
            ++m_made;
            return new std::string(StringTable::language());
        });
    }

    PerLanguage<std::string> m_names;
    int m_made = 0;
};

TEST_F(PerLanguageTests, EachLanguageHasItsOwn) {
    std::string & english = name();
    StringTable::language("de");
    std::string & german = name();
    EXPECT_EQ(german, "de");
    EXPECT_EQ(&name(), &german);
    EXPECT_EQ(english, ""); // which is still there
    EXPECT_EQ(m_made, 2);
}

TEST_F(PerLanguageTests, IsUsedAgainWhenItsLanguageReturns) {
    std::string & english = name();
    for (int i = 0; i < 1000; ++i) {
        StringTable::language(i % 2 ? "" : "fr");
        name();
    }
    EXPECT_EQ(&name(), &english);
    EXPECT_EQ(m_made, 2);
}

TEST_F(PerLanguageTests, FailureLeavesWhatWasThere) {
    std::string & english = name();
    StringTable::language("de");
    auto const fail = []() -> std::string * { throw std::bad_alloc(); };
    EXPECT_THROW(m_names.get(fail), std::bad_alloc);
    EXPECT_EQ(name(), "de");
    StringTable::language("");
    EXPECT_EQ(&m_names.get(fail), &english);
}

TEST_F(PerLanguageTests, AChangeOfLanguageMeanwhileIsNoticed) {
    int made = 0;
    auto const create = [&made] {
        auto text = std::make_unique<std::string>(StringTable::language());
        if (++made == 1) StringTable::language("de");
        return text.release();
    };
    EXPECT_EQ(m_names.get(create), "de");
    EXPECT_EQ(made, 2);
    // What was made of two languages is under neither of them.
    StringTable::language("");
    EXPECT_EQ(name(), "");
    EXPECT_EQ(m_made, 1);
    // The language that is chosen meanwhile may have its own already.
    StringTable::language("fr");
    auto const change = [] {
        auto text = std::make_unique<std::string>("fr and de");
        StringTable::language("de");
        return text.release();
    };
    EXPECT_EQ(m_names.get(change), "de");
    EXPECT_EQ(made, 2);
    StringTable::language("fr");
    EXPECT_EQ(name(), "fr");
}

TEST_F(PerLanguageTests, ThreadsShareOne) {
    StringTable::language("ja");
    std::vector<std::thread> threads;
    std::vector<std::string const *> found(8);
    for (auto & each : found)
        threads.emplace_back([&] {
            for (int i = 0; i < 1000; ++i)
                each = &m_names.get([] { return new std::string(StringTable::language()); });
        });
    for (std::thread & thread : threads) thread.join();
    for (std::string const * const each : found) EXPECT_EQ(each, found.front());
    EXPECT_EQ(*found.front(), "ja");
}

} // namespace

} // namespace Vn
