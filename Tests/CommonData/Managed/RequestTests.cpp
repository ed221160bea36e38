#include "Platform/DataModel/Request.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/DataModel/IPasteRequest.h"
#include "Server/CommonData/Managed/ManagedEntityUtils.h"
#include "Tests/CommonData/Managed/ManagedTesting.h"

namespace Vn::Managed::Testing {

namespace {

using ManagedEntityUtils::objectPath;

// Writes down its stages, and fails at one of them.
class Stages : public Request {
public:
    Stages(Asset * asset, std::string & log, std::string failing = {})
        : Request(asset, L"Stages"), m_log(log), m_failing(std::move(failing)) {}

protected:
    void onPreExecute(Status & status) override {
        Request::onPreExecute(status);
        note("pre ", status);
    }
    void onExecute(Status & status) override {
        Request::onExecute(status);
        note("execute ", status);
    }
    void onPostExecute(Status & status) override {
        Request::onPostExecute(status);
        note("post ", status);
    }
    void onCancel() override {
        Request::onCancel();
        m_log += "cancel ";
    }

private:
    void note(std::string const & stage, Status & status) {
        EXPECT_TRUE(status.ok());
        m_log += stage;
        if (stage == m_failing) status = Status::failed("test");
    }

    std::string & m_log;
    std::string const m_failing;
};

TEST(RequestTests, TheStagesFollowEachOther) {
    Document const document;
    std::string log;
    EXPECT_TRUE(Stages(&document.asset(), log).execute().ok());
    EXPECT_EQ(log, "pre execute post ");
}

TEST(RequestTests, AStageThatFailsEndsTheRequest) {
    Document const document;
    std::string log;
    EXPECT_FALSE(Stages(&document.asset(), log, "pre ").execute().ok());
    EXPECT_EQ(log, "pre ");
    log.clear();
    EXPECT_FALSE(Stages(&document.asset(), log, "execute ").execute().ok());
    EXPECT_EQ(log, "pre execute ");
    log.clear();
    EXPECT_FALSE(Stages(&document.asset(), log, "post ").execute().ok());
    EXPECT_EQ(log, "pre execute post ");
}

TEST(RequestTests, CancelTellsTheRequest) {
    Document const document;
    std::string log;
    Stages(&document.asset(), log).cancel();
    EXPECT_EQ(log, "cancel ");
}

TEST(RequestTests, ItsDocumentsAreNotKeptAlive) {
    std::string log;
    std::unique_ptr<Stages> request;
    Document const other;
    {
        Document const document;
        request = std::make_unique<Stages>(&document.asset(), log);
        request->addAsset(&other.asset());
        request->addAsset(nullptr);
        EXPECT_EQ(request->assets(), 2U);
        EXPECT_EQ(request->asset(0), &document.asset());
        EXPECT_EQ(request->asset(2), nullptr);
    }
    EXPECT_EQ(request->asset(0), nullptr);
    EXPECT_EQ(request->asset(1), &other.asset());
    EXPECT_EQ(Stages(nullptr, log).asset(0), nullptr);
}

// Sets a value, and may fail or throw then.
class SetValue : public Request {
public:
    enum EEnd { Well, Badly, Throwing };
    SetValue(Asset * asset, StrongRef<Leaf> leaf, EEnd end)
        : Request(asset, L"Set"), m_rLeaf(std::move(leaf)), m_end(end) {}

protected:
    void onExecute(Status & status) override {
        m_rLeaf->value(5);
        if (m_end == Badly) status = Status::cancelled("test");
        if (m_end == Throwing) throw std::runtime_error("test");
    }

private:
    StrongRef<Leaf> const m_rLeaf;
    EEnd const m_end;
};

TEST(RequestTests, ADocumentRunsARequestAsOneStepOfItsName) {
    Document const document;
    StrongRef<Leaf> const leaf = Leaf::make(document.segment());
    Asset & asset = document.asset();
    EXPECT_TRUE(asset.run(std::make_unique<SetValue>(&asset, leaf, SetValue::Well)).ok());
    EXPECT_EQ(leaf->value(), 5);
    EXPECT_EQ(asset.history().undoNames(), std::vector<std::wstring>{L"Set"});
    document.undo();
    EXPECT_EQ(leaf->value(), 0);
}

TEST(RequestTests, WhatARequestDidThatFailsIsTakenBack) {
    Document const document;
    StrongRef<Leaf> const leaf = Leaf::make(document.segment());
    Asset & asset = document.asset();
    EXPECT_EQ(asset.run(std::make_unique<SetValue>(&asset, leaf, SetValue::Badly)).code(),
              StatusCancelled);
    EXPECT_EQ(leaf->value(), 0);
    EXPECT_THROW(
        static_cast<void>(asset.run(std::make_unique<SetValue>(&asset, leaf, SetValue::Throwing))),
        std::runtime_error);
    EXPECT_EQ(leaf->value(), 0);
    EXPECT_FALSE(asset.history().canUndo());
}

// Moves what is pasted before or after the target.
class MovePaste : public IPasteRequest {
public:
    using IPasteRequest::IPasteRequest;

private:
    void onPastePath(ObjectPath const & path) override {
        StrongRef<Entity> const leaf = path.leaf();
        StrongRef<Entity> const at = target().leaf();
        ManagedEntityUtils::reorderEntity(
            StrongRef<ManagedEntity>(query<ManagedEntity>(leaf.get())),
            StrongRef<ManagedEntity>(query<ManagedEntity>(at.get())), insertAfter());
    }
};

TEST(RequestTests, APasteHandlesEachPathByTheObjectThatItLedToAtFirst) {
    Document const document;
    StrongRef<Group> const root = Group::make(document.segment());
    document.segment()->addRoot(root, "Root");
    auto const leaves = makeLeaves(root, 4);
    Asset & asset = document.asset();
    std::vector<ObjectPath> const paths{objectPath(*leaves[0]), objectPath(*leaves[1])};
    auto request = std::make_unique<MovePaste>(&asset, paths, objectPath(*leaves[2]), true, true);
    EXPECT_TRUE(request->insertAfter());
    EXPECT_TRUE(request->isCut());
    EXPECT_EQ(request->paths(), paths);
    EXPECT_TRUE(asset.run(std::move(request)).ok());
    EXPECT_EQ(root->childrenVector(), pick(leaves, {2, 1, 0, 3}));
    EXPECT_EQ(asset.history().undoNames(), std::vector<std::wstring>{L"Paste"});
    document.undo();
    EXPECT_EQ(root->childrenVector(), pick(leaves, {0, 1, 2, 3}));
}

} // namespace

} // namespace Vn::Managed::Testing
