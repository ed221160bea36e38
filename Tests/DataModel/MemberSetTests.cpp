// What a class may say about its members, and what is refused when it registers.

#include "Platform/DataModel/MemberSet.h"

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/DataModel/DocumentFile.h"
#include "Platform/DataModel/GeometryMetaTypes.h"
#include "Tests/DataModel/TestEntities.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn::Testing {

namespace {

// A set for an object that is none of an entity's.
class MemberSetTests : public ::testing::Test {
protected:
    MemberSetTests() { m_set.initialize(&m_object, "Object"); }

    template <class Field>
    Member * add(char const * name, Field & field, MemberMetaType * kind) {
        return m_set.addNewMember(name, &field, typeid(Field).name(), kind, nullptr, nullptr);
    }
    template <class Element>
    Member * addList(std::vector<Element> & field, MemberMetaType * kind, char const * typeName) {
        return m_set.addNewMember("list", &field, typeName, MemberMetaType::find("Vector"),
                                  TemplatizedFunctions::makeVector<Element>(kind), nullptr);
    }
    // What is thrown; empty if nothing is.
    template <class Work>
    static std::string refusal(Work && work) {
        try {
            work();
            return {};
        } catch (std::invalid_argument const & refused) {
            return refused.what();
        }
    }

    enum class Color : unsigned { Red };
    enum class Small : unsigned char { One };
    struct Object {
        bool m_bool = false;
        int m_int = 0;
        short m_short = 0;
        double m_double = 0;
        std::int64_t m_int64 = 0;
        std::size_t m_size = 0;
        std::string m_string;
        std::wstring m_wide;
        GlobalizedString m_text;
        StrongRef<Thing> m_rStrong;
        PassiveRef<Thing> m_rPassive;
        TgPoint3d m_point;
        Color m_color = Color::Red;
        std::vector<double> m_doubles;
        std::vector<Small> m_smalls;
        std::vector<Color> m_colors;
        std::vector<StrongRef<Thing>> m_things;
    } m_object;
    MemberSet m_set{Thing::s_metaType()};
};

} // namespace

TEST_F(MemberSetTests, EveryKindTakesAFieldOfItsType) {
    Object & o = m_object;
    EXPECT_NE(add("bool", o.m_bool, IntrinsicMetaType<bool>::get()), nullptr);
    EXPECT_NE(add("int", o.m_int, IntrinsicMetaType<int>::get()), nullptr);
    EXPECT_NE(add("double", o.m_double, IntrinsicMetaType<double>::get()), nullptr);
    EXPECT_NE(add("int64", o.m_int64, IntrinsicMetaType<long long>::get()), nullptr);
    EXPECT_NE(add("size", o.m_size, IntrinsicMetaType<unsigned long long>::get()), nullptr);
    EXPECT_NE(add("string", o.m_string, IntrinsicMetaType<std::string>::get()), nullptr);
    EXPECT_NE(add("wide", o.m_wide, IntrinsicMetaType<std::wstring>::get()), nullptr);
    EXPECT_NE(add("text", o.m_text, MemberMetaType::find("GlobalizedString")), nullptr);
    EXPECT_NE(add("rStrong", o.m_rStrong, StrongRefMetaType::get()), nullptr);
    EXPECT_NE(add("rPassive", o.m_rPassive, PassiveRefMetaType::get()), nullptr);
    EXPECT_NE(add("point", o.m_point, TgPoint3dMetaType::get()), nullptr);
    EXPECT_NE(add("color", o.m_color, IntrinsicMetaType<unsigned int>::get()), nullptr);
    EXPECT_NE(addList(o.m_doubles, IntrinsicMetaType<double>::get(), typeid(o.m_doubles).name()),
              nullptr);
    EXPECT_EQ(m_set.members(), 13U);
}

