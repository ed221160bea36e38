// The user's preferences for units and values: fifteen options, one for each field of
// UnitDisplaySettings that a user can set.  After each load and each change their values are copied
// into the user's record, which is what formats values.

#ifndef VN_SERVER_COMMONDATA_UNITS_UNITDISPLAYSETTINGSOPTIONGROUP_H
#define VN_SERVER_COMMONDATA_UNITS_UNITDISPLAYSETTINGSOPTIONGROUP_H

#include <memory>
#include <string>
#include <vector>

#include "Platform/Base/Option.h"
#include "Platform/Base/OptionGroup.h"
#include "Server/CommonData/Export.h"

namespace Vn::Units {

class VN_COMMONDATA_API UnitDisplaySettingsOptionGroup : public OptionGroup {
public:
    // The only one.  The first call makes it and reads the option files, and comes before any
    // concurrent use; the platform's initialisers make that call.  It lives until the module is
    // unloaded.
    static UnitDisplaySettingsOptionGroup * get();

    ~UnitDisplaySettingsOptionGroup() override;

    // Writes all fields of the record, whichever option changed.
    void onOptionChanged(OptionBase * option) override;
    // The user's file, and the server's as a further one.
    std::wstring onPersistFile(std::vector<std::wstring> & otherFiles) const override;

    // What UnitDisplaySettings calls the field of an option: "generalPrecision".  Null for an
    // option of another group.
    static char const * fieldName(OptionBase const & option) noexcept;

private:
    UnitDisplaySettingsOptionGroup(std::string const & id, std::wstring const & userName);
    UnitDisplaySettingsOptionGroup(std::string const & id, std::wstring const & userName,
                                   std::wstring const & toolTip);

    void prepare();
    void createOptions();
    void rebuildUserDisplaySettings();
    void postLoad();

    std::unique_ptr<Option<int>> m_pGeneralUnits;
    std::unique_ptr<Option<int>> m_pGeneralPrecision;
    std::unique_ptr<Option<int>> m_pAngularPrecision;
    std::unique_ptr<Option<int>> m_pScientificPrecision;
    std::unique_ptr<Option<int>> m_pLengthDisplay;
    std::unique_ptr<Option<int>> m_pDegreeDisplay;
    std::unique_ptr<Option<bool>> m_pCompressUnits;
    std::unique_ptr<Option<bool>> m_pScientificNotation;
    std::unique_ptr<Option<bool>> m_pDecimalPoint;
    std::unique_ptr<Option<bool>> m_pDisplayAbbreviated;
    std::unique_ptr<Option<bool>> m_pDisplaySymbol;
    std::unique_ptr<Option<bool>> m_pHideTrailingZeroes;
    std::unique_ptr<Option<int>> m_pMinimumPrecision;
    std::unique_ptr<Option<double>> m_pAboveThreshold;
    std::unique_ptr<Option<double>> m_pBelowThreshold;
};

} // namespace Vn::Units

#endif
