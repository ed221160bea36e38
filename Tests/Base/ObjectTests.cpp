#include "Platform/Base/Object.h"

#include <gtest/gtest.h>

namespace Vn::ObjectTests {

class Plain : public Object {};

class Telling : public Object {
private:
    std::wstring onToString() const override { return L"told"; }
};

TEST(ObjectTests, ToStringNamesTheClassUnlessItTellsMore) {
    EXPECT_EQ(Plain().toString(), L"Vn::ObjectTests::Plain");
    Telling const telling;
    Object const & object = telling;
    EXPECT_EQ(object.toString(), L"told");
}

} // namespace Vn::ObjectTests
