#include "Platform/Picture/GltfNodesInternal.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include <Eigen/Dense>

#include "Platform/Base/Text.h"
#include "Platform/Picture/ShownPartsInternal.h"

namespace Vn::Picture {

using Vrx::Devices::BoundingBox;
using Vrx::Graphics::ARenderNode;
using Vrx::Graphics::GroupNode;
using Vrx::Graphics::NodeWalk;

namespace {

// Programs keep numbers as float.
bool isInRange(double number) {
    return std::fabs(number) <= static_cast<double>(std::numeric_limits<float>::max());
}

bool isInRange(TgPoint3d const & point) {
    return isInRange(point.x) && isInRange(point.y) && isInRange(point.z);
}

// Whether a map can be in the file, as one node or two.
bool isMap(TgMatrix3d const & map) {
    for (unsigned column = 0; column < 4; ++column) {
        for (unsigned row = 0; row < 3; ++row)
            if (!isInRange(map.entry(row, column))) return false;
        if (map.entry(3, column) != (column == 3 ? 1 : 0)) return false;
    }
    return true;
}

bool isShift(TgMatrix3d const & map) {
    return map == TgMatrix3d::translation({map.entry(0, 3), map.entry(1, 3), map.entry(2, 3)});
}

// Column by column.
Json json(TgMatrix3d const & map) {
    Json numbers = Json::array();
    for (unsigned column = 0; column < 4; ++column)
        for (unsigned row = 0; row < 4; ++row) numbers.push_back(map.entry(row, column));
    return numbers;
}

Json json(TgVector3d const & vector) { return {vector.x, vector.y, vector.z}; }

Json json(NodeFacts::Values const & values) {
    Json object;
    for (auto const & [name, value] : values) {
        if (auto const * const text = std::get_if<std::wstring>(&value))
            object[name] = Text::toUtf8(*text);
        else if (auto const * const whole = std::get_if<std::uint64_t>(&value))
            object[name] = *whole;
        else if (double const number = std::get<double>(value); std::isfinite(number))
            object[name] = number;
    }
    return object;
}

} // namespace

std::uint32_t GltfNodes::add(std::uint32_t parent) {
    auto const number = static_cast<std::uint32_t>(m_nodes.size());
    Node node;
    node.parent = parent;
    node.nearest = m_nodes[parent].nearest;
    m_nodes.push_back(node);
    Node & above = m_nodes[parent];
    (above.last == c_none ? above.first : m_nodes[above.last].next) = number;
    above.last = number;
    return number;
}

void GltfNodes::setSource(std::uint32_t node, Scene::INodeSource * source) {
    if (!source || source == m_nodes[node].nearest) return;
    m_nodes[node].source = source;
    m_nodes[node].nearest = source;
}

// Nothing if the map is made of a scale, a rotation and a shift already.  Otherwise the singular
// values are the scales, and what stands on both sides of them the rotations.
std::optional<GltfNodes::Split> GltfNodes::splitOf(TgMatrix3d const & map) {
    Eigen::Matrix3d linear;
    for (unsigned row = 0; row < 3; ++row)
        for (unsigned column = 0; column < 3; ++column)
            linear(row, column) = map.entry(row, column);
    double const largest = linear.cwiseAbs().maxCoeff();
    constexpr double c_tolerance = 1e-9;
    if (largest > 0) {
        Eigen::Matrix3d const even = linear / largest; // whose products don't overflow
        bool isFine = true;
        for (int i = 0; i < 3; ++i) {
            auto const one = even.col(i);
            auto const other = even.col((i + 1) % 3);
            isFine = isFine && one.norm() > c_tolerance &&
                     std::fabs(one.dot(other)) <= c_tolerance * one.norm() * other.norm();
        }
        if (isFine) return std::nullopt;
    }
    double const unit = largest > 0 ? largest : 1;
    Eigen::JacobiSVD<Eigen::Matrix3d> const svd(linear / unit,
                                                Eigen::ComputeFullU | Eigen::ComputeFullV);
    Eigen::Matrix3d outer = svd.matrixU();
    Eigen::Matrix3d inner = svd.matrixV().transpose();
    Eigen::Vector3d scale = Eigen::Vector3d::Zero();
    if (svd.info() == Eigen::Success)
        scale = svd.singularValues() * unit; // as of all that is finite
    // Mirrors become a negative scale.
    if (outer.determinant() < 0) {
        outer.col(2) *= -1;
        scale[2] *= -1;
    }
    if (inner.determinant() < 0) {
        inner.row(2) *= -1;
        scale[2] *= -1;
    }
    Eigen::Quaterniond const turn = Eigen::Quaterniond(outer).normalized();
    Split split;
    split.way = {map.entry(0, 3), map.entry(1, 3), map.entry(2, 3)};
    split.rotation = {turn.x(), turn.y(), turn.z(), turn.w()};
    split.scale = {scale.x(), scale.y(), scale.z()};
    for (unsigned row = 0; row < 3; ++row)
        for (unsigned column = 0; column < 3; ++column)
            split.inner.entry(row, column, inner(row, column));
    return split;
}

// The answer is the node in which the children of the group stand.
std::uint32_t GltfNodes::addGroup(GroupNode const & group, std::uint32_t parent) {
    TgMatrix3d const * const map = group.transform();
    if (map && !isMap(*map)) return c_none;
    std::uint32_t const node = add(parent);
    setSource(node, Scene::INodeSource::of(&group));
    if (!map || *map == TgMatrix3d()) return node;
    m_nodes[node].placed = &group;
    std::optional<Split> const split = splitOf(*map);
    if (!split) return node;
    m_nodes[node].split = static_cast<std::uint32_t>(m_splits.size());
    m_splits.push_back(*split);
    if (split->inner == TgMatrix3d()) return node;
    std::uint32_t const within = add(node);
    m_nodes[within].split = m_nodes[node].split;
    return within;
}

void GltfNodes::addMesh(NodeWalk const & walk, std::uint32_t parent, GltfMeshes & meshes) {
    Vrx::Devices::SimpleMesh const * const mesh = shownMesh(*walk.node());
    std::uint32_t numbers = GltfMeshes::c_none;
    if (mesh && parent != c_none) numbers = meshes.numbersOf(*mesh);
    BoundingBox box;
    if (numbers != GltfMeshes::c_none) {
        box = meshes.box(numbers).transformed(walk.transform());
        if (!box.isValid() || !isInRange(box.low) || !isInRange(box.high))
            numbers = GltfMeshes::c_none;
    }
    if (mesh && numbers == GltfMeshes::c_none) ++m_leftOut;
    if (parent == c_none) return;
    std::uint32_t const node = add(parent);
    setSource(node, Scene::INodeSource::of(walk.node()));
    if (numbers == GltfMeshes::c_none) return;
    m_nodes[node].mesh = meshes.meshOf(numbers, shownColor(walk.effect()));
    ++m_parts;
    if (m_bounds)
        m_bounds->add(box);
    else
        m_bounds = box;
}

bool GltfNodes::addGraph(GroupNode const & top, GltfMeshes & meshes, std::uint64_t mostBytes) {
    std::vector<std::uint32_t> way; // where what stands below the groups above goes; c_none for out
    for (NodeWalk walk(&top); walk;) {
        if (!isShown(*walk.node()) || isBackground(walk)) {
            walk.skip();
            continue;
        }
        std::uint32_t const parent = walk.depth() == 0 ? 0 : way[walk.depth() - 1];
        if (GroupNode const * const group = walk.node()->asGroup()) {
            way.resize(walk.depth());
            bool const isRoot =
                walk.depth() == 0 && !group->transform() && !Scene::INodeSource::of(group);
            way.push_back(parent == c_none ? c_none : isRoot ? 0 : addGroup(*group, parent));
        } else {
            addMesh(walk, parent, meshes);
            if (meshes.bufferLength() + meshes.textLength() > mostBytes) return false;
        }
        walk.next();
    }
    return true;
}

void GltfNodes::addCamera(std::uint32_t camera, ViewFrame const & frame) {
    // The scale undoes that of the root: not all programs take the scale of a camera as it is.
    constexpr double c_scale = 100;
    TgMatrix3d place = TgMatrix3d::translation(frame.eye.asVector());
    unsigned column = 0;
    for (TgVector3d const & axis : {frame.right, frame.up, frame.back}) {
        place.entry(0, column, axis.x * c_scale + 0.0); // no -0
        place.entry(1, column, axis.y * c_scale + 0.0);
        place.entry(2, column, axis.z * c_scale + 0.0);
        ++column;
    }
    m_cameras.push_back({add(0), camera, place});
}

// Nodes come after those above them, so the last hears first.
void GltfNodes::noteSourcesBelow() {
    for (std::size_t i = m_nodes.size() - 1; i > 0; --i) {
        Node const & node = m_nodes[i];
        Node & above = m_nodes[node.parent];
        if (node.source || node.hasSourceBelow) above.hasSourceBelow = true;
    }
}

Json GltfNodes::place(Node const & node) const {
    Json object;
    if (node.split != c_none) {
        Split const & split = m_splits[node.split];
        if (!node.placed) {
            object["matrix"] = json(split.inner);
            return object;
        }
        object["translation"] = json(split.way);
        object["rotation"] = split.rotation;
        object["scale"] = json(split.scale);
    } else if (node.placed) {
        TgMatrix3d const & map = *node.placed->transform();
        if (isShift(map))
            object["translation"] = {map.entry(0, 3), map.entry(1, 3), map.entry(2, 3)};
        else
            object["matrix"] = json(map);
    }
    return object;
}

void GltfNodes::addFacts(NodeFacts const & facts, Json & object) {
    if (!facts.name.empty()) object["name"] = Text::toUtf8(facts.name);
    Json extras = json(facts.values);
    if (Json measures = json(facts.measures); !measures.empty())
        extras["massProperties"] = std::move(measures);
    if (!extras.empty()) object["extras"] = std::move(extras);
}

bool GltfNodes::write(TgMatrix3d const & root, std::vector<GltfView> const & views,
                      INodeFacts * facts, std::uint64_t mostBytes, JsonList & list) {
    noteSourcesBelow();
    auto camera = m_cameras.begin();
    for (std::uint32_t i = 0; i < m_nodes.size(); ++i) {
        Node const & node = m_nodes[i];
        Json object = place(node);
        if (i == 0) {
            object["name"] = "Document";
            object["matrix"] = json(root);
        }
        if (camera != m_cameras.end() && camera->node == i) {
            if (!views[camera->camera].name.empty())
                object["name"] = Text::toUtf8(views[camera->camera].name);
            object["matrix"] = json(camera->place);
            object["camera"] = camera->camera;
            ++camera;
        }
        if (facts && node.source)
            addFacts(facts->facts(*node.source, !node.hasSourceBelow), object);
        if (node.mesh != c_none) object["mesh"] = node.mesh;
        for (std::uint32_t child = node.first; child != c_none; child = m_nodes[child].next)
            object["children"].push_back(child);
        if (object.is_null()) object = Json::object();
        list.add(object);
        if (list.length() > mostBytes) return false;
    }
    return true;
}

} // namespace Vn::Picture
