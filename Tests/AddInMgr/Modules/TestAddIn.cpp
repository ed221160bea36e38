// An add-in as an engineer writes one.  It notes in the log of registrations when its hooks are
// called.  VN_TEST_NAME is its name, and VN_TEST_FAULT what goes wrong with it.

#include <stdexcept>
#include <string>
#include <utility>

#include "Platform/AddInMgr/AddIn.h"
#include "Platform/AddInMgr/IAddInInitializeAsset.h"
#include "Platform/AddInMgr/IApplicationServerAddIn.h"
#include "Platform/Base/Initializer.h"
#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/RegistrationLog.h"
#include "Platform/Base/Text.h"
#include "Platform/Base/TextCommand.h"
#include "Platform/Base/UnitTest.h"
#include "Platform/DataModel/Entity.h"
#include "Platform/DataModel/MetaType.h"
#include "Tests/AddInMgr/Modules/TestAddIn.h"

namespace {

using Vn::Testing::EFault;

constexpr EFault c_fault = EFault::VN_TEST_FAULT;
constexpr char c_name[] = VN_TEST_NAME;

// An exception whose class only the module knows.
class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

void note(std::string const & text) {
    Vn::RegistrationLog::note(Vn::RegistrationLog::EKind::Static, c_name + (": " + text));
}

void failIf(EFault fault) {
    if (c_fault == fault) throw Failure("as was asked for");
}

class TestMetaType : public Vn::EntityMetaType {
public:
    TestMetaType()
        : EntityMetaType(c_name, std::string("Test") + c_name, std::string(c_name) + "MetaType", 0,
                         Vn::Entity::s_metaTypeId(), TypeAbstract) {}

private:
    void onMigratingMemberSet(Vn::Entity *, unsigned, Vn::MemberSet *) override {}
    Vn::StrongRef<Vn::Entity> onCreateEntity(Vn::Segment *, unsigned long long) override {
        return nullptr;
    }
    std::size_t onInstanceSize() const override { return 0; }
};
TestMetaType s_metaType;

class TestAddIn : public Vn::IApplicationServerAddIn, public Vn::IAddInInitializeAsset {
public:
    TestAddIn() { failIf(EFault::StaticObjectThrows); }

    Vn::UniqueString const * getInterfaceId() const override {
        static constinit Vn::InterfaceId s_id(VN_TEST_NAME "AddIn");
        return s_id.get();
    }
    void * queryInterface(Vn::UniqueString const * id) const override {
        if (id == getInterfaceId()) return const_cast<TestAddIn *>(this);
        void * const found = IApplicationServerAddIn::queryInterface(id);
        return found ? found : IAddInInitializeAsset::queryInterface(id);
    }

private:
    void onLoaded() override {
        note("loaded");
        failIf(EFault::LoadedHookThrows);
        if (c_fault == EFault::LoadedHookThrowsNumber) throw 13;
    }
    void onUnloading(Vn::AddIn const * record) override {
        note("unloading " + record->identifier());
        // Once, so that it can be unloaded after all.
        if (!std::exchange(m_bWasUnloading, true)) failIf(EFault::UnloadingHookThrows);
    }
    void onInitializeNewAsset(Vn::Asset *, Vn::AddIn const *) override {
        note("new");
        failIf(EFault::NewAssetHookThrows);
    }
    void onInitializeLoadedAsset(Vn::Asset *, Vn::AddIn const *) override {
        note("asset");
        failIf(EFault::LoadedAssetHookThrows);
    }
    void onFullyInitializeLoadedAsset(Vn::Asset *, Vn::AddIn const * record) override {
        note("full " + record->assetTypeId());
        failIf(EFault::FullyLoadedAssetHookThrows);
    }

    bool m_bWasUnloading = false;
};
TestAddIn s_addIn;

class Command : public Vn::TextCommand {
public:
    Command() : Vn::TextCommand(L"TestAddIns", Vn::Text::widen(c_name), L"Does nothing") {}

private:
    Vn::TextCommandResult onRun(Vn::TextCommandParameters const &) override { return {}; }
};
Vn::TextCommandSubjectArea const s_area(L"TestAddIns", L"Commands of the tests");
Command s_command;
Vn::UnitTest s_check("TestAddIns", c_name, [](Vn::UnitTest & test) { test.Assert(true, L"runs"); });
Vn::Initializer const s_initializer([] {
    note("initializer");
    failIf(EFault::InitializerThrows);
});

} // namespace

extern "C" VN_ADDIN_EXPORT Vn::IAddIn * _GetIAddIn() {
    failIf(EFault::EntryThrows);
    return c_fault == EFault::EntryGivesNull ? nullptr : &s_addIn;
}
