#include "Platform/DataModel/MemberMetaType.h"

#include <utility>

#include "Platform/Base/Shared.h"

namespace Vn {

namespace {

// The kinds by name.  Never deleted: kinds of modules that unload later still take themselves out.
struct Kinds {
    std::mutex m_mutex;
    std::map<std::string, MemberMetaType *, std::less<>> m_kinds;

    static Kinds & get() {
        static constinit Shared<Kinds> s_kinds;
        return s_kinds.get([] { return new Kinds; });
    }
};

class VectorMetaType : public MemberMetaType {
public:
    VectorMetaType() : MemberMetaType(EMemberKind::Vector, "Vector", {}, "VectorMetaType", 0, {}) {}
    ~VectorMetaType() override = default;
};

class GlobalizedStringMetaType : public MemberMetaType {
public:
    GlobalizedStringMetaType()
        : MemberMetaType(EMemberKind::GlobalizedString, "GlobalizedString", {},
                         "GlobalizedStringMetaType", 0, {}) {}
    ~GlobalizedStringMetaType() override = default;
};

template <class T>
struct Intrinsic;
#define VN_INTRINSIC(type, kind, kindText)                                                         \
    template <>                                                                                    \
    struct Intrinsic<type> {                                                                       \
        static constexpr EMemberKind c_kind = EMemberKind::kind;                                   \
        static constexpr char const * c_name = kindText;                                           \
    }
VN_INTRINSIC(bool, Bool, "bool");
VN_INTRINSIC(int, Int, "int");
VN_INTRINSIC(unsigned int, UnsignedInt, "unsigned int");
VN_INTRINSIC(long long, Int64, "long long");
VN_INTRINSIC(unsigned long long, UnsignedInt64, "unsigned long long");
VN_INTRINSIC(float, Float, "float");
VN_INTRINSIC(double, Double, "double");
VN_INTRINSIC(std::string, String, "std::string");
VN_INTRINSIC(std::wstring, WideString, "std::wstring");
#undef VN_INTRINSIC

// Makes the kinds that the platform brings, so that `find` finds them before anybody asked for one.
void makeOwnKinds() {
    static bool const s_made = [] {
        IntrinsicMetaType<bool>::get();
        IntrinsicMetaType<int>::get();
        IntrinsicMetaType<unsigned int>::get();
        IntrinsicMetaType<long long>::get();
        IntrinsicMetaType<unsigned long long>::get();
        IntrinsicMetaType<float>::get();
        IntrinsicMetaType<double>::get();
        IntrinsicMetaType<std::string>::get();
        IntrinsicMetaType<std::wstring>::get();
        StrongRefMetaType::get();
        PassiveRefMetaType::get();
        new VectorMetaType;
        new GlobalizedStringMetaType;
        return true;
    }();
    static_cast<void>(s_made);
}

} // namespace

MemberMetaType::MemberMetaType(EMemberKind kind, std::string kindName, std::string id,
                               std::string name, unsigned version, std::string baseIdentifier)
    : MetaType(std::move(id), std::move(name), version, std::move(baseIdentifier)), m_kind(kind),
      m_kindName(std::move(kindName)) {
    Kinds & kinds = Kinds::get();
    std::lock_guard const guard(kinds.m_mutex);
    kinds.m_kinds.emplace(m_kindName, this);
}

MemberMetaType::~MemberMetaType() {
    Kinds & kinds = Kinds::get();
    std::lock_guard const guard(kinds.m_mutex);
    auto const i = kinds.m_kinds.find(m_kindName);
    if (i != kinds.m_kinds.end() && i->second == this) kinds.m_kinds.erase(i);
}

MemberMetaType * MemberMetaType::find(std::string_view name) {
    makeOwnKinds();
    Kinds & kinds = Kinds::get();
    std::lock_guard const guard(kinds.m_mutex);
    auto const i = kinds.m_kinds.find(name);
    return i == kinds.m_kinds.end() ? nullptr : i->second;
}

template <class T>
IntrinsicMetaType<T>::IntrinsicMetaType()
    : MemberMetaType(Intrinsic<T>::c_kind, Intrinsic<T>::c_name, {}, "IntrinsicMetaType", 0, {}) {}

template <class T>
IntrinsicMetaType<T> * IntrinsicMetaType<T>::get() {
    static constinit Shared<IntrinsicMetaType<T>> s_type;
    return &s_type.get([] { return new IntrinsicMetaType<T>; });
}

template class IntrinsicMetaType<bool>;
template class IntrinsicMetaType<int>;
template class IntrinsicMetaType<unsigned int>;
template class IntrinsicMetaType<long long>;
template class IntrinsicMetaType<unsigned long long>;
template class IntrinsicMetaType<float>;
template class IntrinsicMetaType<double>;
template class IntrinsicMetaType<std::string>;
template class IntrinsicMetaType<std::wstring>;

StrongRefMetaType::StrongRefMetaType()
    : MemberMetaType(EMemberKind::StrongRef, "StrongRef", {}, "StrongRefMetaType", 0, {}) {}
StrongRefMetaType * StrongRefMetaType::get() {
    static constinit Shared<StrongRefMetaType> s_type;
    return &s_type.get([] { return new StrongRefMetaType; });
}

PassiveRefMetaType::PassiveRefMetaType()
    : MemberMetaType(EMemberKind::PassiveRef, "PassiveRef", {}, "PassiveRefMetaType", 0, {}) {}
PassiveRefMetaType * PassiveRefMetaType::get() {
    static constinit Shared<PassiveRefMetaType> s_type;
    return &s_type.get([] { return new PassiveRefMetaType; });
}

} // namespace Vn
