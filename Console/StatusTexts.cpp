// What a status tells, in the user's language.

#include <algorithm>
#include <iterator>

#include "Console/Messages.h"

namespace Vn::Console {

namespace {

struct Operation {
    std::string_view name; // as a status has it
    wchar_t const * refusal;
};

// What the platform and the server tell of.  Others are shown as they are.
constexpr Operation c_operations[] = {
    {"check the document", tr(L"cannot check the document")},
    {"draw the picture", tr(L"cannot draw the picture")},
    {"find the entity", tr(L"cannot find the entity")},
    {"follow the link", tr(L"cannot follow the link")},
    {"hand the document on to the add-in", tr(L"cannot hand the document on to the add-in")},
    {"hold the file", tr(L"cannot hold the file")},
    {"list the configurations", tr(L"cannot list the configurations")},
    {"load the add-in", tr(L"cannot load the add-in")},
    {"load the module", tr(L"cannot load the module")},
    {"load the library", tr(L"cannot load the library")},
    {"lock the file", tr(L"cannot lock the file")},
    {"make a document", tr(L"cannot make a document")},
    {"make the directory", tr(L"cannot make the directory")},
    {"make the file", tr(L"cannot make the file")},
    {"make the model", tr(L"cannot make the model")},
    {"move the entity", tr(L"cannot move the entity")},
    {"open the directory", tr(L"cannot open the directory")},
    {"open the document", tr(L"cannot open the document")},
    {"read the configuration", tr(L"cannot read the configuration")},
    {"read the configurations of add-ins", tr(L"cannot read the configurations of add-ins")},
    {"read the file", tr(L"cannot read the file")},
    {"read the option", tr(L"cannot read the option")},
    {"read the options", tr(L"cannot read the options")},
    {"read the schema", tr(L"cannot read the schema")},
    {"redo", tr(L"cannot redo")},
    {"rename the file", tr(L"cannot rename the file")},
    {"rename the view", tr(L"cannot rename the view")},
    {"run a request", tr(L"cannot run a request")},
    {"save the document", tr(L"cannot save the document")},
    {"save the option", tr(L"cannot save the option")},
    {"save the options", tr(L"cannot save the options")},
    {"set the member", tr(L"cannot set the member")},
    {"set the number of the last group", tr(L"cannot set the number of the last group")},
    {"show the member", tr(L"cannot show the member")},
    {"show the view", tr(L"cannot show the view")},
    {"sync the directory", tr(L"cannot sync the directory")},
    {"undo", tr(L"cannot undo")},
    {"unload the add-ins", tr(L"cannot unload the add-ins")},
    {"use the configuration", tr(L"cannot use the configuration")},
    {"validate the document", tr(L"cannot validate the document")},
    {"write the file", tr(L"cannot write the file")},
    {"write the options", tr(L"cannot write the options")},
    {"write the picture", tr(L"cannot write the picture")},
};

std::wstring refusal(std::string const & operation) {
    auto const found = std::find_if(std::begin(c_operations), std::end(c_operations),
                                    [&](Operation const & each) { return each.name == operation; });
    if (found != std::end(c_operations)) return message(found->refusal);
    return message(L"cannot %1%", Text::fromUtf8(operation));
}

wchar_t const * codeText(EStatus code) {
    switch (code) {
    case StatusOk:
        return tr(L"ok");
    case StatusFailed:
        return tr(L"failed");
    case StatusInvalidArgument:
        return tr(L"invalid argument");
    case StatusNotFound:
        return tr(L"not found");
    case StatusAlreadyExists:
        return tr(L"exists already");
    case StatusAccessDenied:
        return tr(L"access denied");
    case StatusIO:
        return tr(L"input or output error");
    case StatusCorrupt:
        return tr(L"damaged");
    case StatusNewerFormat:
        return tr(L"written by a later version");
    case StatusNoSpace:
        return tr(L"no space left");
    case StatusOutOfMemory:
        return tr(L"out of memory");
    case StatusBusy:
        return tr(L"in use");
    case StatusUnsupported:
        return tr(L"not supported");
    case StatusCancelled:
        return tr(L"cancelled");
    case StatusChanged:
        return tr(L"changed meanwhile");
    }
    return tr(L"unknown failure");
}

} // namespace

std::wstring statusText(Status const & status) {
    std::wstring text = message(codeText(status.code()));
    if (status) return text;
    std::wstring subject = Text::fromUtf8(status.subject());
    if (!subject.empty()) {
        subject = status.operation().empty()
                      ? message(L"'%1%'", subject)
                      : message(L"%1% '%2%'", refusal(status.operation()), subject);
    } else if (!status.operation().empty()) {
        subject = refusal(status.operation());
    }
    if (!subject.empty()) text = message(L"%1%: %2%", subject, text);
    if (status.cause().empty()) return text;
    return message(L"%1%: %2%", text, Text::fromUtf8(status.cause()));
}

} // namespace Vn::Console
