#include "Server/CommonData/Managed/PersistedEntity.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/AddInMgr/AddInMgr.h"
#include "Server/CommonData/Components/ComponentChangeSummarizer.h"
#include "Server/CommonData/Components/IComponent.h"
#include "Server/CommonData/Components/IComponentObject.h"
#include "Server/CommonData/Components/IDefaultMaterialProvider.h"
#include "Server/CommonData/Components/IVisibilityToggle.h"
#include "Server/CommonData/Managed/AddInIdentifier.h"
#include "Server/CommonData/Managed/ICommonDataClientObject.h"
#include "Server/CommonData/Managed/ICustomGroup.h"
#include "Tests/CommonData/Managed/ManagedTesting.h"

namespace Vn::Managed::Testing {

namespace {

using CommonData::CommonBaseEntity;
using CommonData::CommonBaseGroupEntity;
using CommonData::CommonBaseRootCollection;

// A class that is only there to be derived from.
class Furniture : public Persisted<Furniture, ManagedEntity> {
public:
    static constexpr PersistedClass c_class{"Vn::Managed::Testing::Furniture",
                                            "3F7A1D60-0001-4000-8000-000000000001", 0};
    static EntityMetaType * s_metaType();
    virtual unsigned legs() const = 0;

protected:
    explicit Furniture(Segment * segment) : Persisted(segment) { initializeMemberSetIfNeeded(); }
    Furniture(Segment * segment, unsigned long long id) : Persisted(segment, id) {
        initializeMemberSetIfNeeded();
    }
    double m_price = 3;

private:
    friend class Managed::PersistedAccess;
    void initializeMemberSet(unsigned, MemberSet * set) { addMember(set, "price", m_price); }
};

class Stool : public Persisted<Stool, Furniture> {
public:
    static constexpr PersistedClass c_class{"Vn::Managed::Testing::Stool",
                                            "3F7A1D60-0002-4000-8000-000000000002", 0};
    static EntityMetaType * s_metaType();
    static StrongRefCreator<Stool> make(Segment * segment) { return create(segment); }
    unsigned legs() const override { return 3; }

private:
    friend class Managed::PersistedAccess;
    explicit Stool(Segment * segment) : Persisted(segment) { initializeMemberSetIfNeeded(); }
    Stool(Segment * segment, unsigned long long id) : Persisted(segment, id) {
        initializeMemberSetIfNeeded();
    }
    void initializeMemberSet(unsigned, MemberSet *) {}
};

class FurnitureMetaType final : public PersistedMetaType<Furniture> {
} s_furniture;
class StoolMetaType final : public PersistedMetaType<Stool> {
} s_stool;

EntityMetaType * Furniture::s_metaType() { return &s_furniture; }
EntityMetaType * Stool::s_metaType() { return &s_stool; }

TEST(PersistedEntity, AClassWithoutObjectsOfItsOwnIsAbstractToDocumentsToo) {
    EXPECT_EQ(Furniture::s_metaType()->type(), EntityMetaType::TypeAbstract);
    EXPECT_EQ(Stool::s_metaType()->type(), EntityMetaType::TypeConcrete);
    StrongRef<Asset> const asset = Asset::make(nullptr);
    Segment * const design = asset->segment(SegmentType::DesignSegment);
    StrongRef<Stool> const stool = Stool::make(design);
    EXPECT_FALSE(Furniture::s_metaType()->createEntity(design, 77));
    EXPECT_NE(query<Furniture>(stool.get()), nullptr);
    EXPECT_TRUE(stool->metaType()->isA(Furniture::s_metaType()));
    EXPECT_EQ(Furniture::s_metaType()->memberSet(c_latestVersion)->member(0).name(), "price");
}

// --- The table of classes -----------------------------------------------------------------------

struct MemberRow {
    char const * name;
    EMemberKind kind;
    EMemberKind elementKind; // of a vector
};

struct ClassRow {
    EntityMetaType * (*metaType)();
    UniqueString const * (*interfaceId)();
    char const * fullName;
    char const * name;
    char const * id;
    unsigned version;
    char const * baseId;
    std::size_t size;
    std::vector<MemberRow> members;
};

template <class X>
ClassRow row(char const * fullName, char const * name, char const * id, unsigned version,
             char const * baseId, std::vector<MemberRow> members) {
    EXPECT_EQ(X::s_metaTypeId(), id);
    return {&X::s_metaType, &X::interfaceId, fullName,          name, id, version,
            baseId,         sizeof(X),       std::move(members)};
}

constexpr MemberRow passive(char const * name) {
    return {name, EMemberKind::PassiveRef, EMemberKind::PassiveRef};
}

std::vector<ClassRow> classes() {
    constexpr EMemberKind c_vector = EMemberKind::Vector;
    constexpr EMemberKind c_unsigned = EMemberKind::UnsignedInt;
    return {
        row<ManagedEntity>("Vn::Managed::ManagedEntity", "ManagedEntity",
                           "CB844AB6-240D-4fc9-9C9F-3679DC896D6F", 0,
                           "98542EB9-A4F2-4137-A808-DBB5B3CD6159", {passive("rParent")}),
        row<ManagedGroupEntity>("Vn::Managed::ManagedGroupEntity", "ManagedGroupEntity",
                                "834C9DEF-4C39-4587-A08D-A5BD1267B7B4", 0,
                                "CB844AB6-240D-4fc9-9C9F-3679DC896D6F",
                                {{"children", c_vector, EMemberKind::StrongRef}}),
        row<ManagedRootCollection>("Vn::Managed::ManagedRootCollection", "ManagedRootCollection",
                                   "E47053DB-8AF6-4521-81D6-523964C0C97A", 0,
                                   "CB844AB6-240D-4fc9-9C9F-3679DC896D6F",
                                   {{"rooted", c_vector, EMemberKind::PassiveRef},
                                    {"rootId", EMemberKind::String, EMemberKind::String}}),
        row<CustomGroup>("Vn::Managed::CustomGroup", "CustomGroup",
                         "A193F53F-86D7-4F45-A01C-51F5ECEEFC0E", 0,
                         "834C9DEF-4C39-4587-A08D-A5BD1267B7B4",
                         {{"creationIndex", c_unsigned, c_unsigned},
                          passive("rGroupParent"),
                          {"groupChildren", c_vector, EMemberKind::PassiveRef}}),
        row<CustomGroups>(
            "Vn::Managed::CustomGroups", "CustomGroups", "B5B50E5B-EDC8-4309-82A3-C53B3E82033D", 0,
            "A7AEA631-985B-4DD1-8CE2-DE2C-14B54081", {{"highWaterMark", c_unsigned, c_unsigned}}),
        row<CommonBaseEntity>("Vn::CommonData::CommonBaseEntity", "CommonBaseEntity",
                              "63D6AD42-466A-40B7-9CCD-EB21BC500EF6", 0,
                              "CB844AB6-240D-4fc9-9C9F-3679DC896D6F", {passive("rClientObject")}),
        row<CommonBaseGroupEntity>("Vn::CommonData::CommonBaseGroupEntity", "CommonBaseGroupEntity",
                                   "A7AEA631-985B-4DD1-8CE2-DE2C-14B54081", 0,
                                   "834C9DEF-4C39-4587-A08D-A5BD1267B7B4",
                                   {passive("rClientObject")}),
        row<CommonBaseRootCollection>(
            "Vn::CommonData::CommonBaseRootCollection", "CommonBaseRootCollection",
            "5EAF2F0F-4AEE-4f20-B569-119A7BD1F36D", 1, "E47053DB-8AF6-4521-81D6-523964C0C97A", {}),
    };
}

class ClassTests : public testing::TestWithParam<ClassRow> {
protected:
    // An object of the class, as a document makes it that loads one.
    StrongRef<Entity> load() const {
        return GetParam().metaType()->createEntity(m_document.segment(), 500);
    }

