// What constructors and hooks do to a document while it loads: it counts as changed, it is saved,
// and it takes nothing of what the file has.

#include <functional>
#include <memory>
#include <stdexcept>

#include <gtest/gtest.h>

#include "Platform/DataModel/DocumentFile.h"
#include "Tests/DataModel/DocumentSql.h"
#include "Tests/DataModel/DocumentTestEntities.h"

namespace Vn::Testing {

namespace {

class Hooked;

class HookedMetaType : public DocumentMetaType<Hooked> {
public:
    using DocumentMetaType<Hooked>::DocumentMetaType;

private:
    void onPreLoad(Entity * entity) override;
    void onPostLoad(Entity * entity) override;
    void onPostMigrate(Entity * entity) override;
};

// A group of pieces whose hooks do what a test says.
class Hooked : public Piece {
public:
    static constexpr char c_className[] = "Hooked";
    static std::string s_metaTypeId() { return "Test-Hooked"; }
    static EntityMetaType * s_metaType() { return s_pType.get(); }
    static void become(unsigned version) {
        s_pType.reset();
        s_pType = std::make_unique<HookedMetaType>(version, Piece::s_metaTypeId());
    }
    static StrongRef<Hooked> make(Segment * segment) {
        StrongRef<Hooked> made(new Hooked(segment));
        made->postCreation(DataChange::TransactDirect);
        return made;
    }
    Hooked(Segment * segment, unsigned long long id) : Piece(segment, id) {
        initializeMemberSetIfNeeded(this);
        run(s_construct, *this);
    }
    void initializeMembers(unsigned version, MemberSet * set) {
        Members members(set);
        members.add("children", m_children);
        if (version > 0) members.add("rHelper", m_rHelper);
    }
    std::string dump() const override {
        std::string text = Piece::dump() + " helper ";
        text += std::to_string(m_rHelper ? m_rHelper->id() : 0) + " children";
        for (auto const & child : m_children) text += ' ' + std::to_string(child->id());
        return text;
    }
    void add(StrongRef<Piece> const & child) {
        change([&] { m_children.push_back(child); });
    }

    using Hook = std::function<void(Hooked &)>;
    static void run(Hook const & hook, Hooked & hooked) {
        if (hook) hook(hooked);
    }
    static void clearHooks() {
        for (Hook * const hook :
             {&s_construct, &s_preLoad, &s_postLoad, &s_entityPostMigrate, &s_typePostMigrate})
            *hook = nullptr;
    }
    static inline Hook s_construct;
    static inline Hook s_preLoad;
    static inline Hook s_postLoad;
    static inline Hook s_entityPostMigrate;
    static inline Hook s_typePostMigrate;
    static inline std::unique_ptr<HookedMetaType> s_pType;

    std::vector<StrongRef<Piece>> m_children;
    StrongRef<Row> m_rHelper; // since version 1

protected:
    explicit Hooked(Segment * segment) : Piece(segment) { initializeMemberSetIfNeeded(this); }
    EntityMetaType * onMetaType() const override { return s_metaType(); }
    void onPostMigrate() override {
        Piece::onPostMigrate();
        run(s_entityPostMigrate, *this);
        migratingVersion(s_metaType(), s_metaType()->version());
    }
};

void HookedMetaType::onPreLoad(Entity * entity) {
    Hooked::run(Hooked::s_preLoad, static_cast<Hooked &>(*entity));
}
void HookedMetaType::onPostLoad(Entity * entity) {
    Hooked::run(Hooked::s_postLoad, static_cast<Hooked &>(*entity));
}
void HookedMetaType::onPostMigrate(Entity * entity) {
    Hooked::run(Hooked::s_typePostMigrate, static_cast<Hooked &>(*entity));
}

class LoadingHooksTests : public ::testing::Test {
protected:
    // A group, entity 1, with the rows 2 and 3, of version 0.
    void SetUp() override {
        Hooked::become(0);
        StrongRef<Asset> const asset = Asset::make(nullptr);
        StrongRef<Hooked> const group = Hooked::make(design(*asset));
        design(*asset)->addRoot(group, "root");
        for (wchar_t const * const name : {L"first", L"second"}) {
            StrongRef<Row> const row = Row::make(design(*asset));
            row->m_name = name;
            group->add(row);
        }
        ASSERT_TRUE(DocumentFile::saveAs(*asset, m_file.path()).ok());
    }
    ~LoadingHooksTests() override {
        m_rAsset.reset();
        Hooked::clearHooks();
        Hooked::s_pType.reset();
    }

