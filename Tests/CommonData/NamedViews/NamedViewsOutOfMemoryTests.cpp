// Memory that runs out within the requests on named views, as in
// Tests/DataModel/OutOfMemoryTests.cpp.

#include <memory>
#include <new>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/DataModel/DocumentFile.h"
#include "Tests/CommonData/NamedViews/NamedViewsTesting.h"
#include "Tests/DataModel/FailingAllocations.h"

namespace Vn::NameView {

namespace {

using Vn::Testing::FailingAllocations;
using Names = std::vector<std::wstring>;

// Names that no string keeps within itself.
std::wstring const c_long = L"a name that no string keeps within itself";
std::wstring const c_other = L"another name that no string keeps within itself";

struct Operation {
    char const * name;
    void (*run)(ViewDocument const & document, StrongRef<Camera> const & camera);
};
void PrintTo(Operation const & operation, std::ostream * out) { *out << operation.name; }

void run(ViewDocument const & document, Request * request) {
    static_cast<void>(document.asset().run(std::unique_ptr<Request>(request)));
}

class NamedViewsOutOfMemoryTests : public testing::TestWithParam<std::tuple<Operation, bool>> {};

INSTANTIATE_TEST_SUITE_P(
    Operations, NamedViewsOutOfMemoryTests,
    testing::Combine(
        testing::Values(
            Operation{"New",
                      [](ViewDocument const & document, StrongRef<Camera> const & camera) {
                          run(document, NewNamedViewRequest::make(&document.asset(), camera));
                      }},
            Operation{"Delete",
                      [](ViewDocument const & document, StrongRef<Camera> const &) {
                          run(document, DeleteNamedViewRequest::make(&document.asset(), c_long));
                      }},
            Operation{"Rename",
                      [](ViewDocument const & document, StrongRef<Camera> const &) {
                          run(document,
                              UpdateNamedViewNameRequest::make(&document.asset(), c_long, c_other));
                      }},
            Operation{"Paste",
                      [](ViewDocument const & document, StrongRef<Camera> const &) {
                          run(document, NamedViewPasteRequest::make(
                                            &document.asset(), {document.path(4), document.path(5)},
                                            document.path(0), false, true, true));
                      }},
            Operation{"Defaults",
                      [](ViewDocument const & document, StrongRef<Camera> const &) {
                          document.step([&] {
                              document.views()->removeNamedView(L"TOP");
                              NamedViews::makeDefaultNamedViews(document.views());
                          });
                      }},
            Operation{"Synchronize",
                      [](ViewDocument const & document, StrongRef<Camera> const &) {
                          document.step([&] { document.views()->synchonizeHomeNamedView(); });
                      }}),
        testing::Bool()),
    [](auto const & row) {
        return std::string(std::get<0>(row.param).name) +
               (std::get<1>(row.param) ? "ForGood" : "Once");
    });

TEST_P(NamedViewsOutOfMemoryTests, TheDocumentIsBeforeOrAfter) {
    auto const & [operation, isForGood] = GetParam();
    unsigned long n = 1;
    for (bool hasFailed = true; hasFailed; ++n) {
        SCOPED_TRACE(n);
        ViewDocument const document(ViewDocument::BuiltIn);
        StrongRef<Camera> const camera = document.camera(9);
        document.make(c_long);
        document.make(c_other);
        ViewStates const first = document.state();
        document.history().clear();
        document.step([&] { document.view(5)->name(c_other + L" again"); });
        document.step([&] { document.view(5)->name(c_other); });
        ASSERT_EQ(document.state(), first);
        document.undo();
        document.redo();
        ViewStates const before = document.state();
        std::size_t const entities = document.asset().entities();
        std::size_t const steps = document.history().undoSteps();
        bool hasThrown = false;
        FailingAllocations::failAt(n, isForGood);
        try {
            operation.run(document, camera);
        } catch (std::bad_alloc const &) {
            hasThrown = true;
        }
        FailingAllocations::heal();
        hasFailed = FailingAllocations::hasFailed();
        if (!document.history().isUsable()) continue; // it says that it is neither
        ViewStates const after = document.state();
        if (hasThrown) {
            EXPECT_EQ(after, before);
            EXPECT_EQ(document.asset().entities(), entities);
        } else {
            EXPECT_NE(after, before);
        }
        EXPECT_EQ(savedState(document), after);
        if (!document.history().canUndo()) continue; // it was given up
        EXPECT_EQ(document.history().undoSteps(), steps + (hasThrown ? 0 : 1));
        while (document.history().canUndo()) document.undo();
        EXPECT_EQ(document.state(), first);
        while (document.history().canRedo()) document.redo();
        EXPECT_EQ(document.state(), after);
    }
    EXPECT_GT(n, FailingAllocations::includeMalloc() ? 3U : 2U);
}

} // namespace

} // namespace Vn::NameView
