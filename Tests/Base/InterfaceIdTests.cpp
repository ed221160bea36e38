#include "Platform/Base/InterfaceId.h"

#include <gtest/gtest.h>

#include "Platform/Base/Object.h"

namespace Vn::InterfaceIdTests {

// An interface introduces the operations, after its own.
class ILockable {
public:
    virtual bool isLocked() const { return false; }

    static UniqueString const * interfaceId() {
        static constinit InterfaceId s_id("Vn::InterfaceIdTests::ILockable");
        return s_id.get();
    }
    virtual UniqueString const * getInterfaceId() const { return interfaceId(); }
    virtual void * queryInterface(UniqueString const * id) const {
        return id == interfaceId() ? const_cast<ILockable *>(this) : nullptr;
    }

protected:
    ~ILockable() = default;
};

// A part that nobody asks for.
struct Weight {
    int kilograms = 0;
};

class Furniture : public Identified<Furniture, Object> {
public:
    static constexpr NamedClass c_class{"Vn::InterfaceIdTests::Furniture"};

    explicit Furniture(int legs) : m_legs(legs) {}
    int legs() const { return m_legs; }

private:
    int const m_legs;
};

class Cupboard : public Identified<Cupboard, Furniture, Weight, ILockable> {
public:
    static constexpr NamedClass c_class{"Vn::InterfaceIdTests::Cupboard"};

    using Identified::Identified;
    bool isLocked() const override { return true; }
};

// Known as its base.
class Unnamed : public Cupboard {
public:
    using Cupboard::Cupboard;
};

UniqueString const * idOf(char const * name) { return UniqueString::find(name, true); }

TEST(InterfaceIdTests, AnIdIsInternedAtItsFirstUse) {
    static constinit InterfaceId s_id("Vn::InterfaceIdTests::Late");
    EXPECT_EQ(UniqueString::find("Vn::InterfaceIdTests::Late", false), nullptr);
    UniqueString const * const id = s_id.get();
    EXPECT_EQ(UniqueString::find("Vn::InterfaceIdTests::Late", false), id);
    EXPECT_EQ(s_id.get(), id);
}

TEST(InterfaceIdTests, AClassHasTheIdOfItsName) {
    EXPECT_EQ(Furniture::interfaceId(), idOf("Vn::InterfaceIdTests::Furniture"));
    EXPECT_EQ(Cupboard::interfaceId(), idOf("Vn::InterfaceIdTests::Cupboard"));
}

TEST(InterfaceIdTests, AnObjectHasTheIdOfItsOwnClass) {
    Furniture const table(4);
    Cupboard const cupboard(6);
    EXPECT_EQ(static_cast<Object const &>(table).getInterfaceId(), Furniture::interfaceId());
    EXPECT_EQ(static_cast<Object const &>(cupboard).getInterfaceId(), Cupboard::interfaceId());
    EXPECT_EQ(static_cast<ILockable const &>(cupboard).getInterfaceId(), Cupboard::interfaceId());
    EXPECT_EQ(Unnamed(4).getInterfaceId(), Cupboard::interfaceId());
}

TEST(InterfaceIdTests, AnObjectIsFoundAsItselfItsBasesAndItsInterfaces) {
    Cupboard cupboard(6);
    Object * const object = &cupboard;
    EXPECT_EQ(query<Cupboard>(object), &cupboard);
    EXPECT_EQ(query<Furniture>(object), &cupboard);
    ASSERT_EQ(query<ILockable>(object), &cupboard);
    EXPECT_TRUE(query<ILockable>(object)->isLocked());
    EXPECT_EQ(query<Furniture>(query<ILockable>(object))->legs(), 6);
}

TEST(InterfaceIdTests, AnObjectIsFoundAsNothingElse) {
    Furniture table(4);
    EXPECT_EQ(query<Cupboard>(&table), nullptr);
    EXPECT_EQ(query<ILockable>(&table), nullptr);
    EXPECT_EQ(table.queryInterface(idOf("Vn::InterfaceIdTests::Other")), nullptr);
    EXPECT_EQ(table.queryInterface(nullptr), nullptr);
    EXPECT_EQ(query<Furniture>(static_cast<Object *>(nullptr)), nullptr);
}

} // namespace Vn::InterfaceIdTests
