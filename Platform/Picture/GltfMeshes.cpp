#include "Platform/Picture/GltfMeshesInternal.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <functional>
#include <limits>
#include <utility>

namespace Vn::Picture {

using Vrx::Devices::BoundingBox;
using Vrx::Devices::SimpleMesh;
using Vrx::Devices::VertexBuffer;

namespace {

// What glTF calls them.
enum : int {
    c_vertexTarget = 34962,
    c_indexTarget = 34963,
    c_unsignedShort = 5123,
    c_unsignedInt = 5125,
    c_float = 5126,
    c_triangles = 4
};
constexpr std::size_t c_vector = 3 * sizeof(float);

static_assert(std::endian::native == std::endian::little, "glTF is little-endian");

template <class Number>
void append(std::string & bytes, std::vector<Number> const & numbers) {
    bytes.append(reinterpret_cast<char const *>(numbers.data()), numbers.size() * sizeof(Number));
}

// As linear light, in the double with the fewest digits that is the same float: the last bits of a
// power differ between systems.
double linear(float channel) {
    double const value = static_cast<double>(channel);
    double const light = value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    char digits[64];
    char const * const end =
        std::to_chars(digits, digits + sizeof digits, static_cast<float>(light)).ptr;
    double rounded = 0;
    std::from_chars(digits, end, rounded);
    return rounded;
}

// "#FF8000", as colors are written for people.
std::string nameOf(Color const & color) {
    constexpr char c_digits[] = "0123456789ABCDEF";
    std::string name = "#";
    for (float const channel : {color.red, color.green, color.blue}) {
        auto const level = static_cast<unsigned>(std::lround(channel * 255));
        name += c_digits[level / 16];
        name += c_digits[level % 16];
    }
    return name;
}

Json vectorAccessor(std::size_t begin, std::size_t count) {
    Json accessor;
    accessor["bufferView"] = 0;
    if (begin > 0) accessor["byteOffset"] = begin;
    accessor["componentType"] = static_cast<int>(c_float);
    accessor["count"] = count;
    accessor["type"] = "VEC3";
    return accessor;
}

} // namespace

// Gathers the triangles, and the vertices in the order in which these name them first.
bool GltfMeshes::pack(SimpleMesh const & mesh) {
    VertexBuffer const & vertices = *mesh.vertexBuffer();
    if (m_places.size() < vertices.vertices()) m_places.resize(vertices.vertices());
    if (++m_turn == 0) {
        m_places.assign(m_places.size(), Place());
        m_turn = 1;
    }
    m_packed.positions.clear();
    m_packed.indices.clear();
    m_used.clear();
    for (std::size_t i = 0; i < mesh.triangles(); ++i) {
        std::array<std::uint32_t, 3> const triangle = mesh.triangle(i);
        bool exists = true;
        for (std::uint32_t const vertex : triangle) exists = exists && vertex < vertices.vertices();
        if (!exists) continue;
        for (std::uint32_t const vertex : triangle) {
            Place & place = m_places[vertex];
            if (place.turn != m_turn) {
                place = {m_turn, static_cast<std::uint32_t>(m_used.size())};
                m_used.push_back(vertex);
                for (float const number : vertices.position(vertex)) {
                    if (!std::isfinite(number)) return false;
                    m_packed.positions.push_back(number);
                }
            }
            m_packed.indices.push_back(place.place);
        }
    }
    if (m_packed.indices.empty()) return false;
    packNormals(vertices);
    m_packed.vertexBytes.clear();
    append(m_packed.vertexBytes, m_packed.positions);
    append(m_packed.vertexBytes, m_packed.normals);
    packIndices();
    return true;
}

void GltfMeshes::packNormals(VertexBuffer const & vertices) {
    m_packed.normals.clear();
    if (!vertices.format().hasNormal()) return;
    for (std::uint32_t const vertex : m_used) {
        auto const [x, y, z] = vertices.normal(vertex);
        double const length =
            std::hypot(static_cast<double>(x), static_cast<double>(y), static_cast<double>(z));
        if (!std::isfinite(length) || length == 0) {
            m_packed.normals.clear();
            return;
        }
        for (float const number : {x, y, z})
            m_packed.normals.push_back(static_cast<float>(static_cast<double>(number) / length));
    }
}

// In two bytes each where all fit, but for the number that ends strips; up to a multiple of four.
void GltfMeshes::packIndices() {
    m_packed.indexBytes.clear();
    if (m_used.size() >= std::numeric_limits<std::uint16_t>::max()) {
        append(m_packed.indexBytes, m_packed.indices);
        return;
    }
    for (std::uint32_t const index : m_packed.indices) {
        m_packed.indexBytes += static_cast<char>(index & 0xFF);
        m_packed.indexBytes += static_cast<char>(index >> 8);
    }
    m_packed.indexBytes.resize((m_packed.indexBytes.size() + 3) / 4 * 4);
}

bool GltfMeshes::isPacked(Numbers const & numbers) const {
    return numbers.hasNormals == !m_packed.normals.empty() &&
           std::string_view(m_vertices).substr(numbers.vertexBegin, numbers.vertexBytes) ==
               m_packed.vertexBytes &&
           std::string_view(m_indices).substr(numbers.indexBegin, numbers.indexBytes) ==
               m_packed.indexBytes;
}

std::uint32_t GltfMeshes::addPacked() {
    Numbers numbers;
    numbers.vertexBegin = m_vertices.size();
    numbers.vertexBytes = m_packed.vertexBytes.size();
    numbers.indexBegin = m_indices.size();
    numbers.indexBytes = m_packed.indexBytes.size();
    numbers.hasNormals = !m_packed.normals.empty();
    std::vector<float> const & positions = m_packed.positions;
    for (std::size_t i = 0; i < positions.size(); i += 3) {
        BoundingBox const point =
            BoundingBox::of({positions[i], positions[i + 1], positions[i + 2]});
        if (i == 0)
            numbers.box = point;
        else
            numbers.box.add(point);
    }
    BoundingBox const & box = numbers.box;
    std::size_t const count = positions.size() / 3;
    Json accessor = vectorAccessor(numbers.vertexBegin, count);
    accessor["min"] = {box.low.x, box.low.y, box.low.z};
    accessor["max"] = {box.high.x, box.high.y, box.high.z};
    numbers.positions = m_accessors.add(accessor);
    if (numbers.hasNormals)
        numbers.normals =
            m_accessors.add(vectorAccessor(numbers.vertexBegin + count * c_vector, count));
    bool const isNarrow = count < std::numeric_limits<std::uint16_t>::max();
    accessor = Json();
    accessor["bufferView"] = 1;
    if (numbers.indexBegin > 0) accessor["byteOffset"] = numbers.indexBegin;
    accessor["componentType"] = static_cast<int>(isNarrow ? c_unsignedShort : c_unsignedInt);
    accessor["count"] = m_packed.indices.size();
    accessor["type"] = "SCALAR";
    numbers.indices = m_accessors.add(accessor);
    m_vertices += m_packed.vertexBytes;
    m_indices += m_packed.indexBytes;
    m_numbers.push_back(numbers);
    return static_cast<std::uint32_t>(m_numbers.size() - 1);
}

std::uint32_t GltfMeshes::numbersOf(SimpleMesh const & mesh) {
    auto const [known, isNew] = m_known.try_emplace(&mesh, c_none);
    if (!isNew || !pack(mesh)) return known->second;
    std::hash<std::string_view> const hash;
    std::size_t const key = hash(m_packed.vertexBytes) * 31 + hash(m_packed.indexBytes);
    std::uint32_t & last = m_byHash.try_emplace(key, c_none).first->second;
    for (std::uint32_t i = last; i != c_none; i = m_numbers[i].sameHash)
        if (isPacked(m_numbers[i])) return known->second = i;
    known->second = addPacked();
    m_numbers.back().sameHash = std::exchange(last, known->second);
    return known->second;
}

std::uint32_t GltfMeshes::materialOf(Color const & color) {
    auto const [known, isNew] =
        m_materialOf.try_emplace({color.red, color.green, color.blue, color.opacity});
    if (!isNew) return known->second;
    Json material;
    material["name"] = nameOf(color);
    Json & surface = material["pbrMetallicRoughness"];
    surface["baseColorFactor"] = {linear(color.red), linear(color.green), linear(color.blue),
                                  static_cast<double>(color.opacity)};
    surface["metallicFactor"] = 0;
    if (color.opacity < 1) material["alphaMode"] = "BLEND";
    material["doubleSided"] = true;
    return known->second = m_materials.add(material);
}

std::uint32_t GltfMeshes::meshOf(std::uint32_t numbers, Color const & color) {
    std::uint32_t const material = materialOf(color);
    Numbers & all = m_numbers[numbers];
    if (all.material == c_none) {
        all.material = material;
        all.mesh = addMesh(all, material);
    }
    if (all.material == material) return all.mesh;
    auto const [known, isNew] = m_meshOf.try_emplace({numbers, material});
    if (isNew) known->second = addMesh(all, material);
    return known->second;
}

std::uint32_t GltfMeshes::addMesh(Numbers const & numbers, std::uint32_t material) {
    Json primitive;
    primitive["attributes"]["POSITION"] = numbers.positions;
    if (numbers.hasNormals) primitive["attributes"]["NORMAL"] = numbers.normals;
    primitive["indices"] = numbers.indices;
    primitive["material"] = material;
    primitive["mode"] = static_cast<int>(c_triangles);
    Json mesh;
    mesh["primitives"].push_back(std::move(primitive));
    return m_meshes.add(mesh);
}

void GltfMeshes::appendTo(std::string & object) const {
    m_meshes.appendTo(object, "meshes");
    m_materials.appendTo(object, "materials");
    m_accessors.appendTo(object, "accessors");
    JsonList views;
    for (bool const isIndex : {false, true}) {
        if (m_vertices.empty()) break;
        Json view;
        view["buffer"] = 0;
        if (isIndex) view["byteOffset"] = m_vertices.size();
        view["byteLength"] = isIndex ? m_indices.size() : m_vertices.size();
        if (!isIndex) view["byteStride"] = c_vector;
        view["target"] = static_cast<int>(isIndex ? c_indexTarget : c_vertexTarget);
        views.add(view);
    }
    views.appendTo(object, "bufferViews");
}

} // namespace Vn::Picture
