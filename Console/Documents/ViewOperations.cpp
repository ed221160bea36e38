// What the commands of the subject area "Views" do.

#include <memory>
#include <optional>
#include <ostream>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "Console/Documents/Cameras.h"
#include "Console/Documents/Coordinates.h"
#include "Console/Documents/Equipment.h"
#include "Console/Documents/Operations.h"
#include "Console/Documents/Session.h"
#include "Console/Documents/UnitSystems.h"
#include "Console/Messages.h"
#include "Console/Terminal/Table.h"
#include "Console/Texts.h"
#include "Platform/Base/Text.h"
#include "Platform/DataModel/ObjectPath.h"
#include "Platform/Scene/Camera.h"
#include "Server/CommonData/Managed/ManagedEntityUtils.h"
#include "Server/CommonData/NamedViews/NamedView.h"
#include "Server/CommonData/NamedViews/NamedViewRequests.h"

namespace Vn::Console {

namespace {

using CommonData::CommonDataAssetSettings;
using Json = nlohmann::ordered_json;
using NameView::NamedView;
using NameView::NamedViews;
using Parameters = TextCommandParameters;
using Result = TextCommandResult;
using Scene::Camera;
using Views = StrongRef<NamedViews>;
using View = StrongRef<NamedView>;

// A built-in view, and what makes it and has it follow the settings.
struct BuiltIn {
    std::wstring name;
    View (*make)(Views const & views);
    void (NamedViews::*synchronize)();
};

// In the order in which a new document has them.
std::vector<BuiltIn> builtIns() {
    return {
        {NamedViews::c_top, &NamedViews::makeTopNamedView, &NamedViews::synchonizeTopNamedView},
        {NamedViews::c_front, &NamedViews::makeFrontNamedView,
         &NamedViews::synchonizeFrontNamedView},
        {NamedViews::c_right, &NamedViews::makeRightNamedView,
         &NamedViews::synchonizeRightNamedView},
        {NamedViews::c_home, &NamedViews::makeHomeNamedView, &NamedViews::synchonizeHomeNamedView}};
}

// Finds the views and one of them.  The answer is empty, or says why there are none.
std::wstring findView(DocumentSession const & session, std::wstring const & name, Views & views,
                      View & view) {
    std::wstring why = findViews(session.design(), views);
    return why.empty() ? Console::findView(*views, name, view) : why;
}

// What was done, and why the name came out in another way than wished, if it did.
std::wstring withReason(std::wstring const & done, std::wstring const & wished,
                        std::wstring const & given) {
    return wished == given
               ? done
               : message(L"%1%, since there is a view %2% already", done, inQuotes(wished));
}

// Ends a change, which is then taken back.
struct Refused {
    std::wstring why;
};

void run(DocumentSession & session, std::unique_ptr<Request> request) {
    Status const status = session.asset().run(std::move(request));
    if (!status) throw Refused{printable(statusText(status))};
}

// Runs a request as a step of its name, and tells whether there was one.  The answer is empty, or
// says why the request was refused.
std::wstring runAsStep(DocumentSession & session, std::unique_ptr<Request> request, bool & isStep) {
    std::wstring const name = request->name();
    try {
        isStep = session.change(name, [&] { run(session, std::move(request)); });
    } catch (Refused const & refused) {
        return refused.why;
    }
    return {};
}

// --- Cameras -----------------------------------------------------------------------------------

// A camera that ends with the change, unless a view takes it.
StrongRef<Camera> makeCamera(Segment & design, CameraValues const & values) {
    StrongRef<Camera> camera = Camera::make(&design);
    camera->position(values.position);
    camera->target(values.target);
    camera->up(values.up);
    camera->extentsWidth(values.width);
    camera->extentsHeight(values.height);
    return camera;
}

// How a camera is to stand: like that of a view, and with these in place of the view's.
struct Aim {
    std::optional<CameraValues> like;
    std::optional<TgPoint3d> position;
    std::optional<TgPoint3d> target;
    std::optional<TgVector3d> up;

