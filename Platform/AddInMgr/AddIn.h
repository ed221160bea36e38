#ifndef VN_PLATFORM_ADDINMGR_ADDIN_H
#define VN_PLATFORM_ADDINMGR_ADDIN_H

#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "Platform/AddInMgr/Export.h"
#include "Platform/Base/OS.h"
#include "Platform/Base/Status.h"

namespace Vn {

class IAddIn;

// Where an add-in stands.
enum class EAddInState {
    Registered, // told of by the host, which has its module itself; the manager loads nothing
    Configured, // its configuration was read, and it waits to be loaded
    Refused,    // its configuration can't be used, as status() says
    Loaded,     // its module is loaded, and its object has been told
    Failed,     // its module couldn't be loaded, as status() says
    Unloaded,   // its module was loaded and is gone
    Kept        // it was let go of, but the system keeps its module, as status() says
};

// What a configuration file says about an add-in.
struct AddInConfiguration {
    std::string identifier;            // by which meta types and other add-ins name it
    std::wstring module;               // the file name with the platform's extension
    std::string assetTypeId;           // of the documents that it serves; may be empty
    bool isCore = false;               // whether the application can't do without it
    std::vector<std::string> required; // identifiers of the add-ins that are loaded before it
    std::filesystem::path file;        // the configuration itself; empty if there is none
};

// What the manager knows about one add-in.  Any thread may ask.
class VN_ADDINMGR_API AddIn {
public:
    // For a host that has the module itself.  `identifier` is the name by which meta types say
    // whose they are.  A core add-in is one that the host can't do without.
    AddIn(std::string identifier, bool coreAddIn);
    // The same with all that a configuration can say.
    explicit AddIn(AddInConfiguration configuration);
    ~AddIn();
    AddIn(AddIn const &) = delete;
    AddIn & operator=(AddIn const &) = delete;

    // The record of the add-in that serves common data: the one whose module has the file name that
    // AddInMgr::defaultCommonDataServerAddInName() was told.  Never null: if there is none, it is a
    // record whose texts are all empty.
    static AddIn * defaultCommonDataServerAddIn();

    // By which others name it; empty if its configuration can't be read.
    std::string const & identifier() const noexcept { return m_configuration.identifier; }
    bool isCoreAddIn() const noexcept { return m_configuration.isCore; }
    // The file name of its module, without a directory; empty if it isn't known.
    std::wstring const & module() const noexcept { return m_configuration.module; }
    // The identifier of the asset type that it serves; empty if there is none.
    std::string const & assetTypeId() const noexcept { return m_configuration.assetTypeId; }
    // The identifiers of the add-ins that must be loaded before it, in the order of the file.
    std::vector<std::string> const & requiredAddIns() const noexcept {
        return m_configuration.required;
    }
    // Its configuration; empty if a host told of it.
    std::filesystem::path const & configurationFile() const noexcept {
        return m_configuration.file;
    }

    // Where it stands; and success, or the reason why it isn't loaded.
    EAddInState state() const;
    Status status() const;
    // The object of the module while it is loaded, else null.
    IAddIn * object() const;

private:
    friend class AddInMgr;

    void set(EAddInState state, Status status, IAddIn * object = nullptr);

    AddInConfiguration const m_configuration;
    mutable std::mutex m_mutex; // guards what follows, but for the module
    EAddInState m_state = EAddInState::Registered;
    Status m_status;
    IAddIn * m_pObject = nullptr;
    OS::Module m_module;
};

} // namespace Vn

#endif
