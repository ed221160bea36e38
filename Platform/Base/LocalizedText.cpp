#include "Platform/Base/LocalizedText.h"

#include "Platform/Base/StringTable.h"

namespace Vn {

std::wstring localizedPattern(std::string_view context, std::wstring_view english) {
    return StringTable::getLocalizedString("VnLibraries", context, english);
}

} // namespace Vn
