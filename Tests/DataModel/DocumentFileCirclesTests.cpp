// Entities that own each other in a circle: no save writes what a load would refuse.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Platform/DataModel/DocumentFile.h"
#include "Tests/DataModel/DocumentSql.h"
#include "Tests/DataModel/DocumentTestEntities.h"
#include "Tests/Support/FileContent.h"
#include "Tests/Support/SmallStack.h"

namespace Vn::Testing {

namespace {

using ::testing::HasSubstr;

// A value that owns, and an entity with nothing but a list of such values.
struct Hook {
    StrongRef<Piece> held;

    static ValueMetaType * s_metaType();
};

class HookMetaType : public ValueMetaType {
public:
    HookMetaType() : ValueMetaType("Test-Hook", "HookMetaType", 0, "Hook", {}) {}

private:
    std::size_t doSizeInBytes(VisitorContext const &) const override { return sizeof(Hook); }
    void * doConstruct(void * memory, VisitorContext const &) const override {
        return memory ? new (memory) Hook : nullptr;
    }
    void * doConstruct() const override { return new Hook; }
    void doDestruct(void * value) const override { delete static_cast<Hook *>(value); }
    std::wstring doToString(void *, VisitorContext const &) const override { return L"Hook"; }
    void * doQueryMTInterface(void * value) const override { return value; }
    void onMigratingMemberSet(void * value, unsigned, MemberSet * set,
                              VisitorContext const &) const override {
        set->initialize(value, "Hook");
        Members(set).add("held", static_cast<Hook *>(value)->held);
    }
};

ValueMetaType * Hook::s_metaType() {
    static HookMetaType s_type;
    return &s_type;
}

class Rack : public Piece {
public:
    static constexpr char c_className[] = "Rack";
    static std::string s_metaTypeId() { return "Test-Rack"; }
    static EntityMetaType * s_metaType();
    static StrongRef<Rack> make(Segment * segment) {
        StrongRef<Rack> made(new Rack(segment));
        made->postCreation(DataChange::TransactDirect);
        return made;
    }
    Rack(Segment * segment, unsigned long long id) : Piece(segment, id) {
        initializeMemberSetIfNeeded<Rack>(this);
    }
    void initializeMembers(unsigned, MemberSet * set) { Members(set).add("hooks", m_hooks); }

    std::vector<Hook> m_hooks;
    std::function<void()> m_beforeSave; // what its class does before it is saved

protected:
    explicit Rack(Segment * segment) : Piece(segment) { initializeMemberSetIfNeeded<Rack>(this); }
    EntityMetaType * onMetaType() const override { return s_metaType(); }
};

class RackMetaType : public DocumentMetaType<Rack> {
public:
    RackMetaType() : DocumentMetaType(0, Piece::s_metaTypeId()) {}

private:
    void onPreSave(Entity * entity) override {
        if (auto const & act = static_cast<Rack *>(entity)->m_beforeSave) act();
    }
};

EntityMetaType * Rack::s_metaType() {
    static RackMetaType s_type;
    return &s_type;
}

std::string circleOf(Entity const & entity) {
    return "entity " + std::to_string(entity.id()) + " owns itself in a circle";
}

void expectRefused(Status const & status, ::testing::Matcher<std::string const &> const & cause) {
    EXPECT_EQ(status.code(), StatusCorrupt) << status.toString();
    EXPECT_THAT(std::string(status.cause()), cause);
    EXPECT_THAT(status.toString(), HasSubstr("save the document"));
}

// The file is loaded as the document, and nothing is found wrong with it.
void expectSaved(Asset const & asset, std::filesystem::path const & file) {
    StrongRef<Asset> loaded;
    Status const status = DocumentFile::load(file, nullptr, loaded);
    ASSERT_TRUE(status) << status.toString();
    EXPECT_EQ(dump(*loaded), dump(asset));
    std::vector<std::string> findings;
    EXPECT_TRUE(DocumentFile::check(file, findings));
    EXPECT_THAT(findings, ::testing::IsEmpty());
}

void setOwned(Everything & owner, Piece * owned) {
    owner.change([&] { owner.m_rOwned = StrongRef<Piece>(owned); });
}

class DocumentFileCirclesTests : public ::testing::Test {
protected:
    StrongRef<Everything> makeEverything() { return Everything::make(design(*m_rAsset)); }

