#include "Platform/Base/SubOptionGroup.h"

namespace Vn {

SubOptionGroup::SubOptionGroup(std::string const & id, std::wstring const & userName,
                               std::wstring const & toolTip, OptionGroup * group, bool isShown,
                               bool isExpanded)
    : OptionBase(id, userName, toolTip, group, false), m_bShown(isShown), m_bExpanded(isExpanded) {}

SubOptionGroup::~SubOptionGroup() = default;

} // namespace Vn
