#ifndef VN_PLATFORM_BASE_SUBOPTIONGROUP_H
#define VN_PLATFORM_BASE_SUBOPTIONGROUP_H

#include <string>

#include "Platform/Base/OptionBase.h"

namespace Vn {

// A heading on the page of a group, under which options stand.  It has no value and isn't saved.
class VN_BASE_API SubOptionGroup : public OptionBase {
public:
    // As the constructor of OptionBase, but the group doesn't list it.  `isShown` says whether the
    // page shows the heading, and `isExpanded` whether it shows the options under it before the
    // user asks for them.
    SubOptionGroup(std::string const & id, std::wstring const & userName,
                   std::wstring const & toolTip, OptionGroup * group, bool isShown,
                   bool isExpanded);
    ~SubOptionGroup() override;

    // What the constructor was given.
    bool isShown() const noexcept { return m_bShown; }
    bool isExpanded() const noexcept { return m_bExpanded; }

private:
    bool const m_bShown;
    bool const m_bExpanded;
};

} // namespace Vn

#endif