    Document const m_document;
};

TEST_P(ClassTests, TheMetaTypeIsKnownByWhatTheTableSays) {
    ClassRow const & wanted = GetParam();
    EntityMetaType const * const type = wanted.metaType();
    EXPECT_EQ(type->addInIdentifier(), "CommonData");
    EXPECT_EQ(type->identifier(), wanted.id);
    EXPECT_EQ(type->name(), std::string(wanted.name) + "MetaType");
    EXPECT_EQ(type->version(), wanted.version);
    EXPECT_EQ(type->baseIdentifier(), wanted.baseId);
    EXPECT_EQ(static_cast<unsigned>(type->type()), 2U);
    EXPECT_EQ(type->instanceSize(), wanted.size);
    EXPECT_EQ(MetaTypeMgr::get()->metaType(wanted.id), type);
}

TEST_P(ClassTests, TheLatestMembersAreThoseOfTheTableInItsOrder) {
    ClassRow const & wanted = GetParam();
    StrongRef<Entity> const object = load();
    MemberSet const * const set = wanted.metaType()->memberSet(c_latestVersion);
    ASSERT_TRUE(set->initialized());
    EXPECT_EQ(set->className(), wanted.name);
    ASSERT_EQ(set->members(), wanted.members.size());
    for (unsigned i = 0; i < set->members(); ++i) {
        Member const & member = set->member(i);
        MemberRow const & expected = wanted.members[i];
        EXPECT_EQ(member.name(), expected.name);
        EXPECT_EQ(member.type()->kind(), expected.kind);
        EXPECT_FALSE(member.typeName().empty());
        EXPECT_FALSE(member.inHelper());
        if (expected.kind == EMemberKind::Vector) {
            EXPECT_EQ(member.type(), MemberMetaType::find("Vector"));
            ASSERT_NE(member.functions(), nullptr);
            EXPECT_EQ(member.functions()->elementType()->kind(), expected.elementKind);
        } else
            EXPECT_EQ(member.functions(), nullptr);
    }
    MetaType const * const base = MetaTypeMgr::get()->metaType(wanted.baseId);
    EXPECT_EQ(set->base(), base ? base->memberSet(c_latestVersion) : nullptr);
}

TEST_P(ClassTests, ALoadedObjectIsOfItsTypeAndHasItsIdAndVersion) {
    ClassRow const & wanted = GetParam();
    StrongRef<Entity> const object = load();
    EXPECT_EQ(object->metaType(), wanted.metaType());
    EXPECT_EQ(object->id(), 500U);
    EXPECT_FALSE(object->isCreating());
    EXPECT_FALSE(object->isMarkedMigrating());
    EXPECT_EQ(object->version(), wanted.version);
    EXPECT_EQ(object->getInterfaceId(), wanted.interfaceId());
}

TEST_P(ClassTests, TheInterfaceIdIsTheFullNameAndTheSameAtEveryLook) {
    ClassRow const & wanted = GetParam();
    UniqueString const * const id = wanted.interfaceId();
    EXPECT_EQ(id->string(), wanted.fullName);
    EXPECT_EQ(wanted.interfaceId(), id);
    EXPECT_EQ(UniqueString::find(wanted.fullName, false), id);
    StrongRef<Entity> const object = load();
    EXPECT_EQ(object->queryInterface(id), object.get());
}

TEST_P(ClassTests, EveryMetaTypeOfTheChainGivesTheSameObject) {
    StrongRef<Entity> const object = load();
    for (EntityMetaType const * type = GetParam().metaType(); type; type = type->base())
        EXPECT_EQ(object->queryMTInterface(type), object.get()) << type->name();
    EXPECT_EQ(object->queryMTInterface(Leaf::s_metaType()), nullptr);
    EXPECT_EQ(object->queryMTInterface(nullptr), nullptr);
}

TEST_P(ClassTests, TheBaseSetIsBuiltBeforeTheDerivedOne) {
    StrongRef<Entity> const object = load();
    for (MemberSet const * set = GetParam().metaType()->memberSet(c_latestVersion); set;
         set = set->base())
        EXPECT_TRUE(set->initialized()) << set->metaType()->name();
}

INSTANTIATE_TEST_SUITE_P(All, ClassTests, testing::ValuesIn(classes()),
                         [](auto const & row) { return std::string(row.param.name); });

TEST(PersistedEntityTests, TheAddInIsCommonData) {
    EXPECT_EQ(CommonDataAddInIdentifier(), "CommonData");
}

TEST(PersistedEntityTests, InterfacesHaveTheIdsOfTheirFullNames) {
    EXPECT_EQ(ICustomGroupParent::interfaceId()->string(), "Vn::Managed::ICustomGroupParent");
    EXPECT_EQ(ICustomGroupChild::interfaceId()->string(), "Vn::Managed::ICustomGroupChild");
    using namespace CommonData;
    EXPECT_EQ(ICommonData::interfaceId()->string(), "Vn::CommonData::ICommonData");
    EXPECT_EQ(ICommonDataClientObject::interfaceId()->string(),
              "Vn::CommonData::ICommonDataClientObject");
    EXPECT_EQ(IComponent::interfaceId()->string(), "Vn::CommonData::IComponent");
    EXPECT_EQ(IComponentObject::interfaceId()->string(), "Vn::CommonData::IComponentObject");
    EXPECT_EQ(IDefaultMaterialProvider::interfaceId()->string(),
              "Vn::CommonData::IDefaultMaterialProvider");
    EXPECT_EQ(IVisibilityToggle::interfaceId()->string(), "Vn::CommonData::IVisibilityToggle");
    EXPECT_EQ(ComponentChangeSummarizer::interfaceId()->string(),
              "Vn::CommonData::ComponentChangeSummarizer");
    EXPECT_EQ(IScriptableObject::interfaceId()->string(), "Vn::IScriptableObject");
}

template <class X>
class MakeTests : public testing::Test {
protected:
    Document const m_document;
};
using MadeClasses =
    testing::Types<ManagedEntity, ManagedGroupEntity, CommonBaseEntity, CommonBaseGroupEntity>;
TYPED_TEST_SUITE(MakeTests, MadeClasses);

TYPED_TEST(MakeTests, MakesAnObjectThatItsParentLists) {
    StrongRef<Group> const group = Group::make(this->m_document.segment());
    StrongRef<TypeParam> const made = TypeParam::make(PassiveRef<Entity>(group));
    EXPECT_EQ(made->metaType(), TypeParam::s_metaType());
    EXPECT_TRUE(made->isCreating());
    EXPECT_EQ(made->parent(), group);
    EXPECT_EQ(group->childrenVector(), Children{made});
}

TYPED_TEST(MakeTests, MakesAnObjectWithoutAParent) {
    StrongRef<TypeParam> const made = TypeParam::make(this->m_document.segment());
    EXPECT_EQ(made->metaType(), TypeParam::s_metaType());
    EXPECT_EQ(made->segment(), this->m_document.segment());
    EXPECT_EQ(made->parent(), nullptr);
}

TYPED_TEST(MakeTests, MakesNothingWithoutAPlace) {
    EXPECT_FALSE(TypeParam::make(static_cast<Segment *>(nullptr)));
    EXPECT_FALSE(TypeParam::make(PassiveRef<Entity>()));
    StrongRef<Group> group = Group::make(this->m_document.segment());
    PassiveRef<Entity> const gone(group);
    group.reset();
    EXPECT_FALSE(TypeParam::make(gone));
    StrongRef<Group> const closed = Group::make(Document().segment());
    EXPECT_FALSE(TypeParam::make(PassiveRef<Entity>(closed)));
    EXPECT_EQ(closed->children(), 0U);
}

// --- The parts that have a logic of their own ---------------------------------------------------

// A fresh class for each test: its first object builds its member set.
template <int Number>
class Fresh : public Persisted<Fresh<Number>, ManagedEntity> {
    using Pattern = Persisted<Fresh<Number>, ManagedEntity>;

public:
    static constexpr PersistedClass c_class{Number == 0   ? "Vn::Managed::Testing::Fresh0"
                                            : Number == 1 ? "Vn::Managed::Testing::Fresh1"
                                            : Number == 2 ? "Vn::Managed::Testing::Fresh2"
                                                          : "Vn::Managed::Testing::Fresh3",
                                            Number == 0   ? "1A5B0C3E-0002-4000-8000-000000000000"
                                            : Number == 1 ? "1A5B0C3E-0002-4000-8000-000000000001"
                                            : Number == 2 ? "1A5B0C3E-0002-4000-8000-000000000002"
                                                          : "1A5B0C3E-0002-4000-8000-000000000003",
                                            Number == 3 ? 2U : 0U};
    static EntityMetaType * s_metaType();
    static StrongRefCreator<Fresh> make(Segment * segment) { return Pattern::create(segment); }

