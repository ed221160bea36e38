// Memory that runs out: the n-th allocation of an operation fails, n rising until nothing fails any
// more.  Whichever it is, the document is afterwards what it was before the operation or what it is
// after it, and the history fits; or the history says that it isn't usable, and refuses.

#include <filesystem>
#include <functional>
#include <map>
#include <new>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/DataModel/DocumentFile.h"
#include "Tests/DataModel/DocumentTestEntities.h"
#include "Tests/DataModel/FailingAllocations.h"

namespace Vn::Testing {

namespace {

// How an operation under failing allocations ended.
enum class EOutcome { Done, Refused, Threw };

// A document with one step in its history, which knows what it is like after each step.
class Scene {
public:
    Scene() {
        m_rAsset = Asset::make(nullptr);
        StrongRef<Everything> const root = Everything::make(design(*m_rAsset));
        m_pRoot = root.get();
        m_pRoot->m_texts.assign(3, GlobalizedString(L"text"));
        m_pRoot->m_wide = L"a text that no string keeps within itself";
        m_pRoot->m_spots.resize(2);
        design(*m_rAsset)->addRoot(root, "root");
        for (int i = 0; i < 4; ++i) makeChild();
        StrongRef<Everything> const branch = Everything::make(design(*m_rAsset));
        for (int i = 0; i < 3; ++i) branch->m_children.push_back(Row::make(design(*m_rAsset)));
        branch->m_rOwned = Row::make(design(*m_rAsset));
        m_pRoot->m_children.push_back(branch);
        m_pRoot->m_rOwned = Row::make(design(*m_rAsset));
        m_states[L""] = state();
        step(L"first", [&] {
            m_pRoot->change([&] {
                m_pRoot->m_wide = L"another text that no string keeps within itself";
                m_pRoot->m_children.erase(m_pRoot->m_children.begin());
            });
            makeChild();
        });
    }

    Asset & asset() { return *m_rAsset; }
    ChangeHistory & history() { return m_rAsset->history(); }
    Everything & root() { return *m_pRoot; }
    std::string state() const { return dump(*m_rAsset); }
    void close() { m_rAsset.reset(); }
    // Has an entity held that nothing in the document needs to own, in place of the one before.
    void hold(StrongRef<Entity> entity) noexcept { m_rHeld = std::move(entity); }

    void makeChild() {
        StrongRef<Row> const row = Row::make(design(*m_rAsset));
        m_pRoot->change([&] { m_pRoot->m_children.push_back(StrongRef<Piece>(row)); });
    }

    // A step whose state is known.
    void step(std::wstring const & name, std::function<void()> const & work) {
        Transaction transaction(*m_rAsset, name);
        work();
        transaction.commit();
        m_states[name] = state();
    }
    // The document as it is becomes the one without a step.
    void forgetSteps() {
        history().clear();
        m_states[L""] = state();
    }
    // The state after a step that isn't known yet.
    void knows(std::wstring const & name, std::string const & state) {
        m_states.emplace(name, state);
    }

    // That each step leads to its state, and back.
    void expectStepsFit() {
        if (!history().canUndo() && !history().canRedo()) return; // all was given up
        int steps = 0;
        for (; history().canUndo(); ++steps) {
            EXPECT_EQ(state(), m_states.at(history().undoNames().front()));
            EXPECT_TRUE(history().undo());
        }
        EXPECT_EQ(state(), m_states.at(L""));
        while (history().canRedo()) {
            EXPECT_TRUE(history().redo());
            EXPECT_EQ(state(), m_states.at(history().undoNames().front()));
        }
    }

    // That the document can be worked with.
    void expectGoesOn() {
        std::string const before = state();
        std::size_t const steps = history().undoSteps();
        {
            Transaction transaction(asset(), L"more");
            makeChild();
            root().change([&] {
                root().m_int += 1;
                root().m_children.pop_back();
                root().m_texts.clear();
            });
            transaction.commit();
        }
        EXPECT_EQ(history().undoSteps(), steps + 1);
        EXPECT_TRUE(history().undo());
        EXPECT_EQ(state(), before);
    }