TEST_F(MemberSetTests, ATypeNameMayBeSpelledAsAPersonDoes) {
    int place = 0;
    for (auto const & [typeName, kind] :
         std::initializer_list<std::pair<char const *, MemberMetaType *>>{
             {"std::wstring", IntrinsicMetaType<std::wstring>::get()},
             {"class std::basic_string<wchar_t,std::char_traits<wchar_t>,std::allocator<wchar_t> >",
              IntrinsicMetaType<std::wstring>::get()},
             {"string", IntrinsicMetaType<std::string>::get()},
             {"unsigned", IntrinsicMetaType<unsigned int>::get()},
             {"unsigned __int64", IntrinsicMetaType<unsigned long long>::get()},
             {"class Vn::StrongRef<class Vn::Entity>", StrongRefMetaType::get()},
             {"Vn::PassiveRef<Vn::Units::UnitSystem>", PassiveRefMetaType::get()},
             {"UnitSystem", PassiveRefMetaType::get()},
             {"Vn::TgPoint3d", TgPoint3dMetaType::get()},
             {"Vn::Furniture::EColor", IntrinsicMetaType<int>::get()},
             {"", IntrinsicMetaType<int>::get()},
             {nullptr, IntrinsicMetaType<int>::get()}})
        EXPECT_NO_THROW(m_set.addNewMember(std::to_string(++place), &m_object, typeName, kind,
                                           nullptr, nullptr))
            << typeName;
}

TEST_F(MemberSetTests, AWideStringAddedAsDoubleIsRefused) {
    std::string const why =
        refusal([&] { add("name", m_object.m_wide, IntrinsicMetaType<double>::get()); });
    EXPECT_NE(why.find("Object.name"), std::string::npos) << why;
    EXPECT_NE(why.find("double"), std::string::npos) << why;
}

TEST_F(MemberSetTests, AVectorOfDoublesAddedAsIntIsRefused) {
    MemberMetaType * const whole = IntrinsicMetaType<int>::get();
    EXPECT_NE(refusal([&] { addList(m_object.m_doubles, whole, "vector"); }), "");
    m_set.initialize(&m_object, "Object");
    EXPECT_NE(refusal([&] { add("list", m_object.m_doubles, whole); }), "");
}

TEST_F(MemberSetTests, AKindThatIsNullIsRefused) {
    EXPECT_NE(refusal([&] { add("name", m_object.m_int, nullptr); }), "");
    m_set.initialize(&m_object, "Object");
    EXPECT_NE(refusal([&] { addList(m_object.m_doubles, nullptr, "vector"); }), "");
    m_set.initialize(&m_object, "Object");
    EXPECT_NE(refusal([&] { add("list", m_object.m_doubles, MemberMetaType::find("Vector")); }),
              "");
}

TEST_F(MemberSetTests, OtherFieldsThatDontFitAreRefused) {
    Object & o = m_object;
    auto const isRefused = [&](auto & field, MemberMetaType * kind) {
        m_set.initialize(&o, "Object");
        return !refusal([&] { add("field", field, kind); }).empty();
    };
    EXPECT_FALSE(isRefused(o.m_int, IntrinsicMetaType<unsigned int>::get())); // nothing is lost
    EXPECT_TRUE(isRefused(o.m_int, IntrinsicMetaType<long long>::get()));
    EXPECT_TRUE(isRefused(o.m_short, IntrinsicMetaType<int>::get()));
    EXPECT_TRUE(isRefused(o.m_bool, IntrinsicMetaType<int>::get()));
    EXPECT_TRUE(isRefused(o.m_string, IntrinsicMetaType<std::wstring>::get()));
    EXPECT_TRUE(isRefused(o.m_rStrong, PassiveRefMetaType::get()));
    EXPECT_TRUE(isRefused(o.m_rPassive, StrongRefMetaType::get()));
    EXPECT_TRUE(isRefused(o.m_point, IntrinsicMetaType<double>::get()));
    EXPECT_TRUE(isRefused(o.m_point, TgVector3dMetaType::get()));
    EXPECT_TRUE(isRefused(o.m_double, TgPoint3dMetaType::get()));
    m_set.initialize(&o, "Object");
    EXPECT_NE(refusal([&] { addList(o.m_smalls, IntrinsicMetaType<int>::get(), "vector"); }), "");
    m_set.initialize(&o, "Object");
    EXPECT_NE(refusal([&] { addList(o.m_things, PassiveRefMetaType::get(), "vector"); }), "");
    m_set.initialize(&o, "Object");
    EXPECT_EQ(
        refusal([&] { addList(o.m_colors, IntrinsicMetaType<unsigned int>::get(), "vector"); }),
        "");
}

