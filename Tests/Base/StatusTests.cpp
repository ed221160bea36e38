#include "Platform/Base/Status.h"

#include <cerrno>

#include <gtest/gtest.h>

namespace {

using Vn::Status;

static_assert(sizeof(Status) == sizeof(void *));

TEST(StatusTests, SuccessHasNoTexts) {
    Status const status;
    EXPECT_TRUE(status.ok());
    EXPECT_TRUE(static_cast<bool>(status));
    EXPECT_EQ(status.code(), Vn::StatusOk);
    EXPECT_EQ(status.operation(), "");
    EXPECT_EQ(status.subject(), "");
    EXPECT_EQ(status.cause(), "");
    EXPECT_EQ(status.toString(), "ok");
    EXPECT_TRUE(Status(Vn::StatusOk, "open", "a.vnd").ok());
    EXPECT_TRUE(Status::success().ok());
}

TEST(StatusTests, FailureTellsWhatAndWhy) {
    Status const status = Status::corrupt("open the document", "a.vnd", "the page count is wrong");
    EXPECT_FALSE(status.ok());
    EXPECT_EQ(status.code(), Vn::StatusCorrupt);
    EXPECT_EQ(status.operation(), "open the document");
    EXPECT_EQ(status.subject(), "a.vnd");
    EXPECT_EQ(status.cause(), "the page count is wrong");
    EXPECT_EQ(status.toString(),
              "cannot open the document 'a.vnd': damaged: the page count is wrong");
}

TEST(StatusTests, EmptyTextsAreLeftOut) {
    EXPECT_EQ(Status::cancelled("").toString(), "cancelled");
    EXPECT_EQ(Status::notFound("", "x").toString(), "'x': not found");
    EXPECT_EQ(Status::noSpace("save").toString(), "cannot save: no space left");
    EXPECT_EQ(Status::failed("", "", "why").toString(), "failed: why");
}

TEST(StatusTests, FactoriesSetTheirCodes) {
    struct Row {
        Status status;
        Vn::EStatus code;
    };
    Row const rows[] = {
        {Status::failed("do"), Vn::StatusFailed},
        {Status::invalidArgument("do"), Vn::StatusInvalidArgument},
        {Status::notFound("do"), Vn::StatusNotFound},
        {Status::io("do"), Vn::StatusIO},
        {Status::corrupt("do"), Vn::StatusCorrupt},
        {Status::newerFormat("do"), Vn::StatusNewerFormat},
        {Status::noSpace("do"), Vn::StatusNoSpace},
        {Status::outOfMemory("do"), Vn::StatusOutOfMemory},
        {Status::cancelled("do"), Vn::StatusCancelled},
    };
    for (Row const & row : rows) {
        EXPECT_EQ(row.status.code(), row.code);
        EXPECT_EQ(row.status.toString(), "cannot do: " + std::string(Status::codeText(row.code)));
    }
}

TEST(StatusTests, SystemErrorsKeepTheirMessage) {
    EXPECT_TRUE(Status::fromErrno(0, "read").ok());
    Status const status = Status::fromErrno(ENOSPC, "write", "a.vnd");
    EXPECT_EQ(status.code(), Vn::StatusNoSpace);
    EXPECT_FALSE(status.cause().empty());
    EXPECT_EQ(Status::fromErrno(ENOENT, "read").code(), Vn::StatusNotFound);
    EXPECT_EQ(Status::fromErrno(EACCES, "read").code(), Vn::StatusAccessDenied);
    EXPECT_EQ(Status::fromErrno(EIO, "read").code(), Vn::StatusIO);
}

TEST(StatusTests, CopiesShareTheFailure) {
    Status first = Status::io("read", "a");
    Status second = first;
    EXPECT_EQ(&first.subject(), &second.subject());
    Status const third = std::move(first);
    second = Status();
    EXPECT_TRUE(second.ok());
    EXPECT_EQ(third.subject(), "a");
    second = third;
    EXPECT_EQ(second.code(), Vn::StatusIO);
}

} // namespace
