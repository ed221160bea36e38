#include "Platform/DataModel/GeometryMetaTypes.h"

#include <new>
#include <type_traits>

#include "Platform/Base/Shared.h"

namespace Vn {

namespace {

template <class T>
constexpr char const * c_name = std::is_same_v<T, TgPoint3d> ? "TgPoint3d" : "TgVector3d";
template <class T>
constexpr char const * c_metaTypeName =
    std::is_same_v<T, TgPoint3d> ? "TgPoint3dMetaType" : "TgVector3dMetaType";

// Made while the library loads, so that documents find the kinds by name.
[[maybe_unused]] MemberMetaType const * const s_kinds[] = {TgPoint3dMetaType::get(),
                                                           TgVector3dMetaType::get()};

} // namespace

template <class T>
GeometryMetaType<T> * GeometryMetaType<T>::get() {
    static constinit Shared<GeometryMetaType<T>> s_type;
    return &s_type.get([] { return new GeometryMetaType<T>; });
}

template <class T>
GeometryMetaType<T>::GeometryMetaType()
    : ValueMetaType(c_name<T>, c_metaTypeName<T>, 0, c_name<T>, {}) {}

template <class T>
std::size_t GeometryMetaType<T>::doSizeInBytes(VisitorContext const &) const {
    return sizeof(T);
}

template <class T>
void * GeometryMetaType<T>::doConstruct(void * memory, VisitorContext const &) const {
    return memory ? new (memory) T : nullptr;
}

template <class T>
void * GeometryMetaType<T>::doConstruct() const {
    return new T;
}

template <class T>
void GeometryMetaType<T>::doDestruct(void * value) const {
    delete static_cast<T *>(value);
}

template <class T>
std::wstring GeometryMetaType<T>::doToString(void * value, VisitorContext const &) const {
    auto const & v = *static_cast<T const *>(value);
    return L"(" + std::to_wstring(v.x) + L", " + std::to_wstring(v.y) + L", " +
           std::to_wstring(v.z) + L")";
}

template <class T>
void * GeometryMetaType<T>::doQueryMTInterface(void * value) const {
    return value;
}

template <class T>
void GeometryMetaType<T>::onMigratingMemberSet(void * value, unsigned, MemberSet * set,
                                               VisitorContext const &) const {
    auto & v = *static_cast<T *>(value);
    set->initialize(value, c_name<T>);
    MemberMetaType * const number = IntrinsicMetaType<double>::get();
    set->addNewMember("x", &v.x, "double", number, nullptr, nullptr);
    set->addNewMember("y", &v.y, "double", number, nullptr, nullptr);
    set->addNewMember("z", &v.z, "double", number, nullptr, nullptr);
}

template class GeometryMetaType<TgPoint3d>;
template class GeometryMetaType<TgVector3d>;

} // namespace Vn