TEST_F(MemberSetTests, TwoMembersOfOneNameAreRefused) {
    add("value", m_object.m_int, IntrinsicMetaType<int>::get());
    EXPECT_NE(refusal([&] {
                  add("value", m_object.m_double, IntrinsicMetaType<double>::get());
              }).find("two members Object.value"),
              std::string::npos);
    // The set is as it was before the class began.
    EXPECT_FALSE(m_set.initialized());
    EXPECT_EQ(m_set.members(), 0U);
    EXPECT_EQ(m_set.find("value"), nullptr);
    EXPECT_NE(refusal([&] { add("more", m_object.m_int, IntrinsicMetaType<int>::get()); }), "");
}

// --- Classes and their ids -----------------------------------------------------------------------

namespace {

template <class X>
class IdMetaType : public EntityMetaType {
public:
    explicit IdMetaType(std::string id)
        : EntityMetaType("Test", std::move(id), "IdMetaType", 0, Entity::s_metaTypeId(),
                         TypeConcrete) {}

private:
    void onMigratingMemberSet(Entity *, unsigned, MemberSet *) override {}
    StrongRef<Entity> onCreateEntity(Segment * segment, unsigned long long) override {
        return StrongRef<Entity>(new X(segment));
    }
    std::size_t onInstanceSize() const override { return sizeof(X); }
};

// A class by its number: what it says of its members, and a meta type that the test makes.
template <int Number>
class Numbered : public Entity {
public:
    explicit Numbered(Segment * segment) : Entity(segment) {
        MemberSet * const set = s_type->memberSet(c_latestVersion);
        if (set->initialized()) return;
        set->initialize(this, "Numbered");
        set->addNewMember("value", &m_value, "int", IntrinsicMetaType<int>::get(), nullptr,
                          nullptr);
        if (s_bTwice)
            set->addNewMember("value", &m_other, "int", IntrinsicMetaType<int>::get(), nullptr,
                              nullptr);
    }
    static inline std::optional<IdMetaType<Numbered>> s_type;
    static inline bool s_bTwice = false;

    int m_value = 0;
    int m_other = 0;

private:
    EntityMetaType * onMetaType() const override { return &*s_type; }
};

Segment * design(Asset & asset) { return asset.segment(SegmentType::DesignSegment); }

} // namespace

TEST(MetaTypeIdTests, AClassWithTwoMembersOfOneNameMakesNoObject) {
    using X = Numbered<1>;
    X::s_type.emplace("Test-Twice");
    X::s_bTwice = true;
    StrongRef<Asset> const asset = Asset::make(nullptr);
    for (int i = 0; i < 2; ++i) // not only the first one
        EXPECT_THROW(new X(design(*asset)), std::invalid_argument);
    EXPECT_EQ(asset->entities(), 0U);
    X::s_type.reset();
}

TEST(MetaTypeIdTests, TheSecondClassOfAnIdIsRefusedAndTheFirstStays) {
    using First = Numbered<2>;
    using Second = Numbered<3>;
    First::s_type.emplace("Test-Shared-Id");
    Second::s_type.emplace("Test-Shared-Id");
    EXPECT_TRUE(First::s_type->isRegistered());
    EXPECT_FALSE(Second::s_type->isRegistered());
    EXPECT_EQ(MetaTypeMgr::get()->metaType("Test-Shared-Id"), &*First::s_type);
    StrongRef<Asset> const asset = Asset::make(nullptr);
    try {
        new Second(design(*asset));
        ADD_FAILURE() << "an object was made";
    } catch (std::invalid_argument const & refused) {
        EXPECT_NE(std::string(refused.what()).find("Test-Shared-Id"), std::string::npos);
    }
    StrongRef<First> made(new First(design(*asset)));
    EXPECT_EQ(asset->entities(), 1U);

    Second::s_type.reset();
    EXPECT_EQ(MetaTypeMgr::get()->metaType("Test-Shared-Id"), &*First::s_type);
    made.reset();
    First::s_type.reset();
    EXPECT_EQ(MetaTypeMgr::get()->metaType("Test-Shared-Id"), nullptr);
    // As a module that is loaded again.
    First::s_type.emplace("Test-Shared-Id");
    EXPECT_TRUE(First::s_type->isRegistered());
    First::s_type.reset();
}

