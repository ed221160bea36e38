#ifndef VN_PLATFORM_DATAMODEL_IPASTEREQUEST_H
#define VN_PLATFORM_DATAMODEL_IPASTEREQUEST_H

#include <string>
#include <vector>

#include "Platform/DataModel/Export.h"
#include "Platform/DataModel/ObjectPath.h"
#include "Platform/DataModel/Request.h"

namespace Vn {

// Pastes objects at a target: each path in turn, by the class that derives from it.
class VN_DATAMODEL_API IPasteRequest : public Request {
public:
    // `paths` lead to what is pasted and `target` to where.  With `insertAfter` it is to stand
    // after the target, without it before; with `cut` the objects were cut and not copied.  `name`
    // is what the user sees of the step.
    IPasteRequest(Asset * asset, std::vector<ObjectPath> const & paths, ObjectPath const & target,
                  bool insertAfter, bool cut, std::wstring name = L"Paste");
    ~IPasteRequest() override;

    // What the constructor was given.
    std::vector<ObjectPath> const & paths() const noexcept { return m_paths; }
    ObjectPath const & target() const noexcept { return m_target; }
    bool insertAfter() const noexcept { return m_bInsertAfter; }
    bool isCut() const noexcept { return m_bCut; }

protected:
    // Binds the paths to the objects that they lead to, since each paste may change where the
    // others lead; then pastes one after the other.
    void onExecute(Status & status) override;

private:
    virtual void onPastePath(ObjectPath const & path) = 0;

    std::vector<ObjectPath> m_paths;
    ObjectPath m_target;
    bool const m_bInsertAfter;
    bool const m_bCut;
};

} // namespace Vn

#endif
