// Where the sample reads its data in tests: the tree in which it is built.

#include "Platform/Base/PathInfo.h"

namespace Vn::Blocks::Testing {

namespace {

[[maybe_unused]] bool const s_bSet = (PathInfo::rootDirectory(L"" VN_BLOCKS_ROOT), true);

} // namespace

} // namespace Vn::Blocks::Testing