// --- Options
// --------------------------------------------------------------------------------------

namespace {

// An entity with a member whose option 16 is cleared.
class Cleared : public Entity {
public:
    static std::string s_metaTypeId() { return "Test-Cleared"; }
    explicit Cleared(Segment * segment) : Entity(segment) { initialize(); }
    Cleared(Segment * segment, unsigned long long id) : Entity(segment, id) { initialize(); }
    void value(int value) {
        EntityChange const change(this, DataChange::TransactDirect, DataChange::ChangeValue,
                                  DataChange::TimingPreAndPost, nullptr, true);
        m_value = value;
    }
    int m_value = 0;

private:
    void initialize();
    EntityMetaType * onMetaType() const override;
};

class ClearedMetaType : public EntityMetaType {
public:
    ClearedMetaType()
        : EntityMetaType("Test", Cleared::s_metaTypeId(), "ClearedMetaType", 0,
                         Entity::s_metaTypeId(), TypeConcrete) {}
    std::size_t m_extra = 0;

private:
    void onMigratingMemberSet(Entity *, unsigned, MemberSet *) override {}
    StrongRef<Entity> onCreateEntity(Segment * segment, unsigned long long id) override {
        return StrongRef<Entity>(new Cleared(segment, id));
    }
    std::size_t onSizeInBytes(Entity const *) const override { return m_extra; }
    std::size_t onInstanceSize() const override { return sizeof(Cleared); }
};
ClearedMetaType s_cleared;

EntityMetaType * Cleared::onMetaType() const { return &s_cleared; }
void Cleared::initialize() {
    MemberSet * const set = s_cleared.memberSet(c_latestVersion);
    if (set->initialized()) return;
    set->initialize(this, "Cleared");
    set->addNewMember("value", &m_value, typeid(int).name(), IntrinsicMetaType<int>::get(), nullptr,
                      nullptr)
        ->clear(16);
}

} // namespace

TEST(OptionTests, AMemberWithoutOption16IsWrittenReadAndUndone) {
    TemporaryFile const file;
    StrongRef<Asset> asset = Asset::make(nullptr);
    StrongRef<Cleared> const cleared(new Cleared(design(*asset)));
    design(*asset)->addRoot(cleared, "root");
    {
        Transaction transaction(*asset, L"step");
        cleared->value(5);
        transaction.commit();
    }
    ASSERT_TRUE(asset->history().undo().ok());
    EXPECT_EQ(cleared->m_value, 0);
    ASSERT_TRUE(asset->history().redo().ok());
    EXPECT_EQ(cleared->m_value, 5);
    ASSERT_TRUE(DocumentFile::saveAs(*asset, file.path()).ok());
    StrongRef<Asset> loaded;
    ASSERT_TRUE(DocumentFile::load(file.path(), nullptr, loaded).ok());
    EXPECT_EQ(static_cast<Cleared &>(*design(*loaded)->rootEntity("root")).m_value, 5);
}

TEST(MetaTypeSizeTests, TheHistoryCountsWhatTheMetaTypeSays) {
    auto const keptBytes = [](std::size_t extra) {
        s_cleared.m_extra = extra;
        StrongRef<Asset> const asset = Asset::make(nullptr);
        StrongRef<Cleared> cleared(new Cleared(design(*asset)));
        design(*asset)->addRoot(cleared, "root");
        EXPECT_EQ(s_cleared.sizeInBytes(*cleared), sizeof(Cleared) + extra);
        cleared.reset();
        Transaction transaction(*asset, L"step");
        design(*asset)->addRoot(nullptr, "root");
        transaction.commit();
        return asset->history().bytes();
    };
    std::size_t const without = keptBytes(0);
    EXPECT_EQ(keptBytes(1000), without + 1000);
}

} // namespace Vn::Testing
