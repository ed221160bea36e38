#ifndef VN_PLATFORM_DATAMODEL_IRENAMETARGET_H
#define VN_PLATFORM_DATAMODEL_IRENAMETARGET_H

#include <string>

#include "Platform/Base/UniqueString.h"
#include "Platform/DataModel/Export.h"

namespace Vn::DataModel {

// An object that a user can rename.
class VN_DATAMODEL_API IRenameTarget {
public:
    virtual ~IRenameTarget();

    // Whether it can be renamed at present.
    bool canRename() const { return onCanRename(); }
    // The text that a user edits, which is the name so far.
    std::wstring renameText() { return onRenameText(); }
    // Renames the object.  The name that it gets may be another, since the object decides how names
    // stay unique.  One that can't be renamed keeps its name.
    void rename(std::wstring const & name) { onRename(name); }
    // A name near `name` that is free.
    std::wstring uniqueName(std::wstring const & name) const { return onGetUniqueName(name); }

private:
    // The order of the virtual operations is binding.
    virtual bool onCanRename() const = 0;
    virtual std::wstring onRenameText() = 0;
    virtual void onRename(std::wstring const & name) = 0;

public:
    // Whether no other object has that name.  True by default, for objects whose names need not be
    // unique, and for those that see to it themselves when they are renamed.
    virtual bool isUniqueName(std::wstring const & name) const;

private:
    // `name` itself by default.
    virtual std::wstring onGetUniqueName(std::wstring const & name) const;

public:
    // The id of the interface, the same pointer at every call; and this object as the interface
    // with an id, or null if it doesn't offer it.
    static UniqueString const * interfaceId();
    virtual UniqueString const * getInterfaceId() const;
    virtual void * queryInterface(UniqueString const * id) const;
};

} // namespace Vn::DataModel

#endif
