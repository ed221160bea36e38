#include "Platform/AddInMgr/AddInMgr.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <utility>

#include "Platform/AddInMgr/AddInConfigurationInternal.h"
#include "Platform/AddInMgr/IAddIn.h"
#include "Platform/AddInMgr/IAddInInitializeAsset.h"
#include "Platform/Base/Initializer.h"
#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/LocalizedText.h"
#include "Platform/Base/PathInfo.h"
#include "Platform/Base/RegistrationLog.h"
#include "Platform/Base/Shared.h"
#include "Platform/Base/Text.h"
#include "Platform/DataModel/Asset.h"

namespace Vn {

namespace {

constexpr char c_load[] = "load the add-in";
constexpr char c_unload[] = "unload the add-in";

// Runs what comes from a module.  Of an exception nothing is left afterwards, since its class may
// belong to the module.
template <class Call>
Status guarded(char const * operation, AddIn const & addIn, std::string const & what,
               Call && call) {
    std::string cause;
    try {
        call();
        return Status::success();
    } catch (std::exception const & exception) {
        cause = localized("%1% throws: %2%", what, exception.what());
    } catch (...) {
        cause = localized("%1% throws", what);
    }
    return Status::failed(operation, addIn.identifier(), cause);
}

// Notes a failure unless a weightier one is noted.
void note(Status & first, bool & isCore, AddIn const & addIn) {
    if (Status const status = addIn.status();
        !status && (first || (addIn.isCoreAddIn() && !isCore))) {
        first = status;
        isCore = addIn.isCoreAddIn();
    }
}

Status firstFailure(std::vector<AddIn *> const & addIns) {
    Status first;
    bool isCore = false;
    for (AddIn const * const addIn : addIns) note(first, isCore, *addIn);
    return first;
}

std::wstring fileName(std::wstring const & name) {
    std::size_t const separator = name.find_last_of(L"/\\");
    return separator == name.npos ? name : name.substr(separator + 1);
}

std::filesystem::path moduleFile(AddIn const & addIn) {
    return PathInfo::fromText(PathInfo::modulesDirectory(true) + addIn.module());
}

// The documents that are open, as words.
Status openDocuments() {
    std::size_t const count = Asset::openAssets();
    if (count == 0) return Status::success();
    return Status(StatusBusy, "unload the add-ins", {},
                  count == 1 ? localized("a document is open")
                             : localized("%1% documents are open", count));
}

} // namespace

AddInMgr * AddInMgr::get() {
    static constinit Shared<AddInMgr> s_manager;
    return &s_manager.get([] { return new AddInMgr; });
}

AddIn * AddInMgr::find(std::string const & identifier) const {
    if (identifier.empty()) return nullptr;
    for (Records const * const records : {&m_registered, &m_configured})
        for (auto const & record : *records)
            if (record->identifier() == identifier) return record.get();
    return nullptr;
}

AddIn * AddInMgr::addIn(std::string const & identifier) const {
    std::lock_guard const guard(m_mutex);
    return find(identifier);
}

std::vector<AddIn *> AddInMgr::addIns() const {
    std::lock_guard const guard(m_mutex);
    std::vector<AddIn *> result;
    for (Records const * const records : {&m_registered, &m_configured})
        for (auto const & record : *records) result.push_back(record.get());
    return result;
}

std::vector<AddIn *> AddInMgr::configured() const {
    std::lock_guard const guard(m_mutex);
    std::vector<AddIn *> result;
    for (auto const & record : m_configured) result.push_back(record.get());
    return result;
}

bool AddInMgr::registerAddIn(std::unique_ptr<AddIn> addIn) {
    if (!addIn || addIn->identifier().empty()) return false;
    std::lock_guard const guard(m_mutex);
    if (find(addIn->identifier())) return false;
    m_registered.push_back(std::move(addIn));
    return true;
}

std::wstring AddInMgr::defaultCommonDataServerAddInName() const {
    std::lock_guard const guard(m_mutex);
    return m_commonDataServer;
}

void AddInMgr::defaultCommonDataServerAddInName(std::wstring const & name) {
    {
        std::lock_guard const guard(m_mutex);
        m_commonDataServer = name;
    }
    if (RegistrationLog::isAsked())
        RegistrationLog::note(RegistrationLog::EKind::AddIn, Text::toUtf8(name));
}

AddIn & AddInMgr::commonDataServer() {
    static constinit Shared<AddIn> s_none;
    std::lock_guard const guard(m_mutex);
    if (std::wstring const name = fileName(m_commonDataServer); !name.empty())
        for (Records const * const records : {&m_registered, &m_configured})
            for (auto const & record : *records)
                if (fileName(record->module()) == name) return *record;
    return s_none.get([] { return new AddIn(std::string(), false); });
}

Status AddInMgr::configure() {
    for (AddIn const * const addIn : configured()) {
        if (addIn->state() == EAddInState::Loaded)
            return Status(StatusBusy, "read the configurations of add-ins", addIn->identifier(),
                          localized("it is loaded"));
    }
    std::vector<ReadConfiguration> all;
    Status const status =
        readConfigurations(PathInfo::fromText(PathInfo::rootDirectory(true)), all);
    std::vector<std::string> registered;
    {
        std::lock_guard const guard(m_mutex);
        for (auto const & record : m_registered) registered.push_back(record->identifier());
    }
    orderConfigurations(all, registered);
    Records records;
    for (ReadConfiguration & each : all) {
        auto record = std::make_unique<AddIn>(std::move(each.configuration));
        record->set(each.status ? EAddInState::Configured : EAddInState::Refused, each.status);
        records.push_back(std::move(record));
    }
    {
        std::lock_guard const guard(m_mutex);
        m_configured = std::move(records);
    }
    return status ? firstFailure(configured()) : status;
}

Status AddInMgr::load() {
    std::vector<AddIn *> const all = configured();
    m_loaded.reserve(all.size()); // what is loaded is noted, whatever happens
    for (AddIn * const addIn : all) {
        EAddInState const state = addIn->state();
        if (state == EAddInState::Refused || state == EAddInState::Loaded) continue;
        if (Status status = loadOne(*addIn); !status)
            addIn->set(EAddInState::Failed, std::move(status));
        else
            m_loaded.push_back(addIn);
    }
    return firstFailure(all);
}

Status AddInMgr::loadOne(AddIn & addIn) {
    for (std::string const & name : addIn.requiredAddIns()) {
        AddIn const * const required = this->addIn(name);
        EAddInState const state = required ? required->state() : EAddInState::Refused;
        if (state != EAddInState::Loaded && state != EAddInState::Registered)
            return Status::failed(c_load, addIn.identifier(),
                                  localized("it requires '%1%', which isn't loaded", name));
    }
    std::filesystem::path const file = moduleFile(addIn);
    OS::Module module;
    if (Status status = module.load(file); !status) return status;
    IAddIn * object = nullptr;
    Status status =
        guarded(c_load, addIn, localized("an initialiser"), [] { Initializer::runAll(); });
    if (status) {
        auto const getter = reinterpret_cast<IAddIn::Getter *>(module.symbol("_GetIAddIn"));
        status = getter ? guarded(c_load, addIn, "_GetIAddIn", [&] { object = getter(); })
                        : Status::failed(c_load, addIn.identifier(),
                                         localized("its module doesn't offer _GetIAddIn"));
        if (status && !object)
            status =
                Status::failed(c_load, addIn.identifier(), localized("_GetIAddIn gives no object"));
    }
    if (status)
        status = guarded(c_load, addIn, localized("the hook for the loading"),
                         [&] { object->loaded(); });
    if (!status) {
        module.unload();
        if (OS::Module::isInProcess(file))
            status = Status(status.code(), status.operation(), status.subject(),
                            localized("%1%; the system keeps its module", status.cause()));
        return status;
    }
    addIn.m_module = std::move(module);
    addIn.set(EAddInState::Loaded, Status::success(), object);
    return Status::success();
}

Status AddInMgr::unload() {
    if (Status status = openDocuments(); !status) return status;
    Status first;
    while (!m_loaded.empty()) {
        AddIn & addIn = *m_loaded.back();
        if (Status status = unloadOne(addIn); !status) {
            if (addIn.state() == EAddInState::Loaded) return status;
            if (first) first = status;
        }
        m_loaded.pop_back();
    }
    return first;
}

Status AddInMgr::unloadOne(AddIn & addIn) {
    if (Status status = guarded(c_unload, addIn, localized("the hook for the unloading"),
                                [&] { addIn.object()->unloading(&addIn); });
        !status)
        return status;
    addIn.set(EAddInState::Unloaded, Status::success());
    addIn.m_module.unload();
    if (!OS::Module::isInProcess(moduleFile(addIn))) return Status::success();
    Status status(StatusBusy, c_unload, addIn.identifier(),
                  localized("the system keeps its module, with all that it registered"));
    addIn.set(EAddInState::Kept, status);
    return status;
}

Status AddInMgr::initializeNewAsset(Asset * asset) {
    Status status = handOn(asset, &IAddInInitializeAsset::initializeNewAsset);
    return status ? initializeOpenedAsset(asset) : status;
}

Status AddInMgr::initializeOpenedAsset(Asset * asset) {
    Status status = handOn(asset, &IAddInInitializeAsset::initializeLoadedAsset);
    return status ? handOn(asset, &IAddInInitializeAsset::fullyInitializeLoadedAsset) : status;
}

Status AddInMgr::handOn(Asset * asset, Hook hook) {
    constexpr char c_handOn[] = "hand the document on to the add-in";
    if (!asset) return Status::invalidArgument(c_handOn, {}, localized("there is no document"));
    for (AddIn * const addIn : m_loaded) {
        Status status = guarded(c_handOn, *addIn, localized("its hook"), [&] {
            if (auto * const hooks = query<IAddInInitializeAsset>(addIn->object()))
                (hooks->*hook)(asset, addIn);
        });
        if (!status) return status;
    }
    return Status::success();
}

} // namespace Vn