    // Neither way of saving writes anything, and the document is as it was.
    void expectNothingSaved(::testing::Matcher<std::string const &> const & cause) {
        std::string const content = contentOf(m_file.path());
        std::string const before = dump(*m_rAsset);
        expectRefused(DocumentFile::save(*m_rAsset), cause);
        expectRefused(DocumentFile::saveAs(*m_rAsset, m_file.path()), cause);
        TemporaryFile const elsewhere;
        expectRefused(DocumentFile::saveAs(*m_rAsset, elsewhere.path()), cause);
        EXPECT_FALSE(std::filesystem::exists(elsewhere.path()));
        for (std::string const & name : {m_file.text(), elsewhere.text()})
            for (char const * const ending : {".saving", "-journal"})
                EXPECT_FALSE(std::filesystem::exists(name + ending));
        EXPECT_TRUE(contentOf(m_file.path()) == content);
        EXPECT_EQ(dump(*m_rAsset), before);
        EXPECT_EQ(m_rAsset->file(), m_file.path());
        EXPECT_TRUE(m_rAsset->isDirty());
    }

    void saveChanges() {
        Status const status = DocumentFile::save(*m_rAsset);
        EXPECT_TRUE(status) << status.toString();
        EXPECT_FALSE(m_rAsset->isDirty());
        expectSaved(*m_rAsset, m_file.path());
    }

    void saveWhole() {
        Status const status = DocumentFile::saveAs(*m_rAsset, m_file.path());
        EXPECT_TRUE(status) << status.toString();
        expectSaved(*m_rAsset, m_file.path());
    }