    bool isEmpty() const { return !like && !position && !target && !up; }
    void applyTo(CameraValues & values) const {
        if (like) values = *like;
        if (position) values.position = *position;
        if (target) values.target = *target;
        if (up) values.up = *up;
    }
};

constexpr wchar_t const * c_aimWords[] = {L"from", L"position", L"target", L"up"};

bool isAimWord(std::wstring const & text) {
    for (wchar_t const * const word : c_aimWords)
        if (isWord(text, word)) return true;
    return false;
}

std::wstring readAimPart(DocumentSession const & session, std::wstring const & word,
                         std::wstring const & text, Aim & aim) {
    if (isWord(word, L"from")) {
        Views views;
        View view;
        if (std::wstring why = findView(session, text, views, view); !why.empty()) return why;
        if (!view->camera()) return message(L"the view %1% has no camera", inQuotes(text));
        aim.like = valuesOf(*view->camera());
        return {};
    }
    Triple triple{};
    if (isWord(word, L"up")) {
        std::wstring const why = Coordinates::readDirection(text, triple);
        if (!why.empty()) return message(L"%1%: %2%", L"up", why);
        aim.up = fromTriple<TgVector3d>(triple);
        return {};
    }
    StrongRef<Units::UnitSystem> system;
    std::wstring why = findShownSystem(&session.design(), system);
    if (why.empty()) why = Coordinates(system).readLengths(text, triple);
    if (!why.empty()) return message(L"%1%: %2%", word, why);
    (isWord(word, L"position") ? aim.position : aim.target) = fromTriple<TgPoint3d>(triple);
    return {};
}

// Reads "from VIEW position P target P up V" or a part of it, from a parameter on.  The answer is
// empty, or says why it can't be read.
std::wstring readAim(DocumentSession const & session, Parameters const & parameters, unsigned first,
                     Aim & aim) {
    for (unsigned i = first; i < parameters.parameters();) {
        std::wstring const & word = parameters.parameter(i);
        if (!isAimWord(word))
            return message(L"%1% isn't one of from VIEW, position P, target P and up V",
                           inQuotes(word));
        if (++i == parameters.parameters())
            return isWord(word, L"from") ? message(L"%1% is followed by the name of a view", word)
                                         : message(L"%1% is followed by three numbers", word);
        // The name of a view is one parameter, and may be one of these words.
        std::wstring text = parameters.parameter(i++);
        for (; !isWord(word, L"from") && i < parameters.parameters() &&
               !isAimWord(parameters.parameter(i));
             ++i)
            text += L' ' + parameters.parameter(i);
        if (std::wstring why = readAimPart(session, word, text, aim); !why.empty()) return why;
    }
    return {};
}

// --- The list ----------------------------------------------------------------------------------

std::wstring shownName(std::wstring const & name) {
    return name.empty() ? L"\"\"" : printable(clipped(name));
}

void writeView(NamedView const & view, unsigned index, std::ostream & out) {
    Json line;
    line["index"] = index;
    line["name"] = Text::toUtf8(view.name());
    line["fixed"] = view.isFixed();
    for (char const * const key : {"position", "target", "up", "extents"}) line[key] = nullptr;
    if (view.camera()) {
        CameraValues const values = valuesOf(*view.camera());
        line["position"] = jsonOf(tripleOf(values.position));
        line["target"] = jsonOf(tripleOf(values.target));
        line["up"] = jsonOf(tripleOf(values.up));
        line["extents"] = Json::array({jsonOf(values.width), jsonOf(values.height)});
    }
    out << line.dump(-1, ' ', false, Json::error_handler_t::replace) << '\n';
}

void addView(NamedView const & view, Coordinates const & coordinates, Table & table) {
    std::vector<std::wstring> row{shownName(view.name()), view.isFixed() ? message(L"fixed") : L""};
    if (view.camera()) {
        CameraValues const values = valuesOf(*view.camera());
        row.insert(row.end(),
                   {message(L"from %1%", coordinates.lengths(tripleOf(values.position))),
                    message(L"to %1%", coordinates.lengths(tripleOf(values.target))),
                    message(L"up %1%", Coordinates::direction(tripleOf(values.up))),
                    coordinates.length(values.width) + L" x " + coordinates.length(values.height)});
    } else {
        row.push_back(message(L"no camera"));
    }
    table.add(std::move(row));
}

} // namespace

Result listViews(DocumentSession const & session, Parameters const & parameters,
                 std::ostream & out) {
    bool const json = parameters.hasFlag(L"Json");
    StrongRef<Units::UnitSystem> system;
    std::wstring why = whyNoViews(session.design());
    if (why.empty() && !json) why = findShownSystem(&session.design(), system);
    if (!why.empty()) return cannot(L"cannot list the views: %1%", why);
    Coordinates const coordinates(system);
    Views const views = viewsOf(session.design());
    Table table;
    bool isEmpty = true;
    for (unsigned i = 0; views && i < views->children(); ++i) {
        View const view = views->namedView(i);
        if (!view) continue;
        isEmpty = false;
        if (json)
            writeView(*view, i, out);
        else
            addView(*view, coordinates, table);
    }
    if (json) return {};
    out << table.toUtf8();
    if (!views)
        out << Text::toUtf8(message(L"the document has no views yet, and gets the built-in ones "
                                    L"with its first change"))
            << '\n';
    else if (isEmpty)
        out << Text::toUtf8(message(L"the document has no views")) << '\n';
    return {};
}

Result newView(DocumentSession & session, Parameters const & parameters) {
    wchar_t const * const refusal = tr(L"cannot make a view: %1%");
    unsigned const count = parameters.parameters();
    bool const isNamed = count == 1 || (count > 1 && !isAimWord(parameters.parameter(0)));
    Aim aim;
    std::wstring why = whyNoViews(session.design());
    if (why.empty()) why = readAim(session, parameters, isNamed ? 1 : 0, aim);
    if (!why.empty()) return cannot(refusal, why);

    Asset * const asset = &session.asset();
    std::unique_ptr<Request> const sample(CommonData::NewNamedViewRequest::make(asset, nullptr));
    std::wstring wished;
    std::wstring name;
    try {
        session.change(sample->name(), [&] {
            Segment & design = session.design();
            equip(design);
            Views const views = viewsOf(design);
            CameraValues values = valuesOf(*settingsOf(design));
            aim.applyTo(values);
            std::wstring const made = views->generateNamedViewName(L"NamedView");
            wished = isNamed ? parameters.parameter(0) : made;
            name = views->generateNamedViewName(wished);
            run(session, std::unique_ptr<Request>(CommonData::NewNamedViewRequest::make(
                             asset, makeCamera(design, values))));
            View const view = views->find(made);
            if (!view) throw Refused{message(L"the document has no adapter")};
            if (made != name) view->name(name);
        });
    } catch (Refused const & refused) {
        return cannot(refusal, refused.why);
    }
    return {0, withReason(message(L"made the view %1%", inQuotes(name)), wished, name)};
}

Result updateView(DocumentSession & session, Parameters const & parameters) {
    wchar_t const * const refusal = tr(L"cannot update the view: %1%");
    std::wstring const & name = parameters.parameter(0);
    Views views;
    View view;
    Aim aim;
    std::wstring why = findView(session, name, views, view);
    if (why.empty() && view->isFixed())
        why = message(
            L"%1% is built in and keeps its camera; Views.Synchronize has it follow the settings",
            inQuotes(name));
    if (why.empty() && !view->camera())
        why = message(L"the view %1% has no camera", inQuotes(name));
    if (why.empty()) why = readAim(session, parameters, 1, aim);
    if (why.empty() && aim.isEmpty())
        why = message(L"from VIEW, position P, target P or up V is needed");
    if (!why.empty()) return cannot(refusal, why);
    CameraValues const before = valuesOf(*view->camera());
    CameraValues values = before;
    aim.applyTo(values);
    // Asked beforehand, since a camera that comes and goes would be a step.
    if (values == before) return {0, message(L"the view %1% is so already", inQuotes(name))};
    session.change(message(L"update the view %1%", inQuotes(name)), [&] {
        views->updateNamedViewCamera(name, makeCamera(session.design(), values));
    });
    return {0, message(L"updated the view %1%", inQuotes(name))};
}

Result renameView(DocumentSession & session, Parameters const & parameters) {
    wchar_t const * const refusal = tr(L"cannot rename the view: %1%");
    std::wstring const & name = parameters.parameter(0);
    std::wstring const & wished = parameters.parameter(1);
    Views views;
    View view;
    std::wstring why = findView(session, name, views, view);
    if (why.empty() && view->isFixed())
        why = message(L"%1% is built in and keeps its name", inQuotes(name));
    if (!why.empty()) return cannot(refusal, why);
    if (wished == name) return {0, message(L"the view is called %1% already", inQuotes(name))};
    bool isStep = false;
    why = runAsStep(session,
                    std::unique_ptr<Request>(CommonData::UpdateNamedViewNameRequest::make(
                        &session.asset(), name, wished)),
                    isStep);
    if (!why.empty()) return cannot(refusal, why);
    if (view->name() == name) return cannot(refusal, message(L"the document has no adapter"));
    return {0, withReason(
                   message(L"renamed the view %1% to %2%", inQuotes(name), inQuotes(view->name())),
                   wished, view->name())};
}

Result deleteView(DocumentSession & session, Parameters const & parameters) {
    wchar_t const * const refusal = tr(L"cannot delete the view: %1%");
    std::wstring const & name = parameters.parameter(0);
    Views views;
    View view;
    std::wstring why = findView(session, name, views, view);
    bool const isFixed = why.empty() && view->isFixed();
    if (isFixed && !parameters.hasFlag(L"Force"))
        why = message(L"%1% is built in; /Force deletes it, and Views.Restore brings it back",
                      inQuotes(name));
    if (!why.empty()) return cannot(refusal, why);
    view.reset(); // so that it goes within the change
    bool isStep = false;
    why = runAsStep(
        session,
        std::unique_ptr<Request>(CommonData::DeleteNamedViewRequest::make(&session.asset(), name)),
        isStep);
    if (!why.empty()) return cannot(refusal, why);
    if (!isStep) return cannot(refusal, message(L"the document has no adapter"));
    return {0, message(L"deleted the view %1%", inQuotes(name))};
}

Result moveViews(DocumentSession & session, Parameters const & parameters) {
    wchar_t const * const refusal = tr(L"cannot move the views: %1%");
    unsigned const last = parameters.parameters() - 1;
    std::wstring const & where = parameters.parameter(last - 1);
    std::wstring const & targetName = parameters.parameter(last);
    Views views;
    View target;
    std::vector<ObjectPath> paths;
    std::wstring names;
    std::wstring why;
    if (!isWord(where, L"before") && !isWord(where, L"after"))
        why = message(L"views go before or after another, not %1%", inQuotes(where));
    if (why.empty()) why = findView(session, targetName, views, target);
    for (unsigned i = 0; why.empty() && i + 1 < last; ++i) {
        View view;
        why = findView(*views, parameters.parameter(i), view);
        if (!why.empty()) break;
        if (view == target) why = message(L"a view has no place beside itself");
        paths.push_back(Managed::ManagedEntityUtils::objectPath(*view));
        if (paths.back().empty())
            why = message(L"the views don't stand under a root of the document");
        names += (names.empty() ? L"" : L", ") + inQuotes(parameters.parameter(i));
    }
    if (!why.empty()) return cannot(refusal, why);
    bool const isAfter = isWord(where, L"after");
    std::unique_ptr<Request> request(CommonData::NamedViewPasteRequest::make(
        &session.asset(), paths, Managed::ManagedEntityUtils::objectPath(*target), isAfter, true,
        true));
    bool isStep = false;
    why = runAsStep(session, std::move(request), isStep);
    if (!why.empty()) return cannot(refusal, why);
    wchar_t const * const moved =
        isAfter ? tr(L"moved %1% after %2%") : tr(L"moved %1% before %2%");
    wchar_t const * const one =
        isAfter ? tr(L"%1% stands after %2% already") : tr(L"%1% stands before %2% already");
    wchar_t const * const several =
        isAfter ? tr(L"%1% stand after %2% already") : tr(L"%1% stand before %2% already");
    return {0, message(isStep              ? moved
                       : paths.size() == 1 ? one
                                           : several,
                       clipped(names, 1000), inQuotes(targetName))};
}

Result synchronizeViews(DocumentSession & session, Parameters const &) {
    std::wstring const why = whyNoViews(session.design());
    if (!why.empty()) return cannot(L"cannot synchronize the views: %1%", why);
    std::wstring missing;
    bool const isStep = session.change(message(L"synchronize the views"), [&] {
        equip(session.design());
        Views const views = viewsOf(session.design());
        for (BuiltIn const & builtIn : builtIns()) {
            ((*views).*builtIn.synchronize)();
            if (!views->find(builtIn.name))
                missing += (missing.empty() ? L"" : L", ") + builtIn.name;
        }
    });
    std::wstring const answer = isStep ? message(L"the built-in views follow the settings")
                                       : message(L"the built-in views are so already");
    if (missing.empty()) return {0, answer};
    return {0, message(L"%1%; missing: %2%, which Views.Restore makes", answer, missing)};
}

Result restoreViews(DocumentSession & session, Parameters const & parameters) {
    wchar_t const * const refusal = tr(L"cannot restore the view: %1%");
    std::wstring why = whyNoViews(session.design());
    std::vector<BuiltIn> wanted = builtIns();
    if (why.empty() && parameters.parameters() > 0) {
        std::wstring const & name = parameters.parameter(0);
        std::vector<std::wstring> names;
        for (BuiltIn const & each : wanted) names.push_back(each.name);
        std::erase_if(wanted,
                      [&](BuiltIn const & each) { return !isWord(name, each.name.c_str()); });
        if (wanted.empty())
            why = message(L"%1% isn't built in", inQuotes(name)) + orInstead(name, names);
    }
    if (!why.empty()) return cannot(refusal, why);

    Views const before = viewsOf(session.design());
    if (!before) wanted = builtIns(); // which come together
    std::wstring restored;
    std::wstring taken;
    for (BuiltIn const & each : wanted) {
        View const view = before ? before->find(each.name) : nullptr;
        if (view && !view->isFixed()) taken += (taken.empty() ? L"" : L", ") + each.name;
    }
    session.change(wanted.size() == 1 ? message(L"restore the view %1%", wanted.front().name)
                                      : message(L"restore the views"),
                   [&] {
                       equip(session.design());
                       Views const views = viewsOf(session.design());
                       for (BuiltIn const & each : wanted)
                           if (each.make(views) || !before)
                               restored += (restored.empty() ? L"" : L", ") + each.name;
                   });
    if (!taken.empty() && restored.empty())
        return cannot(refusal, message(L"a view of the user's is called %1%", taken));
    std::wstring const answer = restored.empty() ? message(L"no built-in view is missing")
                                                 : message(L"restored %1%", restored);
    if (taken.empty()) return {0, answer};
    return {0, message(L"%1%; a view of the user's is called %2%", answer, taken)};
}

} // namespace Vn::Console
