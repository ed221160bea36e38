// Has the add-in manager load the server, as the program does, before the tests of a program that
// links the commands: their documents are equipped like those of the program.

#include <gtest/gtest.h>

#include "Platform/AddInMgr/AddInMgr.h"
#include "Platform/Base/PathInfo.h"

namespace {

class LoadedServer : public testing::Environment {
public:
    void SetUp() override {
        // A root without the commands, which are here already.
        Vn::PathInfo::rootDirectory(Vn::PathInfo::toText(VN_SERVER_ROOT));
        Vn::Status status = Vn::AddInMgr::get()->configure();
        if (status) status = Vn::AddInMgr::get()->load();
        ASSERT_TRUE(status) << status.toString();
    }
};

testing::Environment const * const s_environment =
    testing::AddGlobalTestEnvironment(new LoadedServer);

} // namespace
