// The parts of the document commands that a process doesn't show alone.

#include <algorithm>
#include <gtest/gtest.h>
#include <optional>
#include <sstream>
#include <utility>
#include <vector>

#include "Console/Documents/Command.h"
#include "Console/Documents/CommandTable.h"
#include "Console/Documents/Place.h"
#include "Console/Documents/Session.h"
#include "Console/Documents/TextCommands.h"
#include "Console/Documents/Tree.h"
#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/Text.h"
#include "Platform/Base/TextCommandService.h"
#include "Server/CommonData/Managed/ManagedGroupEntity.h"
#include "Tests/Console/DocumentFixture.h"

namespace Vn::Console::Tests {

namespace {

using Managed::ManagedEntity;
using Managed::ManagedGroupEntity;

class DocumentCoreTests : public DocumentFixture {
protected:
    void SetUp() override { ASSERT_TRUE(m_session.makeNew()); }

    std::string tree() const {
        std::ostringstream out;
        writeTree(m_session, ETreeForm::Brief, out);
        return out.str();
    }
    StrongRef<ManagedGroupEntity> groupOf(unsigned long long id) const {
        return StrongRef<ManagedGroupEntity>(
            query<ManagedGroupEntity>(m_session.asset().entity(id).get()));
    }
    // What a text command answers.
    static std::string answer(std::wstring const & line) {
        return Text::toUtf8(TextCommandService::get().run(line).text);
    }
    // What stands after the name of the file where a save is refused.
    static std::string whyNotSaved() {
        std::string const text = answer(L"save");
        return text.substr(text.find("': ") + 3);
    }

