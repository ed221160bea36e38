// The add-ins of the process.

#ifndef VN_PLATFORM_ADDINMGR_ADDINMGR_H
#define VN_PLATFORM_ADDINMGR_ADDINMGR_H

#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "Platform/AddInMgr/Export.h"

namespace Vn {

// What the manager knows about one add-in.
class VN_ADDINMGR_API AddIn {
public:
    // `identifier` is the name by which meta types say whose they are.  A core add-in is one that
    // the host can't do without.
    AddIn(std::string identifier, bool coreAddIn);

    // What the constructor was given.
    std::string const & identifier() const noexcept { return m_identifier; }
    bool isCoreAddIn() const noexcept { return m_bCoreAddIn; }

private:
    std::string const m_identifier;
    bool const m_bCoreAddIn;
};

// Keeps the records of the add-ins.  Any thread may ask.
class VN_ADDINMGR_API AddInMgr {
public:
    // The one manager of the process.
    static AddInMgr * get();

    // The add-in with that identifier, compared byte for byte, as long as the process lives; null
    // if the host registered none.
    AddIn * addIn(std::string const & identifier) const;

    // Takes over the record of an add-in, which a host registers before it loads the module.  If
    // the identifier is taken, or if `addIn` is null, nothing changes and the answer is false.
    bool registerAddIn(std::unique_ptr<AddIn> addIn);

private:
    AddInMgr() = default;

    mutable std::mutex m_mutex;
    std::map<std::string, std::unique_ptr<AddIn>> m_addIns;
};

} // namespace Vn

#endif