    static inline std::atomic<int> s_fillings{0};
    static inline std::atomic<int> s_waiting{0};

private:
    friend PersistedAccess;
    explicit Fresh(Segment * segment) : Pattern(segment) { this->initializeMemberSetIfNeeded(); }
    Fresh(Segment * segment, unsigned long long id) : Pattern(segment, id) {
        this->initializeMemberSetIfNeeded();
    }
    void initializeMemberSet(unsigned, MemberSet * set) {
        ++s_fillings;
        addMember(set, "first", m_first, IntrinsicMetaType<int>::get());
        std::this_thread::yield();
        addMember(set, "second", m_second, IntrinsicMetaType<double>::get());
        addMember(set, "third", m_third, IntrinsicMetaType<bool>::get());
    }

    int m_first = 0;
    double m_second = 0.0;
    bool m_third = false;
};

template <int Number>
class FreshMetaType final : public PersistedMetaType<Fresh<Number>> {
public:
    using PersistedMetaType<Fresh<Number>>::PersistedMetaType;
};

FreshMetaType<0> s_fresh0;
FreshMetaType<1> s_fresh1;
FreshMetaType<2> s_fresh2("Vn::Managed::Testing::CoreAddIn");
FreshMetaType<3> s_fresh3;

template <>
EntityMetaType * Fresh<0>::s_metaType() {
    return &s_fresh0;
}
template <>
EntityMetaType * Fresh<1>::s_metaType() {
    return &s_fresh1;
}
template <>
EntityMetaType * Fresh<2>::s_metaType() {
    return &s_fresh2;
}
template <>
EntityMetaType * Fresh<3>::s_metaType() {
    return &s_fresh3;
}

void expectDeclaredOrder(MemberSet const & set) {
    ASSERT_EQ(set.members(), 3U);
    EXPECT_EQ(set.member(0).name(), "first");
    EXPECT_EQ(set.member(1).name(), "second");
    EXPECT_EQ(set.member(2).name(), "third");
}

TEST(PersistedEntityTests, TwoThreadsWithTheFirstTwoObjectsBuildTheMemberSetOnce) {
    using X = Fresh<0>;
    MemberSet const & set = *X::s_metaType()->memberSet(c_latestVersion);
    ASSERT_FALSE(set.initialized());
    auto const make = [] {
        Document const document; // each thread has its own
        ++X::s_waiting;
        while (X::s_waiting < 2) std::this_thread::yield();
        StrongRef<X> const made = X::make(document.segment());
        expectDeclaredOrder(*made->memberSet());
    };
    std::thread first(make);
    std::thread second(make);
    first.join();
    second.join();
    EXPECT_EQ(X::s_fillings, 1);
    expectDeclaredOrder(set);
}

TEST(PersistedEntityTests, WithoutLockingTheMemberSetIsBuiltAllTheSame) {
    using X = Fresh<1>;
    Document const document;
    ScopedLockBase::lockingEnabled(false);
    StrongRef<X> const first = X::make(document.segment());
    StrongRef<X> const second = X::make(document.segment());
    ScopedLockBase::lockingEnabled(true);
    EXPECT_EQ(X::s_fillings, 1);
    expectDeclaredOrder(*first->memberSet());
    StrongRef<X> const third = X::make(document.segment());
    EXPECT_EQ(X::s_fillings, 1);
}

TEST(PersistedEntityTests, OffsetsLeadToTheFields) {
    Document const document;
    StrongRef<Leaf> const leaf = Leaf::make(document.segment());
    leaf->value(42);
    Member const * const member = leaf->memberSet()->find("value");
    ASSERT_NE(member, nullptr);
    EXPECT_EQ(*reinterpret_cast<int *>(reinterpret_cast<char *>(leaf.get()) + member->offset()),
              42);
}

TEST(PersistedEntityTests, ATypeOfACoreAddInIsMarkedWhenItsMemberSetIsBuilt) {
    using X = Fresh<2>;
    ASSERT_TRUE(AddInMgr::get()->registerAddIn(
        std::make_unique<AddIn>("Vn::Managed::Testing::CoreAddIn", true)));
    EXPECT_EQ(s_fresh2.flags() & EntityMetaType::c_coreAddInFlag, 0U);
    Document const document;
    StrongRef<X> const made = X::make(document.segment());
    EXPECT_EQ(s_fresh2.flags(), 4U);
    // One whose add-in nobody registered isn't.
    EXPECT_EQ(Leaf::s_metaType()->flags(), 0U);
}

TEST(PersistedEntityTests, ClassesWithoutAHelperHaveNone) {
    Document const document;
    StrongRef<Leaf> const leaf = Leaf::make(document.segment());
    EXPECT_EQ(leaf->migrationHelper(), nullptr);
    EXPECT_EQ(leaf->createMigrationHelper(), nullptr);
    EXPECT_FALSE(leaf->deleteMigrationHelper());
    EXPECT_EQ(leaf->postMigrate(0), MigrationDone);
    EXPECT_EQ(static_cast<unsigned>(MigrationDone), 1U);
    leaf->initializeMigrationHelpers();
    EXPECT_EQ(leaf->migrationHelper(), nullptr);
    leaf->uninitializeMigrationHelpers();
}

TEST(PersistedEntityTests, TheVersionIsThatOfTheRecordPerMetaType) {
    Document const document;
    StrongRef<Leaf> const leaf = Leaf::make(document.segment());
    EXPECT_EQ(leaf->version(), 0U);
    leaf->version(7);
    EXPECT_EQ(leaf->version(), 7U);
    EXPECT_EQ(leaf->migratingVersion(Leaf::s_metaType()), 7U);
    EXPECT_EQ(leaf->ManagedEntity::version(), 0U);
}

// --- Migration ----------------------------------------------------------------------------------

// Whether a document is loading, and from which versions, is set by what loads; here by an
// explicit instantiation, which may name private members.
using Versions = std::unordered_map<MetaType const *, unsigned>;
bool Asset::*migratingFlag();
Versions Asset::*persistedVersions();
template <bool Asset::*Flag, Versions Asset::*All>
struct AssetAccess {
    friend bool Asset::*migratingFlag() { return Flag; }
    friend Versions Asset::*persistedVersions() { return All; }
};
template struct AssetAccess<&Asset::m_bMigrating, &Asset::m_persistedVersions>;

class MigrationTests : public testing::Test {
protected:
    using X = Fresh<3>; // at version 2

