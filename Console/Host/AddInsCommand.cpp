#include "Console/Host/AddInsCommand.h"

#include <ostream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "Console/CommandLine/ExitStatus.h"
#include "Console/Messages.h"
#include "Console/Terminal/Table.h"
#include "Console/Texts.h"
#include "Platform/AddInMgr/AddIn.h"
#include "Platform/AddInMgr/AddInMgr.h"
#include "Platform/Base/Text.h"

namespace Vn::Console {

namespace {

wchar_t const * word(EAddInState state) {
    switch (state) {
    case EAddInState::Registered:
        return tr(L"registered");
    case EAddInState::Configured:
        return tr(L"configured");
    case EAddInState::Refused:
        return tr(L"refused");
    case EAddInState::Loaded:
        return tr(L"loaded");
    case EAddInState::Failed:
        return tr(L"failed");
    case EAddInState::Unloaded:
        return tr(L"unloaded");
    case EAddInState::Kept:
        return tr(L"kept");
    }
    return L"";
}

struct Row {
    explicit Row(AddIn const & addIn)
        : identifier(addIn.identifier()), module(Text::toUtf8(addIn.module())),
          assetType(addIn.assetTypeId()), state(word(addIn.state())) {
        if (Status const status = addIn.status(); !status) {
            reason = status.toString();
            shownReason = printable(statusText(status));
        }
    }

    std::string identifier;
    std::string module;
    std::string assetType;
    wchar_t const * state; // a message
    std::string reason;    // for programs
    std::wstring shownReason;
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
    object["state"] = Text::toUtf8(row.state);
    object["reason"] = member(row.reason);
    out << object.dump() << '\n';
}

} // namespace

int runAddIns(bool json, std::ostream & out) {
    std::vector<AddIn *> const addIns = AddInMgr::get()->addIns();
    bool isGood = !addIns.empty();
    Table table;
    table.add({message(L"identifier"), message(L"module"), message(L"asset type"),
               message(L"state"), message(L"reason")});
    for (AddIn const * const addIn : addIns) {
        Row const row(*addIn);
        isGood &= addIn->status().ok();
        if (json)
            showJson(row, out);
        else
            table.add({cell(row.identifier), cell(row.module), cell(row.assetType),
                       message(row.state), row.shownReason.empty() ? L"-" : row.shownReason});
    }
    if (!json) out << table.toUtf8();
    return isGood ? ExitGood : ExitBadInput;
}

} // namespace Vn::Console
