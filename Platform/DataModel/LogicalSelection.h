// What a user has picked.

#ifndef VN_PLATFORM_DATAMODEL_LOGICALSELECTION_H
#define VN_PLATFORM_DATAMODEL_LOGICALSELECTION_H

#include <string>

#include "Platform/Base/RefCounted.h"
#include "Platform/Base/UniqueString.h"
#include "Platform/DataModel/Export.h"
#include "Platform/DataModel/ObjectPath.h"

namespace Vn {

// Something that is selected.
class VN_DATAMODEL_API Selection : public RefCounted {
public:
    ~Selection() override;

    // What the user is told that is selected.
    std::wstring userName() const { return onUserName(); }

    // The id of the class, of the object's own class, and the object as a class or interface.
    static UniqueString const * interfaceId();
    UniqueString const * getInterfaceId() const override;
    void * queryInterface(UniqueString const * id) const override;

protected:
    Selection() = default;

private:
    virtual std::wstring onUserName() const = 0;
};

// The selection of an object of a document by its path.
class VN_DATAMODEL_API LogicalSelection : public Selection {
public:
    ~LogicalSelection() override;

    // The way to the object.  It leads nowhere once the object is gone.
    ObjectPath const & logicalPath() const noexcept { return m_path; }

    // As of Selection.
    static UniqueString const * interfaceId();
    UniqueString const * getInterfaceId() const override;
    void * queryInterface(UniqueString const * id) const override;

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