    // That undo, redo and saving are refused with a reason, and nothing else is amiss.
    void expectRefuses() {
        EXPECT_FALSE(history().canUndo());
        EXPECT_FALSE(history().canRedo());
        TemporaryFile const file;
        for (Status const & refused :
             {history().undo(), history().redo(), DocumentFile::saveAs(asset(), file.path())}) {
            EXPECT_EQ(refused.code(), StatusFailed) << refused.toString();
            EXPECT_NE(refused.cause().find("memory ran out"), std::string::npos)
                << refused.toString();
        }
        EXPECT_FALSE(std::filesystem::exists(file.path()));
        for (bool const kept : {true, false}) {
            Transaction transaction(asset(), L"more");
            makeChild();
            root().change([&] { root().m_children.clear(); });
            if (kept)
                transaction.commit();
            else
                transaction.abort();
        }
    }

private:
    StrongRef<Asset> m_rAsset;
    Everything * m_pRoot = nullptr;
    StrongRef<Entity> m_rHeld;
    std::map<std::wstring, std::string> m_states; // by the step that comes before
};

// Work within a transaction.
struct Work {
    std::string name;
    std::function<void(Scene &)> run;
};

void PrintTo(Work const & work, std::ostream * out) { *out << work.name; }

template <class T, class U>
Work setting(std::string name, T Everything::*member, U value) {
    return {std::move(name), [=](Scene & scene) {
                T made(value);
                scene.root().change([&] { scene.root().*member = std::move(made); });
            }};
}

std::vector<Work> const & works() {
    static std::vector<Work> const s_works{
        setting("bool", &Everything::m_bool, true),
        setting("int", &Everything::m_int, -7),
        setting("unsigned", &Everything::m_unsigned, 7U),
        setting("int64", &Everything::m_int64, -7LL),
        setting("unsigned64", &Everything::m_unsigned64, 7ULL),
        setting("float", &Everything::m_float, 1.5F),
        setting("double", &Everything::m_double, 1.5),
        setting("string", &Everything::m_string, std::string(1000, 'x')),
        setting("wide", &Everything::m_wide, std::wstring(1000, L'x')),
        setting("text", &Everything::m_text, L"text"),
        setting("ints", &Everything::m_ints, std::vector<int>(100, 1)),
        setting("unsigneds", &Everything::m_unsigneds, std::vector<unsigned>(100, 1)),
        setting("int64s", &Everything::m_int64s, std::vector<long long>(100, 1)),
        setting("unsigned64s", &Everything::m_unsigned64s, std::vector<unsigned long long>(100, 1)),
        setting("floats", &Everything::m_floats, std::vector<float>(100, 1)),
        setting("doubles", &Everything::m_doubles, std::vector<double>(100, 1)),
        setting("strings", &Everything::m_strings,
                std::vector<std::string>(9, std::string(99, 'x'))),
        setting("wides", &Everything::m_wides,
                std::vector<std::wstring>(9, std::wstring(99, L'x'))),
        setting("texts", &Everything::m_texts,
                std::vector<GlobalizedString>(9, GlobalizedString(L"other"))),
        {"owned",
         [](Scene & scene) {
             StrongRef<Piece> made = Row::make(design(scene.asset()));
             scene.root().change([&] { scene.root().m_rOwned = std::move(made); });
         }},
        {"friend and friends",
         [](Scene & scene) {
             Everything & root = scene.root();
             root.change([&] {
                 root.m_rFriend = PassiveRef<Entity>(root.m_children[0]);
                 root.m_friends.assign(40, PassiveRef<Entity>(root.m_children[1]));
             });
         }},
        {"value and values",
         [](Scene & scene) {
             Everything & root = scene.root();
             Spot const spot{2, std::wstring(99, L'x'), PassiveRef<Entity>(root.m_children[0])};
             root.change([&] {
                 root.m_spot = spot;
                 root.m_spots.assign(9, spot);
             });
         }},
        {"children by splices",
         [](Scene & scene) {
             Everything & root = scene.root();
             std::vector<StrongRef<Piece>> & children = root.m_children;
             MemberSplices splices(root, &children);
             EntityChange const change(&root, DataChange::TransactDirect,
                                       DataChange::ChangeChildren, DataChange::TimingPreAndPost,
                                       nullptr, true);
             splices.erasing(1, 2);
             children.erase(children.begin() + 1, children.begin() + 3);
             StrongRef<Piece> const row = Row::make(design(scene.asset()));
             children.insert(children.begin(), row);
             splices.inserted(0);
             children.push_back(row);
             splices.inserted(children.size() - 1);
         }},
        {"creation",
         [](Scene & scene) {
             for (int i = 0; i < 150; ++i) scene.makeChild(); // more than a chunk of the table
         }},
        {"creation of nothing",
         [](Scene & scene) {
             for (int i = 0; i < 3; ++i) Everything::make(design(scene.asset()));
             scene.root().change([&] { scene.root().m_int = 3; });
         }},
        {"deletion",
         [](Scene & scene) {
             scene.root().change([&] { scene.root().m_children.clear(); });
         }},
        {"deletion of what has many children",
         [](Scene & scene) {
             StrongRef<Everything> const parent = Everything::make(design(scene.asset()));
             for (int i = 0; i < 40; ++i)
                 parent->m_children.push_back(Row::make(design(scene.asset())));
             scene.root().change([&] {
                 scene.root().m_rOwned = StrongRef<Piece>(parent);
                 scene.root().m_children.clear();
             });
             scene.root().change([&] { scene.root().m_rOwned.reset(); });
         }},
        {"roots",
         [](Scene & scene) {
             Segment & segment = *design(scene.asset());
             segment.addRoot(Row::make(&segment), "a key that no string keeps within itself");
             segment.addRoot(Row::make(&segment), "a key that no string keeps within itself");
             segment.addRoot(StrongRef<Entity>(scene.root().m_children[0]), "b");
             segment.addRoot(nullptr, "b");
         }},
        {"transactions within",
         [](Scene & scene) {
             for (bool const kept : {true, false, true}) {
                 Transaction within(scene.asset(), L"a transaction within another one");
                 scene.makeChild();
                 scene.root().change([&] {
                     scene.root().m_int += 1;
                     scene.root().m_children.erase(scene.root().m_children.begin());
                     scene.root().m_texts.pop_back();
                 });
                 if (kept)
                     within.commit();
                 else
                     within.abort();
             }
         }},
        {"brackets within brackets", [](Scene & scene) {
             auto & child = static_cast<Row &>(*scene.root().m_children[0]);
             scene.root().change([&] {
                 scene.root().m_texts.clear();
                 child.change([&] {
                     child.m_name = std::wstring(99, L'x');
                     scene.root().change([&] { scene.root().m_strings.resize(20); });
                 });
                 scene.root().m_spots.clear();
             });
         }}};
    return s_works;
}

// Something that runs under failing allocations, and what goes before.
struct Operation {
    std::function<void(Scene &)> m_prepare;
    std::function<Status(Scene &)> m_run;
};

// Runs it with the n-th allocation failing.
EOutcome runFailing(Operation const & operation, Scene & scene, unsigned long n, bool forGood) {
    EOutcome outcome = EOutcome::Done;
    FailingAllocations::failAt(n, forGood);
    try {
        if (!operation.m_run(scene)) outcome = EOutcome::Refused;
    } catch (std::bad_alloc const &) {
        outcome = EOutcome::Threw;
    }
    FailingAllocations::heal();
    return outcome;
}

// The document without any failure.
std::string stateAfter(Operation const & operation) {
    Scene scene;
    operation.m_prepare(scene);
    EXPECT_TRUE(operation.m_run(scene));
    return scene.state();
}

// What must hold after an operation that may have failed.
void expectBeforeOrAfter(Scene & scene, EOutcome outcome, std::string const & before,
                         std::string const & after) {
    EXPECT_FALSE(scene.history().isInTransaction());
    EXPECT_FALSE(scene.history().isReplaying());
    if (!scene.history().isUsable()) return scene.expectRefuses();
    std::string const state = scene.state();
    if (outcome == EOutcome::Done) {
        EXPECT_EQ(state, after);
    } else {
        EXPECT_TRUE(state == before || state == after) << state << "\nbefore:\n" << before;
    }
    scene.expectStepsFit();
    scene.expectGoesOn();
}

// One round; true if an allocation failed.
bool runRound(Operation const & operation, std::string const & after, unsigned long n,
              bool forGood) {
    Scene scene;
    operation.m_prepare(scene);
    std::string const before = scene.state();
    scene.knows(L"work", after);
    EOutcome const outcome = runFailing(operation, scene, n, forGood);
    expectBeforeOrAfter(scene, outcome, before, after);
    return FailingAllocations::hasFailed();
}

// Runs rounds until nothing fails any more, and sees that none leaves anything behind.
void forEachFailure(std::function<bool(unsigned long n, bool forGood)> const & round) {
    for (bool const forGood : {false, true})
        for (unsigned long n = 1;; ++n) {
            SCOPED_TRACE((forGood ? "for good from allocation " : "allocation ") +
                         std::to_string(n));
            bool hasFailed = false;
            long left = 1;
            // What is made once in a process is there in the second round.
            for (int i = 0; i < 3 && left; ++i) {
                long const living = FailingAllocations::living();
                hasFailed = round(n, forGood);
                left = FailingAllocations::living() - living;
            }
            EXPECT_EQ(left, 0);
            if (::testing::Test::HasFailure() || !hasFailed) break;
        }
}

void expectSurvivesFailures(Operation const & operation) {
    std::string const after = stateAfter(operation);
    forEachFailure(
        [&](unsigned long n, bool forGood) { return runRound(operation, after, n, forGood); });
}

class OutOfMemoryStepTests : public ::testing::TestWithParam<Work> {
protected:
    // The parameter's work as a step.
    static Status work(Scene & scene) {
        Transaction transaction(scene.asset(), L"work");
        GetParam().run(scene);
        transaction.commit();
        return Status::success();
    }
    static Status undo(Scene & scene) { return scene.history().undo(); }
    static Status redo(Scene & scene) { return scene.history().redo(); }
    static void nothing(Scene &) {}
};

TEST_P(OutOfMemoryStepTests, ATransactionIsDoneOrTakenBack) {
    expectSurvivesFailures({nothing, work});
}

TEST_P(OutOfMemoryStepTests, AnAbortTakesBackOrSaysThatItCouldnt) {
    expectSurvivesFailures({nothing, [](Scene & scene) {
                                Transaction transaction(scene.asset(), L"work");
                                GetParam().run(scene);
                                transaction.abort();
                                return Status::success();
                            }});
}

TEST_P(OutOfMemoryStepTests, AnUndoIsDoneOrNotOrSaysThatItIsNeither) {
    expectSurvivesFailures(
        {[](Scene & scene) { scene.step(L"work", [&] { GetParam().run(scene); }); }, undo});
}

TEST_P(OutOfMemoryStepTests, ARedoIsDoneOrNotOrSaysThatItIsNeither) {
    expectSurvivesFailures({[](Scene & scene) {
                                scene.step(L"work", [&] { GetParam().run(scene); });
                                EXPECT_TRUE(scene.history().undo());
                            },
                            redo});
}

INSTANTIATE_TEST_SUITE_P(OfEachKind, OutOfMemoryStepTests, ::testing::ValuesIn(works()),
                         [](auto const & work) {
                             std::string name;
                             for (char const c : work.param.name) name += c == ' ' ? '_' : c;
                             return name;
                         });

// What dies outside a transaction belongs to the last step, and can't be refused.
TEST(OutOfMemoryTests, TheLastReferenceGoesAndTheHistoryFitsOrIsGivenUp) {
    expectSurvivesFailures({[](Scene & scene) {
                                StrongRef<Everything> const parent =
                                    Everything::make(design(scene.asset()));
                                for (int i = 0; i < 40; ++i)
                                    parent->m_children.push_back(Row::make(design(scene.asset())));
                                scene.root().m_rOwned = StrongRef<Piece>(parent);
                                scene.forgetSteps();
                                Transaction transaction(scene.asset(), L"work");
                                scene.root().change([&] { scene.root().m_rOwned.reset(); });
                                transaction.commit();
                                scene.hold(parent);
                            },
                            [](Scene & scene) {
                                scene.hold(nullptr);
                                return Status::success();
                            }});
}

// Two steps, the first of which takes an owner of forty away that is let go after the second.
void letGoAfterSteps(Scene & scene) {
    StrongRef<Everything> parent = Everything::make(design(scene.asset()));
    for (int i = 0; i < 40; ++i) parent->m_children.push_back(Row::make(design(scene.asset())));
    scene.root().m_rOwned = StrongRef<Piece>(parent);
    scene.forgetSteps();
    for (std::wstring const name : {L"work", L"more"}) {
        Transaction transaction(scene.asset(), name);
        scene.root().change([&] {
            scene.root().m_int += 1;
            scene.root().m_rOwned.reset();
        });
        transaction.commit();
    }
    parent.reset();
    scene.knows(L"more", scene.state());
    EXPECT_TRUE(scene.history().undo());
    scene.knows(L"work", scene.state());
    EXPECT_TRUE(scene.history().redo());
}

TEST(OutOfMemoryTests, WhatWasHeldAndLetGoIsUndoneOrNotOrTheHistorySaysThatItIsNeither) {
    expectSurvivesFailures({[](Scene & scene) {
                                letGoAfterSteps(scene);
                                EXPECT_TRUE(scene.history().undo());
                            },
                            [](Scene & scene) { return scene.history().undo(); }});
}

TEST(OutOfMemoryTests, WhatWasHeldAndLetGoIsRedoneOrNotOrTheHistorySaysThatItIsNeither) {
    expectSurvivesFailures({[](Scene & scene) {
                                letGoAfterSteps(scene);
                                while (scene.history().canUndo())
                                    EXPECT_TRUE(scene.history().undo());
                            },
                            [](Scene & scene) { return scene.history().redo(); }});
}

TEST(OutOfMemoryTests, WhatIsHeldBeyondTheHistoryMayOutliveTheDocument) {
    forEachFailure([&](unsigned long n, bool forGood) {
        Scene scene;
        scene.step(L"work", [&] { scene.makeChild(); });
        StrongRef<Entity> const held(scene.root().m_children.back().get());
        EXPECT_TRUE(scene.history().undo());
        std::string const before = scene.state();
        FailingAllocations::failAt(n, forGood);
        scene.history().clear();
        FailingAllocations::heal();
        EXPECT_EQ(scene.state(), before);
        EXPECT_FALSE(held->isAlive());
        scene.close();
        EXPECT_EQ(held->asset(), nullptr);
        return FailingAllocations::hasFailed();
    });
}

TEST(OutOfMemoryTests, ADocumentClosesWithoutMemory) {
    forEachFailure([&](unsigned long n, bool forGood) {
        Scene scene;
        FailingAllocations::failAt(n, forGood);
        scene.close();
        FailingAllocations::heal();
        return FailingAllocations::hasFailed();
    });
}

TEST(OutOfMemoryTests, TheFirstObjectOfAClassIsMadeOrTheNextOneIs) {
    { Scene const scene; } // what all classes share is made
    forEachFailure([](unsigned long n, bool forGood) {
        Changing::become(1);
        StrongRef<Asset> asset = Asset::make(nullptr);
        FailingAllocations::failAt(n, forGood);
        try {
            static_cast<void>(Changing::make(design(*asset)));
        } catch (std::bad_alloc const &) {}
        FailingAllocations::heal();
        bool const hasFailed = FailingAllocations::hasFailed();

        StrongRef<Changing> next = Changing::make(design(*asset));
        MemberSet const & set = *Changing::s_metaType()->memberSet(c_latestVersion);
        EXPECT_EQ(set.members(), 3U);
        EXPECT_NE(set.base(), nullptr);
        {
            Transaction transaction(*asset, L"work");
            next->change([&] {
                next->m_count = 5;
                next->m_total = 2.5;
                next->m_name = L"name";
            });
            transaction.commit();
        }
        EXPECT_TRUE(asset->history().undo());
        EXPECT_EQ(next->m_count, 0);
        EXPECT_EQ(next->m_total, 0.0);
        EXPECT_EQ(next->m_name, L"");
        next.reset();
        asset.reset();
        Changing::end();
        return hasFailed;
    });
}

// As a load without memory leaves them, which never finished an object.
TEST(OutOfMemoryTests, ADocumentWithTheFirstObjectsOfAClassLoadsOrTheNextTimeDoes) {
    TemporaryFile const file;
    Changing::become(1);
    {
        StrongRef<Asset> const asset = Asset::make(nullptr);
        StrongRef<Changing> const root = Changing::make(design(*asset));
        root->change([&] { root->m_total = 2.5; });
        design(*asset)->addRoot(root, "root");
        EXPECT_TRUE(DocumentFile::saveAs(*asset, file.path()));
    }
    Changing::end();
    forEachFailure([&](unsigned long n, bool forGood) {
        Changing::become(1);
        StrongRef<Asset> asset;
        FailingAllocations::failAt(n, forGood);
        try {
            static_cast<void>(DocumentFile::load(file.path(), nullptr, asset));
        } catch (std::bad_alloc const &) {}
        FailingAllocations::heal();
        bool const hasFailed = FailingAllocations::hasFailed();

        asset.reset();
        EXPECT_TRUE(DocumentFile::load(file.path(), nullptr, asset));
        StrongRef<Entity> root = asset ? design(*asset)->rootEntity("root") : nullptr;
        auto const * const loaded = query<Changing>(root.get());
        EXPECT_TRUE(loaded && loaded->m_total == 2.5);
        root.reset();
        asset.reset();
        Changing::end();
        return hasFailed;
    });
}

TEST(OutOfMemoryTests, SuccessHasItsTextsWithoutMemory) {
    Status const status;
    FailingAllocations::failAt(1, true);
    bool const isEmpty =
        status.operation().empty() && status.subject().empty() && status.cause().empty();
    FailingAllocations::heal();
    EXPECT_TRUE(isEmpty);
    EXPECT_FALSE(FailingAllocations::hasFailed());
}

// --- Files -------------------------------------------------------------------------------------

std::string stateOf(std::filesystem::path const & file) {
    StrongRef<Asset> asset;
    Status const status = DocumentFile::load(file, nullptr, asset);
    EXPECT_TRUE(status) << status.toString();
    return asset ? dump(*asset) : std::string();
}

// Changes of every sort that a save has to write.
void changeForSave(Asset & asset) {
    auto & root = static_cast<Everything &>(*design(asset)->rootEntity("root"));
    root.change([&] {
        root.m_children.pop_back();
        root.m_children.erase(root.m_children.begin());
        root.m_children.push_back(Row::make(design(asset)));
        root.m_texts.clear();
    });
    design(asset)->addRoot(Everything::make(design(asset)), "another");
}

using Save = std::function<Status(Asset & asset, std::filesystem::path const & file)>;

void expectSavesSurviveFailures(Save const & save) {
    TemporaryFile const original;
    {
        Scene scene;
        EXPECT_TRUE(DocumentFile::saveAs(scene.asset(), original.path()));
    }
    std::string const before = stateOf(original.path());
    forEachFailure([&](unsigned long n, bool forGood) {
        TemporaryFile const file;
        std::filesystem::copy_file(original.path(), file.path());
        StrongRef<Asset> asset;
        EXPECT_TRUE(DocumentFile::load(file.path(), nullptr, asset));
        changeForSave(*asset);
        std::string const after = dump(*asset);
        bool isSaved = false;
        FailingAllocations::failAt(n, forGood);
        try {
            isSaved = save(*asset, file.path()).ok();
        } catch (std::bad_alloc const &) {}
        FailingAllocations::heal();
        bool const hasFailed = FailingAllocations::hasFailed();

        EXPECT_EQ(dump(*asset), after);
        EXPECT_NE(asset->isDirty(), isSaved);
        std::string const found = stateOf(file.path());
        EXPECT_TRUE(found == after || (!isSaved && found == before)) << found;
        if (!isSaved) {
            Status const again = DocumentFile::save(*asset);
            EXPECT_TRUE(again) << again.toString();
            EXPECT_EQ(stateOf(file.path()), after);
        }
        return hasFailed;
    });
}

TEST(OutOfMemoryTests, ASaveLeavesTheOldOrTheNewDocument) {
    expectSavesSurviveFailures(
        [](Asset & asset, std::filesystem::path const &) { return DocumentFile::save(asset); });
}

TEST(OutOfMemoryTests, AWholeSaveLeavesTheOldOrTheNewDocument) {
    expectSavesSurviveFailures(&DocumentFile::saveAs);
}

TEST(OutOfMemoryTests, ALoadGivesTheDocumentOrNone) {
    TemporaryFile const file;
    std::string state;
    {
        Scene scene;
        EXPECT_TRUE(DocumentFile::saveAs(scene.asset(), file.path()));
        state = scene.state();
    }
    forEachFailure([&](unsigned long n, bool forGood) {
        StrongRef<Asset> asset;
        FailingAllocations::failAt(n, forGood);
        bool isLoaded = false;
        try {
            isLoaded = DocumentFile::load(file.path(), nullptr, asset).ok();
        } catch (std::bad_alloc const &) {}
        FailingAllocations::heal();
        EXPECT_EQ(isLoaded, static_cast<bool>(asset));
        EXPECT_TRUE(!asset || dump(*asset) == state);
        return FailingAllocations::hasFailed();
    });
}

} // namespace

} // namespace Vn::Testing
