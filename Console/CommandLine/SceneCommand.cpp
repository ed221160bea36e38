#include "Console/CommandLine/SceneCommand.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <ostream>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "Console/CommandLine/ExitStatus.h"
#include "Console/Documents/Hosting.h"
#include "Console/Documents/Session.h"
#include "Console/Messages.h"
#include "Console/Terminal/Table.h"
#include "Console/Texts.h"
#include "Console/UnitTexts.h"
#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/Text.h"
#include "Platform/DataModel/Entity.h"
#include "Platform/Graphics/LODGeometryNode.h"
#include "Platform/Graphics/NodeWalk.h"
#include "Platform/Graphics/SimpleMesh.h"
#include "Platform/Scene/INodeSource.h"
#include "Platform/Scene/SceneAssetAdapter.h"

namespace Vn::Console {

namespace {

using Json = nlohmann::ordered_json;
using Vrx::Devices::BoundingBox;
using Vrx::Devices::IndexBuffer;
using Vrx::Devices::SimpleMesh;
using Vrx::Devices::VertexBuffer;
using Vrx::Graphics::ARenderNode;
using Vrx::Graphics::GroupNode;
using Vrx::Graphics::LODGeometryNode;
using Vrx::Graphics::NodeWalk;

// The double with the fewest digits that still means the same float, if it is one: 0.01 and not
// 0.009999999776482582.
double plain(double value) {
    auto const single = static_cast<float>(value);
    if (!std::isfinite(single) || static_cast<double>(single) != value) return value;
    char buffer[64];
    char const * const end = std::to_chars(buffer, buffer + sizeof buffer, single).ptr;
    std::from_chars(buffer, end, value);
    return value;
}

std::wstring number(double value) { return shownNumber(plain(value)); }

std::wstring text(std::optional<Color> const & color) {
    if (!color) return L"-";
    return number(color->red) + L' ' + number(color->green) + L' ' + number(color->blue) + L' ' +
           number(color->opacity);
}
std::wstring text(TgPoint3d const & point) {
    std::wstring const between = listSeparator();
    return L'(' + number(point.x) + between + number(point.y) + between + number(point.z) + L')';
}

// JSON knows no NaN and no infinity; they become null.
Json json(std::optional<Color> const & color) {
    if (!color) return nullptr;
    return {plain(color->red), plain(color->green), plain(color->blue), plain(color->opacity)};
}
Json json(TgPoint3d const & point) { return {plain(point.x), plain(point.y), plain(point.z)}; }
template <std::size_t N>
Json json(std::array<float, N> const & numbers) {
    Json array = Json::array();
    for (float const each : numbers) array.push_back(plain(each));
    return array;
}

// Row by row.
Json json(TgMatrix3d const & matrix) {
    Json rows = Json::array();
    for (unsigned row = 0; row < 4; ++row) {
        Json numbers = Json::array();
        for (unsigned column = 0; column < 4; ++column)
            numbers.push_back(plain(matrix.entry(row, column)));
        rows.push_back(std::move(numbers));
    }
    return rows;
}

// A mesh of a node, and the levels of detail that have it, the finest being 0.
struct Detail {
    SimpleMesh const * mesh;
    std::vector<unsigned> levels;
};

std::vector<Detail> detailsOf(ARenderNode const & node) {
    std::vector<Detail> details;
    LODGeometryNode const * const geometry = node.asGeometry();
    for (unsigned level = 0; geometry && level < LODGeometryNode::c_levels; ++level) {
        SimpleMesh const * const mesh = geometry->mesh(level);
        if (!mesh) continue;
        auto const found = std::find_if(details.begin(), details.end(),
                                        [&](Detail const & each) { return each.mesh == mesh; });
        if (found == details.end())
            details.push_back({mesh, {level}});
        else
            found->levels.push_back(level);
    }
    return details;
}

std::wstring text(std::vector<unsigned> const & levels) {
    std::wstring text;
    for (unsigned const level : levels)
        text += (text.empty() ? L"" : L" ") + std::to_wstring(level);
    return text;
}

std::size_t vertices(SimpleMesh const & mesh) {
    return mesh.vertexBuffer() ? mesh.vertexBuffer()->vertices() : 0;
}

// In the space of the document.
std::wstring boundsText(SimpleMesh const & mesh, TgMatrix3d const & transform) {
    std::optional<BoundingBox> const own = mesh.bounds();
    if (!own) return L"-";
    BoundingBox const box = own->transformed(transform);
    return message(L"%1% to %2%", text(box.low), text(box.high));
}

std::optional<Color> ownColor(ARenderNode const & node) {
    return node.effect() ? std::optional(node.effect()->color) : std::nullopt;
}
std::optional<Color> effectiveColor(NodeWalk const & walk) {
    auto const effect = walk.effect();
    return effect ? std::optional(effect->color) : std::nullopt;
}

// The entity that the node was made for; null if there is none.
Entity * entityOf(ARenderNode const & node) { return query<Entity>(Scene::INodeSource::of(&node)); }

std::wstring kindOf(ARenderNode const & node) {
    if (node.asGroup()) return message(node.visible() ? tr(L"group") : tr(L"group, hidden"));
    return message(node.visible() ? tr(L"geometry") : tr(L"geometry, hidden"));
}

void addRows(NodeWalk const & walk, Table & table) {
    // Beyond this a line is as long as a terminal is wide.
    constexpr std::size_t c_deepest = 20;
    ARenderNode const & node = *walk.node();
    Entity const * const entity = entityOf(node);
    std::vector<std::wstring> row = {std::wstring(2 * std::min(walk.depth(), c_deepest), L' ') +
                                         kindOf(node),
                                     entity ? L'#' + std::to_wstring(entity->id()) : L"-",
                                     text(ownColor(node)), text(effectiveColor(walk))};
    std::vector<Detail> const details = detailsOf(node);
    for (Detail const & detail : details) {
        for (std::wstring & cell :
             std::vector<std::wstring>{text(detail.levels), std::to_wstring(vertices(*detail.mesh)),
                                       std::to_wstring(detail.mesh->triangles()),
                                       boundsText(*detail.mesh, walk.transform())})
            row.push_back(std::move(cell));
        table.add(std::move(row));
        row.assign(4, std::wstring());
    }
    if (details.empty()) table.add(std::move(row));
}

Json json(Detail const & detail) {
    SimpleMesh const & mesh = *detail.mesh;
    Json object;
    object["levels"] = detail.levels;
    object["primitiveType"] = mesh.primitiveType();
    object["triangles"] = mesh.triangles();
    std::optional<BoundingBox> const box = mesh.bounds();
    object["bounds"] = box ? Json{json(box->low), json(box->high)} : Json();
    Json array = Json::array();
    VertexBuffer const * const buffer = mesh.vertexBuffer();
    for (std::size_t i = 0; i < vertices(mesh); ++i) {
        Json vertex;
        vertex["position"] = json(buffer->position(i));
        if (buffer->format().hasNormal()) vertex["normal"] = json(buffer->normal(i));
        Json sets = Json::array();
        for (int set = 0; set < buffer->format().textureSets(); ++set)
            sets.push_back(json(buffer->texCoord(i, set)));
        vertex["texCoords"] = std::move(sets);
        array.push_back(std::move(vertex));
    }
    object["vertices"] = std::move(array);
    Json indices = Json::array();
    IndexBuffer const * const places = mesh.indexBuffer();
    for (std::size_t i = 0; places && i < places->indices(); ++i)
        indices.push_back(places->index(i));
    object["indices"] = std::move(indices);
    return object;
}

void showJson(NodeWalk const & walk, std::ostream & out) {
    ARenderNode const & node = *walk.node();
    Entity const * const entity = entityOf(node);
    Json object;
    object["depth"] = walk.depth();
    object["type"] = node.asGroup() ? "group" : "geometry";
    object["visible"] = node.visible();
    if (GroupNode const * const group = node.asGroup(); group && group->transform())
        object["transform"] = json(*group->transform());
    object["entity"] = entity ? Json(entity->id()) : Json();
    object["color"] = json(ownColor(node));
    object["effectiveColor"] = json(effectiveColor(walk));
    if (node.asGeometry()) {
        Json meshes = Json::array();
        for (Detail const & detail : detailsOf(node)) meshes.push_back(json(detail));
        object["meshes"] = std::move(meshes);
    }
    out << object.dump() << '\n';
}

} // namespace

int runScene(std::wstring const & file, bool asJson, std::ostream & out, std::ostream & err) {
    StrongRef<Asset> asset;
    if (Status const status = loadDocument(pathOf(file), asset); !status) return told(status, err);
    auto const * const adapter = query<Scene::SceneAssetAdapter>(asset->adapter());
    if (!adapter || !adapter->scene())
        return told(message(L"%1% has no graph", shown(pathOf(file))), err);
    Table table;
    table.add({message(L"node"), message(L"entity"), message(L"color"), message(L"shows in"),
               message(L"levels"), message(L"vertices"), message(L"triangles"),
               message(L"bounds in cm")});
    for (NodeWalk walk(adapter->scene()); walk; walk.next()) {
        if (asJson)
            showJson(walk, out);
        else
            addRows(walk, table);
    }
    if (!asJson) out << table.toUtf8();
    return ExitGood;
}

} // namespace Vn::Console
