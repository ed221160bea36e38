// Joins the objects of the add-in in a module of its own, and looks around between the steps of
// its load order.

#include "Tests/CommonData/Units/LoadOrderProbe.h"

#include <string>
#include <vector>

#include "Platform/Base/TextCommandService.h"
#include "Platform/Base/UnitTest.h"
#include "Platform/DataModel/MetaType.h"
#include "Server/CommonData/AddIn/LoadOrder.h"
#include "Server/CommonData/Units/SimpleUnit.h"
#include "Server/CommonData/Units/SimpleUnitRegistryInternal.h"

#ifdef _WIN32
#define VN_TEST_EXPORT extern "C" __declspec(dllexport)
#else
#define VN_TEST_EXPORT extern "C" __attribute__((visibility("default")))
#endif

namespace Vn::Units {

namespace {

using Pending = std::vector<SimpleUnit const *>;

// The registry shows its units only sorted, so the list in order of construction is reached by an
// explicit instantiation, which may name a private member.
Pending SimpleUnitRegistry::*pendingMember();

template <Pending SimpleUnitRegistry::*Member>
struct PendingAccess {
    friend Pending SimpleUnitRegistry::*pendingMember() { return Member; }
};
template struct PendingAccess<&SimpleUnitRegistry::m_pending>;

Pending const & pendingUnits() { return SimpleUnitRegistry::get().*pendingMember(); }

std::size_t metaTypes() {
    MetaTypeMgr const & manager = *MetaTypeMgr::get();
    std::size_t count = 0;
    for (std::string const & id : manager.ids()) {
        EntityMetaType const * const type = manager.entityMetaType(id);
        if (type && type->addInIdentifier() == "CommonData") ++count;
    }
    return count;
}

// Filled while the module loads, so it must be there before any constructor runs.
constinit LoadSnapshot s_snapshots[c_loadPauses] = {};

template <std::size_t Number>
struct Pause {
    Pause() {
        TextCommandService & service = TextCommandService::get();
        s_snapshots[Number] = {service.subjectAreas().size(),
                               service.commands(L"Expressions").size() +
                                   service.commands(L"Units").size(),
                               UnitTest::all().size(), pendingUnits().size(), metaTypes()};
    }
};

Pause<0> const s_pause0 VN_LOAD_STEP(5);
Pause<1> const s_pause1 VN_LOAD_STEP(15);
Pause<2> const s_pause2 VN_LOAD_STEP(25);
Pause<3> const s_pause3 VN_LOAD_STEP(35);
Pause<4> const s_pause4 VN_LOAD_STEP(45);
Pause<5> const s_pause5 VN_LOAD_STEP(55);
Pause<6> const s_pause6 VN_LOAD_STEP(65);
Pause<7> const s_pause7 VN_LOAD_STEP(75);
Pause<8> const s_pause8 VN_LOAD_STEP(85);
Pause<9> const s_pause9 VN_LOAD_STEP(95);
Pause<10> const s_pause10 VN_LOAD_STEP(105);
Pause<11> const s_pause11 VN_LOAD_STEP(115);
Pause<12> const s_pause12 VN_LOAD_STEP(125);
Pause<13> const s_pause13 VN_LOAD_STEP(135);
Pause<14> const s_pause14 VN_LOAD_STEP(145);

} // namespace

} // namespace Vn::Units

VN_TEST_EXPORT Vn::Units::LoadSnapshot const * loadOrderProbeSnapshots() {
    return Vn::Units::s_snapshots;
}

VN_TEST_EXPORT std::size_t loadOrderProbeIdentifiers(char const ** out, std::size_t size) {
    auto const & units = Vn::Units::pendingUnits();
    for (std::size_t i = 0; i < units.size() && i < size; ++i)
        out[i] = units[i]->identifier()->c_str();
    return units.size();
}
