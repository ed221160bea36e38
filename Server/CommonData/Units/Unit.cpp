#include "Server/CommonData/Units/Unit.h"

namespace Vn::Units {

std::wstring Unit::reconstructString(double value, EUnitDisplayMode mode,
                                     UnitDisplaySettings const & settings) const {
    std::wstring text;
    onAppendReconstruction(text, value, mode, settings);
    return text;
}

} // namespace Vn::Units