    MigrationTests() {
        m_document.asset().*migratingFlag() = true;
        persisted(X::s_metaType(), 1);
    }
    void persisted(EntityMetaType * type, unsigned version) const {
        (m_document.asset().*persistedVersions())[type] = version;
    }
    StrongRef<Entity> load(Segment * segment) {
        return X::s_metaType()->createEntity(segment, ++m_id);
    }

    Document const m_document;
    unsigned long long m_id = 700;
};

TEST_F(MigrationTests, AnOlderObjectMigratesToTheLatestVersion) {
    StrongRef<Entity> const object = load(m_document.segment());
    EXPECT_TRUE(object->isMarkedMigrating());
    EXPECT_EQ(object->version(), 1U);
    MemberSet const * const old = X::s_metaType()->memberSet(1);
    ASSERT_NE(old, nullptr);
    EXPECT_TRUE(old->initialized());
    expectDeclaredOrder(*old);
    object->Entity::postMigrate();
    EXPECT_EQ(object->version(), 2U);
}

TEST_F(MigrationTests, AnObjectMadeWhileTheDocumentMigratesDoesNotMigrate) {
    StrongRef<X> const made = X::make(m_document.segment());
    EXPECT_TRUE(made->isCreating());
    EXPECT_FALSE(made->isMarkedMigrating());
    EXPECT_EQ(made->version(), 2U);
}

TEST_F(MigrationTests, AnObjectOfTheSameVersionTakesNoMigratingVersionAndStaysUnmarked) {
    persisted(X::s_metaType(), 2);
    StrongRef<Entity> const object = load(m_document.segment());
    EXPECT_FALSE(object->isMarkedMigrating());
    EXPECT_EQ(object->version(), 2U);
}

TEST_F(MigrationTests, AnObjectOfANewerVersionDoesNotMigrate) {
    persisted(X::s_metaType(), 3);
    StrongRef<Entity> const object = load(m_document.segment());
    EXPECT_FALSE(object->isMarkedMigrating());
    EXPECT_EQ(object->version(), 2U);
}

TEST_F(MigrationTests, NothingMigratesInADocumentThatDoesNot) {
    m_document.asset().*migratingFlag() = false;
    EXPECT_FALSE(load(m_document.segment())->isMarkedMigrating());
}

TEST_F(MigrationTests, NothingMigratesWhileTheDocumentAsAWholeDoes) {
    m_document.asset().assetMigrating(true);
    EXPECT_FALSE(load(m_document.segment())->isMarkedMigrating());
}

TEST_F(MigrationTests, NothingMigratesInTransientAndStandaloneSegments) {
    auto const segment = [&](SegmentType::EVantorType type, bool transient) {
        return Segment::create(&m_document.asset(), SegmentTypeMgr::get()->segmentType(type),
                               transient);
    };
    EXPECT_FALSE(load(segment(SegmentType::TransientSegment, true))->isMarkedMigrating());
    EXPECT_FALSE(load(segment(SegmentType::StandaloneSegment, false))->isMarkedMigrating());
}

TEST_F(MigrationTests, ACollectionOfVersionZeroReadsItsOldMembersIntoAHelper) {
    EntityMetaType * const type = CommonBaseRootCollection::s_metaType();
    persisted(type, 0);
    StrongRef<Entity> const object = type->createEntity(m_document.segment(), ++m_id);
    auto * const collection = query<CommonBaseRootCollection>(object.get());
    EXPECT_TRUE(object->isMarkedMigrating());
    EXPECT_EQ(object->version(), 0U);
    ASSERT_NE(collection->migrationHelper(), nullptr);
    EXPECT_EQ(m_document.segment()->migrationHelper(collection, type),
              collection->migrationHelper());
    EXPECT_EQ(collection->createMigrationHelper(), collection->migrationHelper());

    MemberSet const * const old = type->memberSet(0);
    ASSERT_NE(old, nullptr);
    EXPECT_EQ(old->className(), "CommonBaseRootCollection");
    ASSERT_EQ(old->members(), 2U);
    EXPECT_EQ(old->member(0).name(), "rooted");
    EXPECT_EQ(old->member(0).type()->kind(), EMemberKind::Vector);
    EXPECT_EQ(old->member(0).functions()->elementType()->kind(), EMemberKind::PassiveRef);
    EXPECT_TRUE(old->member(0).inHelper());
    EXPECT_EQ(old->member(1).name(), "rootId");
    EXPECT_EQ(old->member(1).type()->kind(), EMemberKind::String);
    EXPECT_TRUE(old->member(1).inHelper());
    EXPECT_EQ(type->memberSet(c_latestVersion)->members(), 0U);

    // What is read for it goes to the helper, and is thrown away with it.
    auto * const helper = static_cast<CommonData::CommonBaseRootCollectionMigrationHelper *>(
        collection->migrationHelper());
    EXPECT_EQ(reinterpret_cast<char *>(helper) + old->member(1).offset(),
              reinterpret_cast<char *>(&helper->m_rootId));
    helper->m_rootId = "dropped";

    object->Entity::postMigrate();
    EXPECT_EQ(object->version(), 1U);
    EXPECT_EQ(collection->migrationHelper(), nullptr);
    EXPECT_EQ(m_document.segment()->migrationHelper(collection, type), nullptr);
    EXPECT_EQ(collection->rootId(), "");
    EXPECT_FALSE(collection->deleteMigrationHelper());
}

TEST_F(MigrationTests, ACollectionThatEndsWhileItMigratesTakesItsHelperAlong) {
    EntityMetaType * const type = CommonBaseRootCollection::s_metaType();
    persisted(type, 0);
    StrongRef<Entity> object = type->createEntity(m_document.segment(), ++m_id);
    void const * const address = object.get();
    ASSERT_NE(m_document.segment()->migrationHelper(address, type), nullptr);
    object.reset();
    EXPECT_EQ(m_document.segment()->migrationHelper(address, type), nullptr);
}

TEST_F(MigrationTests, TheHelpersOfACollectionComeAndGoOnRequest) {
    EntityMetaType * const type = CommonBaseRootCollection::s_metaType();
    persisted(type, 1);
    StrongRef<Entity> const object = type->createEntity(m_document.segment(), ++m_id);
    auto * const collection = query<CommonBaseRootCollection>(object.get());
    EXPECT_EQ(collection->migrationHelper(), nullptr);
    object->initializeMigrationHelpers();
    EXPECT_NE(collection->migrationHelper(), nullptr);
    object->uninitializeMigrationHelpers();
    EXPECT_EQ(collection->migrationHelper(), nullptr);
    object->initializeMigrationHelpers();
    EXPECT_TRUE(collection->deleteMigrationHelper());
}

// A helper that stands for a meta type is asked last.
TEST_F(MigrationTests, ACollectionAsksItsHelperForMetaTypesThatItDoesNotKnow) {
    EntityMetaType * const type = CommonBaseRootCollection::s_metaType();
    StrongRef<Entity> const object = type->createEntity(m_document.segment(), ++m_id);
    auto * const collection = query<CommonBaseRootCollection>(object.get());
    struct Helper : MigrationHelper {
        using MigrationHelper::MigrationHelper;
        void * queryMTInterface(MetaType const * asked) override {
            return asked == Leaf::s_metaType() ? this : nullptr;
        }
    };
    EXPECT_EQ(object->queryMTInterface(Leaf::s_metaType()), nullptr);
    auto * const helper = new Helper(m_document.segment());
    collection->migrationHelper() = helper;
    EXPECT_EQ(object->queryMTInterface(Leaf::s_metaType()), helper);
    EXPECT_EQ(object->queryMTInterface(type), object.get());
    EXPECT_EQ(object->queryMTInterface(Group::s_metaType()), nullptr);
    EXPECT_TRUE(collection->deleteMigrationHelper());
}

// --- Versions and kinds -------------------------------------------------------------------------

// Version 0 had one member, version 1 has two, one of them without option 16.
class Grown : public Persisted<Grown, ManagedEntity> {
public:
    static constexpr PersistedClass c_class{"Vn::Managed::Testing::Grown",
                                            "1A5B0C3E-0003-4000-8000-000000000000", 1};
    static EntityMetaType * s_metaType();
    static StrongRefCreator<Grown> make(Segment * segment) { return create(segment); }
    static inline std::vector<unsigned> s_asked;

