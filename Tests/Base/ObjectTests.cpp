#include "Platform/Base/Object.h"

#include <gtest/gtest.h>

namespace Vn::ObjectTests {

class Plain : public Object {};

class Offering : public Object {
public:
    static UniqueString const * interfaceId() { return UniqueString::find("Offering", true); }
    UniqueString const * getInterfaceId() const override { return interfaceId(); }
    void * queryInterface(UniqueString const * id) const override {
        return id == interfaceId() ? const_cast<Offering *>(this) : Object::queryInterface(id);
    }
};

TEST(ObjectTests, OffersNothingUnlessItsClassDoes) {
    UniqueString const * const other = UniqueString::find("Other", true);
    EXPECT_EQ(Plain().getInterfaceId(), nullptr);
    EXPECT_EQ(Plain().queryInterface(other), nullptr);

    Offering const offering;
    Object const & object = offering;
    EXPECT_EQ(object.getInterfaceId(), Offering::interfaceId());
    EXPECT_EQ(object.queryInterface(Offering::interfaceId()), &offering);
    EXPECT_EQ(object.queryInterface(other), nullptr);
}

} // namespace Vn::ObjectTests
