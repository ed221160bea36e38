// What a user has picked.

#ifndef VN_PLATFORM_DATAMODEL_LOGICALSELECTION_H
#define VN_PLATFORM_DATAMODEL_LOGICALSELECTION_H

#include <string>

#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/RefCounted.h"
#include "Platform/DataModel/Export.h"
#include "Platform/DataModel/ObjectPath.h"

namespace Vn {

// Something that is selected.
class VN_DATAMODEL_API Selection : public Identified<Selection, RefCounted> {
public:
    // How others find the class.
    static constexpr NamedClass c_class{"Vn::Selection"};

    ~Selection() override;

    // What the user is told that is selected.
    std::wstring userName() const { return onUserName(); }

protected:
    Selection() = default;

private:
    virtual std::wstring onUserName() const = 0;
};

// The selection of an object of a document by its path.
class VN_DATAMODEL_API LogicalSelection : public Identified<LogicalSelection, Selection> {
public:
    // How others find the class.
    static constexpr NamedClass c_class{"Vn::LogicalSelection"};

    ~LogicalSelection() override;

    // The way to the object.  It leads nowhere once the object is gone.
    ObjectPath const & logicalPath() const noexcept { return m_path; }

protected:
    // Of the object that `path` leads to.
    explicit LogicalSelection(ObjectPath const & path) : m_path(path) {}

private:
    // The text of the path, unless the object has a better name.
    std::wstring onUserName() const override;

    ObjectPath const m_path;
};

} // namespace Vn

#endif
