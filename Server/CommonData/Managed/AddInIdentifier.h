#ifndef VN_SERVER_COMMONDATA_MANAGED_ADDINIDENTIFIER_H
#define VN_SERVER_COMMONDATA_MANAGED_ADDINIDENTIFIER_H

#include <string>

#include "Server/CommonData/Export.h"

namespace Vn {

// "CommonData", the identifier of the add-in that every meta type of this library belongs to.
VN_COMMONDATA_API std::string CommonDataAddInIdentifier();

} // namespace Vn

#endif
