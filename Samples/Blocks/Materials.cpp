#include "Samples/Blocks/Materials.h"

#include <fstream>
#include <iterator>
#include <utility>

#include "Platform/Base/PathInfo.h"
#include "Platform/Base/Text.h"
#include "Platform/Base/XMLNode.h"
#include "Samples/Blocks/Texts.h"

namespace Vn::Blocks {

namespace {

constexpr char c_operation[] = "read the materials";

struct Table {
    std::vector<Material> materials;
    Status status;
};

bool readChannel(XMLNode const & node, char const * name, float & channel) {
    double value = 0;
    if (!node.attribute(name).read(value)) return false;
    channel = static_cast<float>(value);
    return true;
}

bool readMaterial(XMLNode const & node, std::vector<Material> & materials) {
    std::string key = Text::toUtf8(node.attribute("key").text());
    std::wstring const name = node.attribute("name").text();
    double density = 0;
    Color color;
    if (key.empty() || name.empty() || !node.attribute("density").read(density) || !(density > 0) ||
        !readChannel(node, "red", color.red) || !readChannel(node, "green", color.green) ||
        !readChannel(node, "blue", color.blue))
        return false;
    materials.emplace_back(std::move(key), name, density, color);
    return true;
}

Table readTable() {
    Table table;
    std::wstring file = PathInfo::rootDirectory(true);
    file += L"Server/Blocks/Materials.xml";
    std::string const subject = Text::toUtf8(file);
    std::ifstream in(PathInfo::fromText(file), std::ios::binary);
    std::string const bytes{std::istreambuf_iterator<char>(in), {}};
    if (!in) {
        table.status = Status::io(c_operation, subject);
        return table;
    }
    XMLNode root;
    table.status = XMLNode::parse(bytes, subject, root, c_operation);
    for (XMLNode node = root.firstChild(); node && table.status; node = node.nextSibling())
        if (!readMaterial(node, table.materials))
            table.status = Status::corrupt(c_operation, subject, "a material is incomplete");
    if (!table.status) table.materials.clear();
    return table;
}

Table const & table() {
    static Table const s_table = readTable();
    return s_table;
}

} // namespace

Material::Material(std::string key, std::wstring const & name, double density, Color const & color)
    : PhysicalMaterial(name, density), m_key(std::move(key)), m_color(color) {}

std::vector<Material> const & materials() { return table().materials; }

Status const & materialsStatus() { return table().status; }

Material const * findMaterial(std::string_view key) {
    for (Material const & material : materials())
        if (material.key() == key) return &material;
    return nullptr;
}

std::wstring shownMaterial(PhysicalMaterial const & material) { return tr(material.name().c_str()); }

} // namespace Vn::Blocks