    DocumentSession m_session;
    std::optional<DocumentTextCommands> m_commands{std::in_place, m_session};
};

TEST_F(DocumentCoreTests, ANewDocumentHasARootGroupAndNoHistory) {
    EXPECT_EQ(places(tree()), "Groups #1\n");
    EXPECT_EQ(m_session.history().undoSteps(), 0u);
    EXPECT_FALSE(m_session.hasUnsavedChanges());
    EXPECT_FALSE(m_session.history().canUndo());
}

TEST_F(DocumentCoreTests, EveryRowOfTheTableIsACommand) {
    TextCommandService const & service = TextCommandService::get();
    for (DocumentCommand const & row : documentCommands()) {
        SCOPED_TRACE(row.alias);
        std::wstring const alias = Text::widen(row.alias);
        EXPECT_EQ(findDocumentCommand(alias), &row);
        EXPECT_EQ(findDocumentCommand(std::wstring(row.area) + L'.' + row.name), &row);
        TextCommand const * const command = service.find({}, alias);
        ASSERT_TRUE(command);
        EXPECT_EQ(command->subjectArea(), row.area);
        EXPECT_EQ(command->name(), row.name);
        EXPECT_NE(row.run != nullptr, row.write != nullptr);
        EXPECT_LE(row.least, row.most);
        // The help of `vnconsole document` tells of those that a call may hold.
        bool const isTold =
            documentCallsText().find("\n  " + std::string(row.alias) + ' ') != std::string::npos;
        EXPECT_EQ(isTold, row.call != EDocumentCall::None);
    }
    EXPECT_EQ(findDocumentCommand(L"TREE"), findDocumentCommand(L"document.tree"));
    for (wchar_t const * const word :
         {L"", L".", L"Groups.", L"Groups.Tree", L"Units.List", L"tre"})
        EXPECT_EQ(findDocumentCommand(word), nullptr) << Text::toUtf8(word);
}

TEST_F(DocumentCoreTests, EveryChangeIsOneStep) {
    for (wchar_t const * const line :
         {L"make", L"make", L"make 0", L"add 0/0 7", L"move 0/0/3 after 1", L"move 1 into 0",
          L"remove 0/0/1", L"delete 0"}) {
        std::size_t const before = m_session.history().undoSteps();
        EXPECT_EQ(TextCommandService::get().run(line).status, 0) << Text::toUtf8(line);
        EXPECT_EQ(m_session.history().undoSteps(), before + 1) << Text::toUtf8(line);
    }
}

TEST_F(DocumentCoreTests, AMovedEntityHasItsNewGroupAsParent) {
    answer(L"make");
    answer(L"make");
    answer(L"add 0 2");
    EXPECT_EQ(answer(L"move 0/1 into 1"), "moved Groups/CmnData[0]/CmnData[1] to "
                                          "Groups/CmnData[1]/CmnData[0] (#32)");
    StrongRef<Entity> const moved = m_session.asset().entity(32);
    EXPECT_EQ(query<ManagedEntity>(moved.get())->parent()->id(), 30u);
    EXPECT_EQ(groupOf(29)->children(), 1u);
    ASSERT_EQ(groupOf(30)->children(), 1u);
    answer(L"undo");
    EXPECT_EQ(query<ManagedEntity>(moved.get())->parent()->id(), 29u);
}

TEST_F(DocumentCoreTests, ARemovedEntityGoesUnlessSomebodyHoldsIt) {
    answer(L"make");
    answer(L"add 0 2");
    StrongRef<Entity> held = m_session.asset().entity(30);
    EXPECT_EQ(answer(L"remove 0/0"), "removed Groups/CmnData[0]/CmnData[0] (#30); something else "
                                     "holds it, and it stays in the document");
    EXPECT_EQ(answer(L"remove 0/0"), "removed Groups/CmnData[0]/CmnData[0] (#31)");
    EXPECT_TRUE(m_session.asset().entity(30));
    EXPECT_FALSE(m_session.asset().entity(31));
    EXPECT_EQ(tree().substr(tree().rfind('\n', tree().size() - 2) + 1),
              "1 entity stands outside the tree\n");
    EXPECT_EQ(answer(L"tree #30"), "cannot show the tree: #30 isn't part of the tree");
}

TEST_F(DocumentCoreTests, DeletingTakesEverythingBelow) {
    answer(L"make");
    answer(L"make 0");
    answer(L"add 0/0 100");
    EXPECT_EQ(m_session.asset().entities(), 130u);
    EXPECT_EQ(entitiesBelow(*m_session.asset().entity(29)), 101u);
    answer(L"delete 0");
    EXPECT_EQ(m_session.asset().entities(), 28u);
    answer(L"undo");
    EXPECT_EQ(m_session.asset().entities(), 130u);
}

TEST_F(DocumentCoreTests, GroupsThatListEachOtherAreShownOnce) {
    answer(L"make");
    answer(L"make 0");
    groupOf(30)->addChild(groupOf(29));
    EXPECT_EQ(places(tree()), "Groups #1\n"
                              "Groups/CmnData[0] #29\n"
                              "Groups/CmnData[0]/CmnData[0] #30\n"
                              "Groups/CmnData[0]/CmnData[0]/CmnData[0] #29\n");
    EXPECT_NE(tree().find("  (its children are shown above)\n"), std::string::npos);
    EXPECT_EQ(entitiesBelow(*groupOf(29)), 1u);
}

TEST_F(DocumentCoreTests, ParentsInACircleLeadToNoRoot) {
    StrongRef<Entity> const root = m_session.root();
    StrongRef<ManagedGroupEntity> const first = makeGroup(root);
    StrongRef<ManagedGroupEntity> const second = makeGroup(first);
    groupOf(1)->removeChild(first);
    first->nullParent();
    second->addChild(first);
    EXPECT_EQ(entityPath(*first), L"");
    EXPECT_FALSE(Managed::isWithin(*first, *root));
    EXPECT_TRUE(Managed::isWithin(*first, *second));
    EXPECT_EQ(answer(L"tree #29"), "cannot show the tree: #29 isn't part of the tree");
}

TEST_F(DocumentCoreTests, AnEntityThatAForeignGroupListsIsntMoved) {
    answer(L"make");
    answer(L"make");
    answer(L"add 0 2");
    StrongRef<ManagedEntity> const child = groupOf(29)->child(0);
    groupOf(30)->addChild(child);
    std::string const why = "cannot move: Groups/CmnData[1]/CmnData[0] has another parent than the "
                            "group that lists it";
    EXPECT_EQ(answer(L"move 1/0 after 0/1"), why);
    EXPECT_EQ(answer(L"move 0/1 before 1/0"), why);
    EXPECT_EQ(answer(L"remove 1/0"), "removed Groups/CmnData[1]/CmnData[0] (#31); something else "
                                     "holds it, and it stays in the document");
    EXPECT_EQ(groupOf(29)->children(), 2u);
}

TEST_F(DocumentCoreTests, ADocumentWithoutTheRootGroupGetsItByTheFirstChange) {
    m_session.design().addRoot(nullptr, DocumentSession::c_rootKey);
    EXPECT_EQ(answer(L"add 0"), "cannot add entities: the document has no root \"Groups\"; its "
                                "roots are AssetSettings, NamedViews, UnitSystems");
    EXPECT_EQ(answer(L"make"), "made Groups/CmnData[0] (#30)");
    EXPECT_EQ(places(tree()), "Groups #29\nGroups/CmnData[0] #30\n");
    answer(L"undo");
    EXPECT_FALSE(m_session.root());
    EXPECT_EQ(answer(L"add . 2"), "added 2 entities: Groups/CmnData[0] to Groups/CmnData[1]");
}

TEST_F(DocumentCoreTests, ARootThatIsNoGroupIsRefused) {
    StrongRef<Entity> const plain = makeEntity(m_session.root());
    m_session.design().addRoot(plain, DocumentSession::c_rootKey);
    EXPECT_EQ(answer(L"make"), "cannot make a group: Groups isn't a group");
}

TEST_F(DocumentCoreTests, AnEntityWithAKeyOfItsOwnIsTakenOutOnlyWhereAGroupListsIt) {
    answer(L"make");
    m_session.design().addRoot(m_session.asset().entity(29), "Other/1");
    EXPECT_EQ(places(tree()), "Groups #1\nGroups/CmnData[0] #29\nOther\\/1 #29\n");
    EXPECT_EQ(answer(L"remove #29"), "cannot remove: Other\\/1 is a root of the tree");
    EXPECT_EQ(answer(L"make Other\\/1"), "made Other\\/1/CmnData[0] (#30)");
    EXPECT_EQ(answer(L"delete 0"),
              "deleted Groups/CmnData[0] (#29) and 1 entity below it; something "
              "else holds it, and it stays in the document");
    EXPECT_EQ(places(tree()), "Groups #1\nOther\\/1 #29\nOther\\/1/CmnData[0] #30\n");
}

TEST_F(DocumentCoreTests, DeepTreesAreWalkedWithoutRecursion) {
    constexpr std::size_t c_depth = 100000;
    m_session.change(L"dig", [&] {
        StrongRef<Entity> group = m_session.root();
        for (std::size_t i = 0; i < c_depth; ++i) group = makeGroup(group);
    });
    std::ostringstream out;
    writeTree(m_session, ETreeForm::Json, out);
    std::string const lines = out.str();
    EXPECT_EQ(static_cast<std::size_t>(std::count(lines.begin(), lines.end(), '\n')), c_depth + 24);
    // A path without end isn't written.
    EXPECT_LT(lines.size(), c_depth * 1500);
    EXPECT_NE(lines.find("{\"path\":null,\"id\":100028,\"parent\":100027,\"index\":0,"),
              std::string::npos);
    EXPECT_EQ(entitiesBelow(*m_session.root()), c_depth);
    EXPECT_EQ(entityPath(*m_session.asset().entity(c_depth + 28)).size(),
              6 + c_depth * std::wstring(L"/CmnData[0]").size());
    EXPECT_EQ(answer(L"delete 0"), "deleted Groups/CmnData[0] (#29) and 99999 entities below it");
}

TEST_F(DocumentCoreTests, LongPathsAreShownByTheirEnd) {
    std::wstring path = L"Groups";
    while (path.size() <= c_longestPath) path = childPath(path, 12);
    std::wstring const text = shownPath(path);
    EXPECT_EQ(text.substr(0, 16), L".../CmnData[12]/");
    EXPECT_LE(text.size(), c_longestPath + 3);
    EXPECT_EQ(path.substr(path.size() - 100), text.substr(text.size() - 100));
    EXPECT_EQ(shownPath(L"Groups/CmnData[0]"), L"Groups/CmnData[0]");
}

TEST_F(DocumentCoreTests, ATreeIsWrittenWhileItIsWalkedWhereThereIsAStreamForIt) {
    answer(L"make");
    answer(L"add 0 3");
    std::vector<std::wstring> const lines{L"tree", L"tree /Json", L"tree 0"};
    std::vector<std::string> answers;
    for (std::wstring const & line : lines) answers.push_back(answer(line));
    EXPECT_EQ(answers.front(), tree());
    std::ostringstream out;
    m_commands.reset();
    m_commands.emplace(m_session, &out);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        out.str({});
        EXPECT_EQ(answer(lines[i]), "");
        EXPECT_EQ(out.str(), answers[i]);
    }
    out.str({});
    EXPECT_EQ(answer(L"tree --json"), "");
    EXPECT_EQ(out.str(), answers[1]);
    out.str({});
    EXPECT_EQ(answer(L"tree 0 1"),
              "cannot show the tree: \"1\" is too much: the tree is of one entity");
    EXPECT_EQ(answer(L"tree 7").substr(0, 21), "cannot show the tree:");
    EXPECT_EQ(out.str(), "");
}

// Two programs have changed the same document.
class ConflictTests : public DocumentCoreTests {
protected:
    void SetUp() override {
        DocumentCoreTests::SetUp();
        answer(L"saveas \"a b.vnd\"");
        ASSERT_EQ(runConsole({"document", "a b.vnd", "make, make"}).status, 0);
        answer(L"make");
        ASSERT_EQ(TextCommandService::get().run(L"save").status, 1);
    }
    static std::string groupsIn(std::string const & file) {
        return places(document("tree", file).out);
    }

