#include "Console/Host/AddInsCommand.h"

#include <ostream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "Console/CommandLine/ExitStatus.h"
#include "Console/Terminal/Table.h"
#include "Console/Texts.h"
#include "Platform/AddInMgr/AddIn.h"
#include "Platform/AddInMgr/AddInMgr.h"
#include "Platform/Base/Text.h"

namespace Vn::Console {

namespace {

char const * word(EAddInState state) {
    switch (state) {
    case EAddInState::Registered:
        return "registered";
    case EAddInState::Configured:
        return "configured";
    case EAddInState::Refused:
        return "refused";
    case EAddInState::Loaded:
        return "loaded";
    case EAddInState::Failed:
        return "failed";
    case EAddInState::Unloaded:
        return "unloaded";
    case EAddInState::Kept:
        return "kept";
    }
    return "";
}

struct Row {
    explicit Row(AddIn const & addIn)
        : identifier(addIn.identifier()), module(Text::toUtf8(addIn.module())),
          assetType(addIn.assetTypeId()), state(word(addIn.state())) {
        if (Status const status = addIn.status(); !status) reason = status.toString();
    }

    std::string identifier;
    std::string module;
    std::string assetType;
    std::string state;
    std::string reason;
};

// Configurations may come from anyone, and reasons quote from them.
std::wstring cell(std::string const & text) {
    return text.empty() ? L"-" : printable(Text::fromUtf8(text));
}

nlohmann::ordered_json member(std::string const & text) {
    return text.empty() ? nlohmann::ordered_json()
                        : nlohmann::ordered_json(Text::toUtf8(Text::fromUtf8(text)));
}

void showJson(Row const & row, std::ostream & out) {
    nlohmann::ordered_json object;
    object["identifier"] = member(row.identifier);
    object["module"] = member(row.module);
    object["assetType"] = member(row.assetType);
    object["state"] = row.state;
    object["reason"] = member(row.reason);
    out << object.dump() << '\n';
}

} // namespace

int runAddIns(bool json, std::ostream & out) {
    std::vector<AddIn *> const addIns = AddInMgr::get()->addIns();
    bool isGood = !addIns.empty();
    Table table;
    table.add({L"identifier", L"module", L"asset type", L"state", L"reason"});
    for (AddIn const * const addIn : addIns) {
        Row const row(*addIn);
        isGood &= addIn->status().ok();
        if (json)
            showJson(row, out);
        else
            table.add({cell(row.identifier), cell(row.module), cell(row.assetType), cell(row.state),
                       cell(row.reason)});
    }
    if (!json) out << table.toUtf8();
    return isGood ? ExitGood : ExitBadInput;
}

} // namespace Vn::Console
