// What draws the document.

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>

#include "Console/CommandLine/ExitStatus.h"
#include "Console/Documents/Cameras.h"
#include "Console/Documents/Coordinates.h"
#include "Console/Documents/Equipment.h"
#include "Console/Documents/Operations.h"
#include "Console/Documents/OutputFile.h"
#include "Console/Documents/Session.h"
#include "Console/Documents/ShownViews.h"
#include "Console/Messages.h"
#include "Console/Texts.h"
#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/Text.h"
#include "Platform/Picture/Picture.h"
#include "Platform/Picture/ShownParts.h"
#include "Platform/Picture/View.h"
#include "Platform/Scene/SceneAssetAdapter.h"

namespace Vn::Console {

namespace {

using NameView::NamedView;
using NameView::NamedViews;
using Picture::PictureOptions;
using Parameters = TextCommandParameters;
using Result = TextCommandResult;

bool isPictureWord(std::wstring const & text) {
    return isWord(text, L"view") || isWord(text, L"from") || isWord(text, L"size");
}

// What was asked for after the name of the file.
struct Wishes {
    std::optional<std::wstring> view;
    std::optional<TgVector3d> from;
    PictureOptions picture;
};

// Digits alone; nothing if there are others, none, or so many that no picture is that large.
std::optional<unsigned> pixels(std::wstring_view text) {
    unsigned number = 0;
    if (text.empty() || text.size() > 9) return std::nullopt;
    for (wchar_t const c : text) {
        if (c < L'0' || c > L'9') return std::nullopt;
        number = 10 * number + static_cast<unsigned>(c - L'0');
    }
    return number;
}

std::wstring readSize(std::wstring const & text, PictureOptions & picture) {
    std::size_t const cross = text.find_first_of(L"xX\u00D7");
    std::optional<unsigned> const width = pixels(std::wstring_view(text).substr(0, cross));
    std::optional<unsigned> const height =
        cross == text.npos ? std::nullopt : pixels(std::wstring_view(text).substr(cross + 1));
    if (!width || !height)
        return message(L"%1% isn't a size in pixels, such as 1024x768", inQuotes(text));
    picture.width = *width;
    picture.height = *height;
    return {};
}

// The answer is empty, or says why it can't be read.
std::wstring readWishes(Parameters const & parameters, Wishes & wishes) {
    for (unsigned i = 1; i < parameters.parameters();) {
        std::wstring const & word = parameters.parameter(i);
        if (!isPictureWord(word))
            return message(L"%1% isn't one of view VIEW, from DIRECTION and size WIDTHxHEIGHT",
                           inQuotes(word));
        if (++i == parameters.parameters()) return message(L"more is needed after %1%", word);
        std::wstring text = parameters.parameter(i++);
        std::wstring why;
        if (isWord(word, L"view")) {
            wishes.view = text;
        } else if (isWord(word, L"size")) {
            why = readSize(text, wishes.picture);
        } else {
            for (; i < parameters.parameters() && !isPictureWord(parameters.parameter(i)); ++i)
                text += L' ' + parameters.parameter(i);
            if (!trimmed(text).starts_with(L'(')) text = L'(' + text + L')';
            Triple triple{};
            why = Coordinates::readDirection(text, triple);
            wishes.from = fromTriple<TgVector3d>(triple);
            if (why.empty() && triple == Triple{})
                why = message(L"%1% is no direction", inQuotes(text));
        }
        if (!why.empty()) return message(L"%1%: %2%", word, why);
    }
    if (wishes.view && wishes.from)
        return message(L"a picture has a view or a direction, not both");
    wishes.picture.background = !parameters.hasFlag(L"NoBackground");
    return {};
}

// A view of the document, also HOME where that is missing.
std::wstring aimOf(Segment const & design, std::wstring const & name, Aim & aim) {
    StrongRef<NamedViews> views;
    StrongRef<NamedView> view;
    std::wstring why = findViews(design, views);
    if (why.empty()) why = findView(*views, name, view);
    if (why.empty() && !view->camera())
        why = message(L"the view %1% has no camera", inQuotes(name));
    if (!why.empty() && name != NamedViews::c_home) return why;
    aim = why.empty() ? shownAim(design, *view) : homeAim(design);
    return {};
}

// The direction in which the eye stands.
Aim aimFrom(Segment const & design, TgVector3d const & from) {
    StrongRef<CommonData::CommonDataAssetSettings> const settings = settingsOf(design);
    Aim aim;
    // So that the largest and the smallest numbers tell a direction too.
    double const most = std::max({std::fabs(from.x), std::fabs(from.y), std::fabs(from.z)});
    aim.camera.position = TgPoint3d(from.x / most, from.y / most, from.z / most);
    aim.camera.up = settings ? settings->sceneUp() : TgVector3d(0, 0, 1);
    return aim;
}

} // namespace

Result drawPicture(DocumentSession & session, Parameters const & parameters) {
    wchar_t const * const refusal = tr(L"cannot draw the picture: %1%");
    std::wstring const & file = parameters.parameter(0);
    // A status says itself what can't be done.
    auto const refused = [](Status const & status) {
        return Result{ExitBadInput, printable(statusText(status))};
    };
    Wishes wishes;
    Aim aim;
    std::wstring why = readWishes(parameters, wishes);
    if (why.empty()) why = whyNoOutput(file, {L".png"}, session.asset().file());
    std::wstring const name = wishes.view.value_or(NamedViews::c_home);
    if (why.empty() && wishes.from)
        aim = aimFrom(session.design(), *wishes.from);
    else if (why.empty())
        why = aimOf(session.design(), name, aim);
    auto const * const adapter = query<Scene::SceneAssetAdapter>(session.asset().adapter());
    if (why.empty() && (!adapter || !adapter->scene())) why = message(L"the document has no graph");
    if (!why.empty()) return cannot(refusal, why);

    Picture::ShownParts const parts(adapter->scene());
    Picture::View view = shownView(session.design(), aim);
    PictureOptions const & options = wishes.picture;
    if (Status const status = checkSize(options); !status) return refused(status);
    double const aspect = static_cast<double>(options.width) / options.height;
    if (Status const status = fitIfNeeded(aim, parts.bounds(), aspect, view); !status)
        return refused(status);
    Picture::Picture picture;
    std::string bytes;
    Status status = draw(parts, view, options, picture);
    if (status) status = toPng(picture, bytes);
    if (!status) return refused(status);
    if (why = writeOutput(file, bytes); !why.empty()) return cannot(refusal, why);

    std::wstring text =
        wishes.from ? message(L"drew %1%, %2% x %3% pixels", shown(pathOf(file)), options.width,
                              options.height)
                    : message(L"drew %1%, %2% x %3% pixels, from the view %4%", shown(pathOf(file)),
                              options.width, options.height, inQuotes(name));
    if (parts.model().empty()) text += L'\n' + message(L"note: the document has nothing to show");
    if (parts.leftOut() > 0)
        text += L'\n' + counted(parts.leftOut(),
                                tr(L"note: %1% mesh is left out, since it has numbers that aren't "
                                   L"finite"),
                                tr(L"note: %1% meshes are left out, since they have numbers that "
                                   L"aren't finite"));
    return {0, text};
}

} // namespace Vn::Console
