// Named views in files.

#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Base/InterfaceId.h"
#include "Platform/DataModel/AssetAdapter.h"
#include "Platform/DataModel/DocumentFile.h"
#include "Tests/CommonData/NamedViews/NamedViewsTesting.h"
#include "Tests/DataModel/DocumentSql.h"

namespace Vn::NameView {

namespace {

using Vn::Testing::query;
using Vn::Testing::Sql;
using Names = std::vector<std::wstring>;

class NamedViewsDocumentTests : public testing::Test {
protected:
    void save() {
        Status const status = DocumentFile::saveAs(m_document.asset(), m_file.path());
        ASSERT_TRUE(status) << status.toString();
    }
    void run(std::string const & sql) { Sql(m_file.path()).run(sql); }
    // Why the file isn't opened.
    std::string refusal() {
        StrongRef<Asset> asset;
        Status const status = DocumentFile::load(m_file.path(), nullptr, asset);
        EXPECT_EQ(status.code(), StatusCorrupt);
        EXPECT_FALSE(asset);
        return status.cause();
    }

    TemporaryFile const m_file;
    ViewDocument m_document{ViewDocument::BuiltIn};
};

TEST_F(NamedViewsDocumentTests, EverythingComesBack) {
    m_document.make(L"", 1);
    m_document.make(L"a/b[2]", 2);
    m_document.make(std::wstring(L"n\0l", 3), 3);
    m_document.view(2)->enableModify(true);
    m_document.views()->insertChild(m_document.view(6), 0); // listed twice
    save();
    ViewDocument const loaded(m_file.path());
    EXPECT_EQ(loaded.state(), m_document.state());
    EXPECT_EQ(loaded.view(0), loaded.view(7));
    EXPECT_EQ(loaded.view(1)->parent(), loaded.views());
    EXPECT_FALSE(loaded.asset().isDirty());
    EXPECT_EQ(loaded.views(), loaded.segment()->rootEntity("NamedViews"));
}

TEST_F(NamedViewsDocumentTests, ALoadedDocumentGoesOn) {
    save();
    ViewDocument const loaded(m_file.path());
    loaded.run(NewNamedViewRequest::make(&loaded.asset(), loaded.view(3)->camera()));
    loaded.run(UpdateNamedViewNameRequest::make(&loaded.asset(), L"NamedView", L"TOP"));
    EXPECT_EQ(loaded.names(), (Names{L"TOP", L"FRONT", L"RIGHT", L"HOME", L"TOP_1"}));
    ASSERT_TRUE(DocumentFile::save(loaded.asset()));
    loaded.undo();
    loaded.undo();
    EXPECT_EQ(loaded.state(), m_document.state());
    loaded.redo();
    loaded.redo();
    EXPECT_EQ(ViewDocument(m_file.path()).state(), loaded.state());
}

TEST_F(NamedViewsDocumentTests, ACameraOfAnotherClassIsRefused) {
    save();
    run("UPDATE NamedView SET \"NamedView.m_rCamera\" = \"ManagedEntity.rParent\"");
    EXPECT_NE(refusal().find("is of another class"), std::string::npos) << refusal();
}

TEST_F(NamedViewsDocumentTests, ACameraThatIsNotThereIsRefused) {
    save();
    run("UPDATE NamedView SET \"NamedView.m_rCamera\" = (SELECT next_entity - 1 FROM document)");
    run("UPDATE document SET next_entity = next_entity + 1");
    run("UPDATE NamedView SET \"NamedView.m_rCamera\" = (SELECT next_entity - 1 FROM document)");
    EXPECT_NE(refusal().find("there is no entity"), std::string::npos) << refusal();
}

TEST_F(NamedViewsDocumentTests, NamedViewsOfAnotherClassAreRefused) {
    save();
    run("UPDATE CommonDataAssetSettings SET \"CommonDataAssetSettings.namedViews\" = "
        "(SELECT min(id) FROM Camera)");
    EXPECT_NE(refusal().find("is of another class"), std::string::npos) << refusal();
}

TEST_F(NamedViewsDocumentTests, AViewWithoutACameraIsOpened) {
    save();
    run("UPDATE NamedView SET \"NamedView.m_rCamera\" = NULL");
    ViewDocument const loaded(m_file.path());
    ASSERT_EQ(loaded.names(), m_document.names());
    EXPECT_FALSE(loaded.view(3)->camera());
    ViewStates const before = loaded.state();
    loaded.views()->synchonizeHomeNamedView();
    loaded.views()->synchonizeTopNamedView();
    EXPECT_EQ(loaded.state(), before);
}

TEST_F(NamedViewsDocumentTests, SettingsWithoutViewsLeaveRequestsWithoutEffect) {
    save();
    run("UPDATE CommonDataAssetSettings SET \"CommonDataAssetSettings.namedViews\" = NULL");
    StrongRef<Asset> asset;
    ASSERT_TRUE(DocumentFile::load(m_file.path(), nullptr, asset));
    asset->adapter(std::make_unique<AssetAdapter>(asset.get()));
    EXPECT_TRUE(
        asset->run(std::unique_ptr<Request>(DeleteNamedViewRequest::make(asset.get(), L"TOP"))));
    EXPECT_FALSE(asset->history().canUndo());
    EXPECT_FALSE(asset->isDirty());
}

// Gives the document that many views "NamedView", "NamedView_1" and so on, in one list of 1,000,000
// on.  Making them one by one would walk all that are there for each.
std::vector<std::string> manyViews(unsigned count) {
    std::string const numbers =
        "WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < " +
        std::to_string(count - 1) + ") ";
    return {"CREATE TEMP TABLE place AS SELECT entity, member FROM lists",
            "DELETE FROM lists",
            "DELETE FROM NamedView WHERE id <> (SELECT min(id) FROM NamedView)",
            "DELETE FROM Camera WHERE id <> (SELECT min(id) FROM Camera)",
            numbers + "INSERT INTO Camera SELECT 2000000 + i, segment, \"Camera.position.x\", "
                      "\"Camera.position.y\", \"Camera.position.z\", \"Camera.target.x\", "
                      "\"Camera.target.y\", \"Camera.target.z\", \"Camera.up.x\", "
                      "\"Camera.up.y\", \"Camera.up.z\", i, \"Camera.extentsHeight\" "
                      "FROM Camera, n",
            numbers + "INSERT INTO NamedView SELECT 1000000 + i, segment, "
                      "\"ManagedEntity.rParent\", CASE i WHEN 0 THEN 'NamedView' ELSE "
                      "'NamedView_' || i END, 1, 2000000 + i FROM NamedView, n",
            "DELETE FROM NamedView WHERE id < 1000000",
            "DELETE FROM Camera WHERE id < 1000000",
            numbers + "INSERT INTO lists SELECT entity, member, 1 + i / 512, '[' || "
                      "group_concat(1000000 + i) || ']' FROM n, place GROUP BY i / 512",
            "UPDATE document SET next_entity = 4000000"};
}

class ManyViewsTests : public NamedViewsDocumentTests {
protected:
    ViewDocument load(unsigned count) {
        save();
        Sql const sql(m_file.path());
        sql.run("BEGIN");
        for (std::string const & statement : manyViews(count)) sql.run(statement);
        sql.run("COMMIT");
        return ViewDocument(m_file.path());
    }
};

TEST_F(ManyViewsTests, AHundredThousandViews) {
    constexpr unsigned c_count = 100'000;
    ViewDocument const document = load(c_count);
    ASSERT_EQ(document.views()->children(), c_count);
    StrongRef<NamedViews> const views = document.views();
    EXPECT_EQ(views->find(L"NamedView_99999"), document.view(c_count - 1));
    EXPECT_EQ(document.view(77)->camera()->extentsWidth(), 77);
    EXPECT_EQ(views->generateNamedViewName(L"NamedView"), L"NamedView_100000");
    Asset * const asset = &document.asset();
    document.run(NewNamedViewRequest::make(asset, document.view(5)->camera()));
    EXPECT_EQ(document.view(c_count)->name(), L"NamedView_100000");
    document.run(DeleteNamedViewRequest::make(asset, L"NamedView_500"));
    EXPECT_EQ(views->generateNamedViewName(L"NamedView"), L"NamedView_500");
    document.run(NamedViewPasteRequest::make(asset, {document.path(c_count - 1)}, document.path(0),
                                             false, true, true));
    EXPECT_EQ(document.view(0)->name(), L"NamedView_100000");
    while (document.history().canUndo()) document.undo();
    EXPECT_EQ(views->children(), c_count);
    while (document.history().canRedo()) document.redo();
    ASSERT_TRUE(DocumentFile::save(*asset));
    ViewDocument const again(m_file.path());
    EXPECT_TRUE(again.state() == document.state());
}

TEST_F(ManyViewsTests, TenThousandViewsMadeOneByOne) {
    constexpr unsigned c_count = 10'000;
    ViewDocument const document;
    StrongRef<Camera> const camera = document.camera(1);
    for (unsigned i = 0; i < c_count; ++i)
        document.run(NewNamedViewRequest::make(&document.asset(), camera));
    EXPECT_EQ(document.view(c_count - 1)->name(), L"NamedView_9999");
    EXPECT_EQ(document.history().undoSteps(), c_count);
    while (document.history().canUndo()) document.undo();
    EXPECT_EQ(document.views()->children(), 0U);
    while (document.history().canRedo()) document.redo();
    EXPECT_EQ(document.views()->children(), c_count);
    EXPECT_EQ(document.view(c_count - 1)->name(), L"NamedView_9999");
}

TEST_F(NamedViewsDocumentTests, TheQueryOfTheDocumentListsTheViews) {
    StrongRef<Camera> const camera = m_document.camera(0);
    camera->position(TgPoint3d(10, -2.5, 4));
    EXPECT_TRUE(NamedView::make(m_document.views(), L"Gear, from the left", camera));
    EXPECT_TRUE(NamedView::make(m_document.views(), L"Without a camera", nullptr));
    m_document.views()->removeNamedView(L"FRONT");
    m_document.run(NamedViewPasteRequest::make(&m_document.asset(), {m_document.path(3)},
                                               m_document.path(0), true, true, true));
    save();
    std::ifstream in(VN_DOCUMENT_FORMAT);
    ASSERT_TRUE(in);
    std::string const sql = Vn::Testing::blockOf(in, "```sql views");
    std::string const expected = Vn::Testing::blockOf(in, "```text");
    ASSERT_FALSE(sql.empty());
    EXPECT_EQ(Vn::Testing::shellText(query(m_file.path(), sql)), expected);
}

} // namespace

} // namespace Vn::NameView
