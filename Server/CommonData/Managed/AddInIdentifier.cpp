#include "Server/CommonData/Managed/AddInIdentifier.h"

namespace Vn {

std::string CommonDataAddInIdentifier() { return "CommonData"; }

} // namespace Vn
