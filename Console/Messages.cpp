#include "Console/Messages.h"

#include "Platform/Base/StringTable.h"

namespace Vn::Console {

std::wstring message(wchar_t const * english) {
    return StringTable::getLocalizedString("VnConsole", {}, english);
}

} // namespace Vn::Console