    void load() {
        Status const status = DocumentFile::load(m_file.path(), nullptr, m_rAsset);
        ASSERT_TRUE(status.ok()) << status.toString();
    }
    Hooked & root() { return static_cast<Hooked &>(*design(*m_rAsset)->rootEntity("root")); }
    // Saves what the hooks did, and sees that the file has it.
    void expectDirtyAndSaved() {
        EXPECT_TRUE(m_rAsset->isDirty());
        Status const saved = DocumentFile::save(*m_rAsset);
        ASSERT_TRUE(saved.ok()) << saved.toString();
        EXPECT_FALSE(m_rAsset->isDirty());
        std::vector<std::string> findings;
        EXPECT_TRUE(DocumentFile::check(m_file.path(), findings).ok());
        EXPECT_TRUE(findings.empty());
        std::string const before = dump(*m_rAsset);
        Hooked::clearHooks();
        load();
        EXPECT_EQ(dump(*m_rAsset), before);
        EXPECT_FALSE(m_rAsset->isDirty());
    }
    static void makeChild(Hooked & group) {
        StrongRef<Row> const row = Row::make(group.segment());
        row->m_name = L"made";
        group.add(row);
    }

    TemporaryFile m_file;
    StrongRef<Asset> m_rAsset;
};

} // namespace

TEST_F(LoadingHooksTests, AnEntityMadeInPostLoadHasAnIdOfItsOwnAndIsSaved) {
    Hooked::s_postLoad = makeChild;
    load();
    ASSERT_EQ(root().m_children.size(), 3U);
    EXPECT_EQ(root().id(), 1U);
    EXPECT_EQ(root().m_children[0]->m_name, L"first");
    EXPECT_EQ(root().m_children[2]->id(), 4U);
    expectDirtyAndSaved();
    EXPECT_EQ(root().m_children[2]->m_name, L"made");
}

TEST_F(LoadingHooksTests, AnEntityMadeInPostMigrateHasAnIdOfItsOwnAndIsSaved) {
    Hooked::become(1);
    Hooked::s_entityPostMigrate = makeChild;
    load();
    ASSERT_EQ(root().m_children.size(), 3U);
    EXPECT_EQ(root().m_children[2]->id(), 4U);
    expectDirtyAndSaved();
}

TEST_F(LoadingHooksTests, ARootMadeInPostMigrateDoesntReplaceTheOldOne) {
    Hooked::become(1);
    Hooked::s_entityPostMigrate = [](Hooked & group) {
        StrongRef<Row> const row = Row::make(group.segment());
        group.segment()->addRoot(row, "more");
    };
    load();
    ASSERT_TRUE(design(*m_rAsset)->rootEntity("more"));
    EXPECT_EQ(design(*m_rAsset)->rootEntity("more")->id(), 4U);
    expectDirtyAndSaved();
    EXPECT_EQ(root().id(), 1U);
    EXPECT_TRUE(design(*m_rAsset)->rootEntity("more"));
}

TEST_F(LoadingHooksTests, WhatPreLoadMakesTakesNoIdOfTheFile) {
    Hooked::s_preLoad = [](Hooked & group) {
        StrongRef<Row> const row = Row::make(group.segment());
        group.segment()->addRoot(row, "early");
    };
    load();
    EXPECT_EQ(design(*m_rAsset)->rootEntity("early")->id(), 4U);
    EXPECT_EQ(root().m_children.size(), 2U);
    expectDirtyAndSaved();
    EXPECT_TRUE(design(*m_rAsset)->rootEntity("early"));
}

TEST_F(LoadingHooksTests, AHelperThatTheLoadingConstructorMakesIsSavedIfTheFileHasNone) {
    Hooked::become(1);
    Hooked::s_construct = [](Hooked & group) { group.m_rHelper = Row::make(group.segment()); };
    load();
    ASSERT_TRUE(root().m_rHelper);
    EXPECT_EQ(root().m_rHelper->id(), 4U);
    expectDirtyAndSaved();
    ASSERT_TRUE(root().m_rHelper);

    // Now the file has one, and what the constructor makes is let go.
    Hooked::s_construct = [](Hooked & group) { group.m_rHelper = Row::make(group.segment()); };
    load();
    EXPECT_EQ(root().m_rHelper->id(), 4U);
    EXPECT_EQ(m_rAsset->entities(), 4U);
    EXPECT_FALSE(m_rAsset->isDirty());
}

TEST_F(LoadingHooksTests, WhatAHookChangesIsSaved) {
    Hooked::s_postLoad = [](Hooked & group) { group.change([&] { group.m_name = L"changed"; }); };
    load();
    expectDirtyAndSaved();
    EXPECT_EQ(root().m_name, L"changed");
}

TEST_F(LoadingHooksTests, WhatAHookDeletesIsErasedFromTheFile) {
    Hooked::s_postLoad = [](Hooked & group) { group.change([&] { group.m_children.pop_back(); }); };
    load();
    EXPECT_EQ(m_rAsset->entities(), 2U);
    expectDirtyAndSaved();
    EXPECT_EQ(m_rAsset->entities(), 2U);
    EXPECT_EQ(query(m_file.path(), "SELECT count(*) FROM Row")[0][0], "1");
}

TEST_F(LoadingHooksTests, WhatAHookMakesAndLetsGoLeavesNothing) {
    Hooked::s_postLoad = [](Hooked & group) { Row::make(group.segment()); };
    load();
    EXPECT_EQ(m_rAsset->entities(), 3U);
    EXPECT_FALSE(m_rAsset->isDirty());
}

TEST_F(LoadingHooksTests, AHookThatMakesItsOwnKindIsntToldOfThose) {
    int told = 0;
    Hooked::s_postLoad = [&](Hooked & group) {
        ++told;
        group.add(Hooked::make(group.segment()));
    };
    load();
    EXPECT_EQ(told, 1);
    EXPECT_EQ(m_rAsset->entities(), 4U);
}

TEST_F(LoadingHooksTests, AHookThatThrowsInTheMiddleLeavesNoDocument) {
    Hooked::become(1);
    for (Hooked::Hook * const hook : {&Hooked::s_construct, &Hooked::s_preLoad, &Hooked::s_postLoad,
                                      &Hooked::s_entityPostMigrate, &Hooked::s_typePostMigrate}) {
        Hooked::clearHooks();
        *hook = [](Hooked & group) {
            makeChild(group);
            group.m_rHelper = Row::make(group.segment());
            throw std::runtime_error("no");
        };
        EXPECT_FALSE(DocumentFile::load(m_file.path(), nullptr, m_rAsset).ok());
        EXPECT_FALSE(m_rAsset);
    }
    Hooked::clearHooks();
    load();
    EXPECT_EQ(m_rAsset->entities(), 3U);
}

TEST_F(LoadingHooksTests, TheMetaTypeIsToldOnceAfterTheEntityHasMigrated) {
    std::vector<std::string> heard;
    Hooked::s_entityPostMigrate = [&](Hooked & group) {
        heard.push_back("entity " + std::to_string(group.id()));
    };
    Hooked::s_typePostMigrate = [&](Hooked & group) {
        heard.push_back("type " + std::to_string(group.version()));
    };
    load();
    EXPECT_TRUE(heard.empty()) << "nothing migrates";
    m_rAsset.reset();
    Hooked::become(1);
    load();
    EXPECT_EQ(heard, (std::vector<std::string>{"entity 1", "type 1"}));
    EXPECT_FALSE(m_rAsset->isDirty());
}

} // namespace Vn::Testing
