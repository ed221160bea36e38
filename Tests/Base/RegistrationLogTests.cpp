#include <iterator>
#include <memory>

#include <gtest/gtest.h>

#include "Platform/Base/Initializer.h"
#include "Platform/Base/RegistrationLog.h"
#include "Platform/Base/TextCommand.h"
#include "Platform/Base/UnitTest.h"

namespace Vn {

namespace {

using EKind = RegistrationLog::EKind;
using EEvent = RegistrationLog::EEvent;

class Nothing : public TextCommand {
public:
    Nothing() : TextCommand(L"Logged", L"Nothing", L"Does nothing") {}

private:
    TextCommandResult onRun(TextCommandParameters const &) override { return {}; }
};

void doNothing() {}

// Registers one of each kind, and takes them back.
void registerAndLeave() {
    TextCommandSubjectArea const area(L"Logged", L"An area");
    Nothing const command;
    UnitTest const test("Logged", "check", [](UnitTest &) {});
    Initializer const initializer(&doNothing);
    Initializer const none(nullptr);
}

TEST(RegistrationLogTests, WhatJoinsAndLeavesIsLoggedInOrder) {
    RegistrationLog const log;
    registerAndLeave();
    struct Row {
        EEvent event;
        EKind kind;
        char const * name;
    };
    constexpr Row c_rows[] = {
        {EEvent::Joins, EKind::TextCommandArea, "Logged"},
        {EEvent::Joins, EKind::TextCommand, "Logged.Nothing"},
        {EEvent::Joins, EKind::SelfCheck, "Logged.check"},
        {EEvent::Joins, EKind::Initializer, ""},
        {EEvent::Leaves, EKind::Initializer, ""},
        {EEvent::Leaves, EKind::SelfCheck, "Logged.check"},
        {EEvent::Leaves, EKind::TextCommand, "Logged.Nothing"},
        {EEvent::Leaves, EKind::TextCommandArea, "Logged"},
    };
    auto const entries = log.entries();
    ASSERT_EQ(entries.size(), std::size(c_rows));
    for (std::size_t i = 0; i < entries.size(); ++i) {
        EXPECT_EQ(entries[i].event, c_rows[i].event) << i;
        EXPECT_EQ(entries[i].kind, c_rows[i].kind) << i;
        EXPECT_EQ(entries[i].name, c_rows[i].name) << i;
        EXPECT_EQ(entries[i].address, entries[entries.size() - 1 - i].address) << i;
    }
    EXPECT_EQ(entries[3].address, reinterpret_cast<void const *>(&doNothing));
    EXPECT_TRUE(log.isComplete());
}

TEST(RegistrationLogTests, WithoutALogNothingIsNoted) {
    EXPECT_FALSE(RegistrationLog::isAsked());
    RegistrationLog::note(EKind::Static, "nobody hears it");
    RegistrationLog const log;
    EXPECT_TRUE(RegistrationLog::isAsked());
    EXPECT_TRUE(log.entries().empty());
}

TEST(RegistrationLogTests, EachLogHasWhatComesWhileItLives) {
    auto const first = std::make_unique<RegistrationLog>();
    RegistrationLog::note(EKind::Static, "one");
    auto second = std::make_unique<RegistrationLog>();
    RegistrationLog::note(EKind::Static, "two");
    EXPECT_EQ(second->entries().size(), 1U);
    second.reset();
    RegistrationLog::note(EKind::Static, "three");
    auto const entries = first->entries();
    ASSERT_EQ(entries.size(), 3U);
    EXPECT_EQ(entries[2].name, "three");
    EXPECT_EQ(entries[2].event, EEvent::Joins);
    EXPECT_EQ(entries[2].address, nullptr);
}

} // namespace

} // namespace Vn