    enum EColor : unsigned { Red, Green };

private:
    friend PersistedAccess;
    explicit Grown(Segment * segment) : Persisted(segment) { initializeMemberSetIfNeeded(); }
    Grown(Segment * segment, unsigned long long id) : Persisted(segment, id) {
        initializeMemberSetIfNeeded();
    }
    void initializeMemberSet(unsigned version, MemberSet * set) {
        s_asked.push_back(version);
        addMember(set, "rActive", m_rActive, PassiveRefMetaType::get())->clear(16);
        if (version == 0) return;
        addMember(set, "color", m_color);
        addVector(set, "numbers", m_numbers);
    }

    PassiveRef<Entity> m_rActive;
    EColor m_color = Red;
    std::vector<double> m_numbers;
};

class GrownMetaType final : public PersistedMetaType<Grown> {
} s_grown;
EntityMetaType * Grown::s_metaType() { return &s_grown; }

TEST_F(MigrationTests, TheLatestMembersAreAskedForByThePresentVersionAndOlderOnesByTheirs) {
    Grown::s_asked.clear();
    StrongRef<Grown> const made = Grown::make(m_document.segment());
    MemberSet const & latest = *Grown::s_metaType()->memberSet(c_latestVersion);
    ASSERT_EQ(latest.members(), 3U);
    EXPECT_EQ(latest.member(0).name(), "rActive");
    EXPECT_FALSE(latest.member(0).test(16));
    EXPECT_TRUE(latest.member(0).test(Member::OptionPersisted));
    EXPECT_EQ(latest.find("color")->type(), IntrinsicMetaType<unsigned int>::get());
    EXPECT_EQ(latest.find("numbers")->functions()->elementType(), IntrinsicMetaType<double>::get());

    persisted(Grown::s_metaType(), 0);
    StrongRef<Entity> const older = Grown::s_metaType()->createEntity(m_document.segment(), ++m_id);
    ASSERT_NE(Grown::s_metaType()->memberSet(0), nullptr);
    EXPECT_EQ(Grown::s_metaType()->memberSet(0)->members(), 1U);
    EXPECT_EQ(Grown::s_asked, (std::vector<unsigned>{1, 0}));
}

// A class with a member of a kind that its field isn't of.
class Wrong : public Persisted<Wrong, ManagedEntity> {
public:
    static constexpr PersistedClass c_class{"Vn::Managed::Testing::Wrong",
                                            "1A5B0C3E-0003-4000-8000-000000000001", 0};
    static EntityMetaType * s_metaType();
    static StrongRefCreator<Wrong> make(PassiveRef<Entity> const & parent) {
        return create(parent);
    }

private:
    friend PersistedAccess;
    explicit Wrong(PassiveRef<Entity> const & parent) : Persisted(parent) {
        initializeMemberSetIfNeeded();
    }
    Wrong(Segment * segment, unsigned long long id) : Persisted(segment, id) {
        initializeMemberSetIfNeeded();
    }
    void initializeMemberSet(unsigned, MemberSet * set) {
        addMember(set, "name", m_name, IntrinsicMetaType<double>::get());
    }

    std::wstring m_name;
};

class WrongMetaType final : public PersistedMetaType<Wrong> {
} s_wrong;
EntityMetaType * Wrong::s_metaType() { return &s_wrong; }

TEST(PersistedEntityTests, AWideStringAddedAsDoubleMakesNoObject) {
    Document const document;
    StrongRef<Group> const group = Group::make(document.segment());
    for (int i = 0; i < 2; ++i) {
        try {
            StrongRef<Wrong> const made = Wrong::make(PassiveRef<Entity>(group));
            ADD_FAILURE() << "an object was made";
        } catch (std::invalid_argument const & refused) {
            EXPECT_NE(std::string(refused.what()).find("Wrong.name"), std::string::npos);
        }
    }
    EXPECT_EQ(group->children(), 0U);
    EXPECT_EQ(document.asset().entities(), 1U);
}

} // namespace

} // namespace Vn::Managed::Testing