    TemporaryFile const m_file;
    StrongRef<Asset> const m_rAsset = Asset::make(nullptr);
};

} // namespace

TEST_F(DocumentFileCirclesTests, TheFirstSaveOfACircleIsRefused) {
    StrongRef<Everything> const one = makeEverything();
    one->m_rOwned = StrongRef<Piece>(one);
    expectRefused(DocumentFile::saveAs(*m_rAsset, m_file.path()), circleOf(*one));
    EXPECT_FALSE(std::filesystem::exists(m_file.path()));
    EXPECT_FALSE(std::filesystem::exists(m_file.text() + ".saving"));
    EXPECT_TRUE(m_rAsset->file().empty());
    EXPECT_EQ(one->m_rOwned, one);
    one->m_rOwned.reset();
    saveWhole();
}

TEST_F(DocumentFileCirclesTests, ASaveRefusesWithTheReasonOfALoad) {
    StrongRef<Everything> const one = makeEverything();
    saveWhole();
    Sql(m_file.path()).run("UPDATE Everything SET \"Everything.rOwned\"=id");
    StrongRef<Asset> loaded;
    Status const ofLoad = DocumentFile::load(m_file.path(), nullptr, loaded);
    setOwned(*one, one.get());
    Status const ofSave = DocumentFile::saveAs(*m_rAsset, m_file.path());
    EXPECT_EQ(ofSave.code(), ofLoad.code());
    EXPECT_EQ(ofSave.cause(), ofLoad.cause());
    setOwned(*one, nullptr);
}

TEST_F(DocumentFileCirclesTests, AnEntityThatOwnsItselfIsRefused) {
    StrongRef<Everything> const one = makeEverything();
    saveWhole();
    setOwned(*one, one.get());
    expectNothingSaved(circleOf(*one));
    setOwned(*one, nullptr);
    saveChanges();
}

TEST_F(DocumentFileCirclesTests, TwoThatOwnEachOtherAreRefused) {
    StrongRef<Everything> const one = makeEverything();
    StrongRef<Everything> const two = makeEverything();
    setOwned(*one, two.get());
    saveWhole();
    two->change([&] { two->m_children = {StrongRef<Piece>(one)}; });
    expectNothingSaved(::testing::AnyOf(circleOf(*one), circleOf(*two)));
    two->change([&] { two->m_children.clear(); });
    saveChanges();
}

// Only one of its entities has changed since the save before.
TEST_F(DocumentFileCirclesTests, ACircleThroughWhatWasSavedBeforeIsRefused) {
    StrongRef<Everything> const before = makeEverything();
    StrongRef<Everything> const one = makeEverything();
    StrongRef<Everything> const two = makeEverything();
    StrongRef<Everything> const three = makeEverything();
    setOwned(*before, one.get());
    setOwned(*one, two.get());
    setOwned(*two, three.get());
    saveWhole();
    setOwned(*three, one.get());
    expectNothingSaved(::testing::AnyOf(circleOf(*one), circleOf(*two), circleOf(*three)));
    setOwned(*three, nullptr);
    saveChanges();
}

TEST_F(DocumentFileCirclesTests, ACircleThroughAListOfValuesIsRefused) {
    StrongRef<Rack> const rack = Rack::make(design(*m_rAsset));
    StrongRef<Everything> const held = makeEverything();
    rack->m_hooks.push_back({StrongRef<Piece>(held)});
    saveWhole();
    setOwned(*held, rack.get());
    expectNothingSaved(::testing::AnyOf(circleOf(*rack), circleOf(*held)));
    setOwned(*held, nullptr);
    saveChanges();
}

TEST_F(DocumentFileCirclesTests, WhatIsOwnedTwiceIsSaved) {
    StrongRef<Everything> const top = makeEverything();
    StrongRef<Everything> const left = makeEverything();
    StrongRef<Everything> const right = makeEverything();
    StrongRef<Everything> const bottom = makeEverything();
    saveWhole();
    top->change([&] { top->m_children = {StrongRef<Piece>(left), StrongRef<Piece>(right)}; });
    setOwned(*left, bottom.get());
    setOwned(*right, bottom.get());
    saveChanges();
    saveWhole();
}

// The references that would close it are null in the file.
TEST_F(DocumentFileCirclesTests, ACircleThroughATransientSegmentIsSaved) {
    Segment * const transient = Segment::create(
        m_rAsset.get(), SegmentTypeMgr::get()->segmentType(SegmentType::TransientSegment), false);
    StrongRef<Everything> const one = makeEverything();
    StrongRef<Everything> const fleeting = Everything::make(transient);
    saveWhole();
    setOwned(*fleeting, one.get());
    setOwned(*one, fleeting.get());
    for (bool const whole : {false, true}) {
        Status const status =
            whole ? DocumentFile::saveAs(*m_rAsset, m_file.path()) : DocumentFile::save(*m_rAsset);
        EXPECT_TRUE(status) << status.toString();
        StrongRef<Asset> loaded;
        EXPECT_TRUE(DocumentFile::load(m_file.path(), nullptr, loaded));
    }
    setOwned(*one, nullptr);
}

TEST_F(DocumentFileCirclesTests, ALongCircleIsRefusedOnASmallStack) {
    onSmallStack([this] {
        StrongRef<Everything> const first = makeEverything();
        Everything * last = first.get();
        for (int i = 1; i < 100'000; ++i) {
            StrongRef<Everything> const next = makeEverything();
            last->m_rOwned = StrongRef<Piece>(next);
            last = next.get();
        }
        Status status = DocumentFile::saveAs(*m_rAsset, m_file.path());
        ASSERT_TRUE(status) << status.toString();
        setOwned(*last, first.get());
        expectNothingSaved(HasSubstr("owns itself in a circle"));
        setOwned(*last, nullptr);
        status = DocumentFile::save(*m_rAsset);
        EXPECT_TRUE(status) << status.toString();
        StrongRef<Asset> loaded;
        EXPECT_TRUE(DocumentFile::load(m_file.path(), nullptr, loaded));
    });
}

TEST_F(DocumentFileCirclesTests, ACircleThatAHookClosesIsRefused) {
    StrongRef<Everything> const one = makeEverything();
    StrongRef<Rack> const rack = Rack::make(design(*m_rAsset));
    rack->m_beforeSave = [&] { setOwned(*one, one.get()); };
    expectRefused(DocumentFile::saveAs(*m_rAsset, m_file.path()), circleOf(*one));
    rack->m_beforeSave = nullptr;
    setOwned(*one, nullptr);
    saveWhole();
    rack->m_beforeSave = [&] { setOwned(*one, one.get()); };
    rack->change([&] { rack->m_name = L"changed"; });
    expectRefused(DocumentFile::save(*m_rAsset), circleOf(*one));
    rack->m_beforeSave = nullptr;
    setOwned(*one, nullptr);
    saveChanges();
}

// Whichever comes first in the file.
TEST_F(DocumentFileCirclesTests, WhatAHookChangesInAnotherEntityIsSaved) {
    StrongRef<Everything> const before = makeEverything();
    StrongRef<Rack> const rack = Rack::make(design(*m_rAsset));
    StrongRef<Everything> const after = makeEverything();
    int saves = 0;
    rack->m_beforeSave = [&] {
        ++saves;
        for (Everything * const other : {before.get(), after.get()})
            other->change([&] { other->m_int = saves; });
    };
    saveWhole();
    EXPECT_EQ(saves, 1);
    before->change([&] { before->m_name = L"changed"; });
    rack->change([&] { rack->m_name = L"changed"; });
    saveChanges();
    EXPECT_EQ(saves, 2);
}

} // namespace Vn::Testing