    static constexpr char c_ours[] = "Groups #1\nGroups/CmnData[0] #29\n";
    static constexpr char c_theirs[] = "Groups #1\nGroups/CmnData[0] #29\nGroups/CmnData[1] #30\n";
};

TEST_F(ConflictTests, TellsTheWaysOn) {
    EXPECT_EQ(
        whyNotSaved(),
        "changed meanwhile: the file was changed by another program\n"
        "  Document.SaveAs OTHER.vnd   saves this document under another name, and keeps both\n"
        "  Document.Open \"a b.vnd\" /Force   takes the other's work, and drops what was changed "
        "here\n"
        "  Document.SaveAs \"a b.vnd\" /Force   replaces the other's work by this document");
}

// Where what is shown first is read, another program saves.
class OtherProgram final : public std::stringbuf {
public:
    explicit OtherProgram(void (*act)()) : m_pAct(act) {}

private:
    int sync() override {
        if (void (*const act)() = std::exchange(m_pAct, nullptr)) act();
        return 0;
    }

    void (*m_pAct)();
};

TEST_F(DocumentCoreTests, ACallTellsWhatBecameOfItsChangesAndTheWayOn) {
    struct Row {
        void (*act)();
        char const * err; // after the name of the file
    };
    Row const rows[] = {
        {[] { EXPECT_EQ(document("make").status, 0); },
         "changed meanwhile: the file was changed by another program\n"
         "nothing was saved; the same call again makes the changes in the document that is there "
         "now\n"},
        {[] { EXPECT_TRUE(std::filesystem::remove("a.vnd")); },
         "not found: the file is gone\n"
         "nothing was saved; with --new the same call begins a new document\n"},
        {[] {
             EXPECT_TRUE(std::filesystem::remove("a.vnd") &&
                         std::filesystem::create_directory("a.vnd"));
         },
         "invalid argument: it is a directory\nnothing was saved\n"},
    };
    for (Row const & row : rows) {
        document("new /Force");
        OtherProgram other(row.act);
        std::ostream out(&other);
        std::ostringstream err;
        DocumentOptions options;
        options.file = L"a.vnd";
        options.words = {L"tree, make"};
        EXPECT_EQ(runDocument(options, m_session, out, err), 1);
        EXPECT_EQ(err.str().substr(err.str().find("': ") + 3), row.err);
    }
}

TEST_F(ConflictTests, BothAreKept) {
    EXPECT_EQ(answer(L"Document.SaveAs OTHER.vnd"), "saved OTHER.vnd");
    EXPECT_EQ(groupsIn("OTHER.vnd"), c_ours);
    EXPECT_EQ(runConsole({"document", "a b.vnd", "tree"}).status, 0);
    EXPECT_EQ(places(runConsole({"document", "a b.vnd", "tree"}).out), c_theirs);
}

TEST_F(ConflictTests, TheOthersWorkIsTaken) {
    EXPECT_EQ(answer(L"Document.Open \"a b.vnd\" /Force").substr(0, 18), "opened a b.vnd wit");
    EXPECT_EQ(places(tree()), c_theirs);
    EXPECT_FALSE(m_session.hasUnsavedChanges());
}

TEST_F(ConflictTests, TheOthersWorkIsReplaced) {
    EXPECT_EQ(answer(L"Document.SaveAs \"a b.vnd\" /Force"), "saved a b.vnd");
    EXPECT_EQ(places(runConsole({"document", "a b.vnd", "tree"}).out), c_ours);
}

TEST_F(DocumentCoreTests, AFileThatIsGoneIsMadeAgain) {
    answer(L"saveas a.vnd");
    answer(L"make");
    std::filesystem::remove("a.vnd");
    EXPECT_EQ(whyNotSaved(),
              "not found: the file is gone\n"
              "  Document.SaveAs OTHER.vnd   saves this document under another name\n"
              "  Document.SaveAs \"a.vnd\"   saves it under its own name again");
    EXPECT_EQ(answer(L"Document.SaveAs \"a.vnd\""), "saved a.vnd");
    EXPECT_EQ(places(document("tree").out), "Groups #1\nGroups/CmnData[0] #29\n");
}

TEST_F(DocumentCoreTests, ANewDocumentLetsGoOfTheOneBefore) {
    PassiveRef<Asset> const before{&m_session.asset()};
    answer(L"make");
    EXPECT_EQ(answer(L"new").substr(0, 27), "cannot make a new document:");
    EXPECT_TRUE(before.lock());
    answer(L"new /force");
    EXPECT_FALSE(before.lock());
}

} // namespace

} // namespace Vn::Console::Tests
