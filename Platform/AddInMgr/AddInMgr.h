// The add-ins of the process.
//
// A configuration is a file `Server/<folder>/Configuration/<name>.xml` below the root directory of
// the application that is valid by `Server/AddInMgr/Configuration/Schema/AddinSchema.xsd`.  It
// names an add-in by an identifier, and its module by a file name without a directory or extension.
//
// - A module is loaded from PathInfo::modulesDirectory(), and from nowhere else.
// - An add-in is loaded after all that it requires, and unloaded before them.  Among those that may
//   be next, the one with the least identifier (byte by byte) is.
// - An add-in is refused if its configuration isn't valid, if another one has its identifier (then
//   both are), if what it requires isn't there, was refused or failed, or leads back to it.  The
//   others are loaded.
// - What goes wrong with one add-in is told by its record.

#ifndef VN_PLATFORM_ADDINMGR_ADDINMGR_H
#define VN_PLATFORM_ADDINMGR_ADDINMGR_H

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "Platform/AddInMgr/AddIn.h"
#include "Platform/AddInMgr/Export.h"
#include "Platform/Base/Status.h"

namespace Vn {

class Asset;
class IAddInInitializeAsset;

// Keeps the records of the add-ins, loads and unloads their modules, and hands documents on to
// them.  Any thread may ask for records; configuring, loading, unloading and documents belong to
// one thread at a time.
class VN_ADDINMGR_API AddInMgr {
public:
    // The one manager of the process.
    static AddInMgr * get();

    // The add-in with that identifier, compared byte for byte; null if there is none.  A record
    // that a host registered lives as long as the process, others until the next configure().
    AddIn * addIn(std::string const & identifier) const;
    // All records: first those that hosts registered, then those of configurations in the order in
    // which they are loaded, at the end those that were refused.
    std::vector<AddIn *> addIns() const;

    // Takes over the record of an add-in whose module the host has itself.  If the identifier is
    // empty or taken, or if `addIn` is null, nothing changes and the answer is false.
    bool registerAddIn(std::unique_ptr<AddIn> addIn);

    // The file name of the module that serves common data, which that module tells while it loads;
    // empty if none did.  A directory in it doesn't count.
    std::wstring defaultCommonDataServerAddInName() const;
    void defaultCommonDataServerAddInName(std::wstring const & name);

    // Reads the configurations below the root directory, in place of those that were read before.
    // StatusBusy, with nothing changed, while an add-in is loaded; StatusNotFound if there is no
    // configuration; else the first refusal, that of a core add-in in preference.
    [[nodiscard]] Status configure();
    // Loads what isn't loaded, failed ones too: the module, then its initialisers, then
    // `_GetIAddIn`, then its hook.  Answers the first failure or refusal, that of a core add-in in
    // preference; the others are loaded all the same.
    [[nodiscard]] Status load();
    // Unloads all that is loaded.  StatusBusy, with nothing changed, while a document is open. Ends
    // at the first add-in that throws, which stays loaded with those that it requires.  If the
    // system keeps a module, the others are unloaded all the same, and the answer says so.
    // References to objects of the modules must be gone, entities of closed documents included.
    [[nodiscard]] Status unload();

    // Hands a new document, or one that was opened, on to the loaded add-ins, in the order in which
    // they were loaded; each of its hooks to all of them before the next one.  After a failure the
    // caller closes the document.  Null is StatusInvalidArgument.
    [[nodiscard]] Status initializeNewAsset(Asset * asset);
    [[nodiscard]] Status initializeOpenedAsset(Asset * asset);

private:
    friend class AddIn;

    AddInMgr() = default;

    using Records = std::vector<std::unique_ptr<AddIn>>;
    using Hook = void (IAddInInitializeAsset::*)(Asset * asset, AddIn const * record);

    AddIn * find(std::string const & identifier) const;
    AddIn & commonDataServer();
    std::vector<AddIn *> configured() const;
    Status loadOne(AddIn & addIn);
    Status unloadOne(AddIn & addIn);
    Status handOn(Asset * asset, Hook hook);

    mutable std::mutex m_mutex; // guards the lists and the name
    Records m_registered;
    Records m_configured; // in the order in which they are loaded, and then the refused ones
    std::wstring m_commonDataServer;
    std::vector<AddIn *> m_loaded; // in the order in which they were
};

} // namespace Vn

#endif
