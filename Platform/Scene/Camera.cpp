#include "Platform/Scene/Camera.h"

#include <tbb/spin_rw_mutex.h>

#include "Platform/DataModel/EntityChange.h"
#include "Platform/DataModel/GeometryMetaTypes.h"
#include "Platform/DataModel/MemberSet.h"
#include "Platform/DataModel/MetaType.h"
#include "Platform/DataModel/Segment.h"

namespace Vn::Scene {

class CameraMetaType : public EntityMetaType {
public:
    CameraMetaType()
        : EntityMetaType("Scene", Camera::s_metaTypeId(), "CameraMetaType", 0,
                         Entity::s_metaTypeId(), TypeConcrete) {}

private:
    void onMigratingMemberSet(Entity * entity, unsigned, MemberSet * set) override {
        set->initialize(entity, "Camera");
        static_cast<Camera *>(entity)->initializeMemberSet(set);
    }
    StrongRef<Entity> onCreateEntity(Segment * segment, unsigned long long id) override {
        return StrongRef<Entity>(new Camera(segment, id));
    }
    std::size_t onInstanceSize() const override { return sizeof(Camera); }
};

namespace {

CameraMetaType s_cameraMetaType;

template <class Value>
void store(Camera & camera, Value & stored, Value const & value) {
    if (!(stored != value)) return;
    EntityChange const change(&camera, DataChange::TransactDirect, DataChange::ChangeValue,
                              DataChange::TimingPreAndPost, nullptr, true);
    stored = value;
}

} // namespace

std::string Camera::s_metaTypeId() { return "F0C5C2D4-8F0E-4E5B-9C35-1B0D4A7C6E21"; }
EntityMetaType * Camera::s_metaType() { return &s_cameraMetaType; }
EntityMetaType * Camera::onMetaType() const { return s_metaType(); }

void * Camera::queryMTInterface(MetaType const * type) {
    return type == s_metaType() ? this : Entity::queryMTInterface(type);
}

StrongRefCreator<Camera> Camera::make(Segment * segment) {
    if (!segment) return nullptr;
    StrongRefCreator<Camera> made(new Camera(segment));
    made->postCreation(DataChange::TransactDirect);
    return made;
}

Camera::Camera(Segment * segment) : Identified(segment) { initializeMemberSetIfNeeded(); }
Camera::Camera(Segment * segment, unsigned long long id) : Identified(segment, id) {
    initializeMemberSetIfNeeded();
}

void Camera::initializeMemberSetIfNeeded() {
    MemberSet * const set = s_metaType()->memberSet(c_latestVersion);
    tbb::spin_rw_mutex_v3::scoped_lock lock(set->mutex(), false);
    if (set->initialized()) return;
    if (!lock.upgrade_to_writer() && set->initialized()) return;
    try {
        set->initialize(this, "Camera");
        initializeMemberSet(set);
    } catch (...) {
        set->clear();
        throw;
    }
}

void Camera::initializeMemberSet(MemberSet * set) {
    set->addNewMember("position", &m_position, "TgPoint3d", TgPoint3dMetaType::get(), nullptr,
                      nullptr);
    set->addNewMember("target", &m_target, "TgPoint3d", TgPoint3dMetaType::get(), nullptr, nullptr);
    set->addNewMember("up", &m_up, "TgVector3d", TgVector3dMetaType::get(), nullptr, nullptr);
    MemberMetaType * const number = IntrinsicMetaType<double>::get();
    set->addNewMember("extentsWidth", &m_extentsWidth, "double", number, nullptr, nullptr);
    set->addNewMember("extentsHeight", &m_extentsHeight, "double", number, nullptr, nullptr);
}

void Camera::position(TgPoint3d const & position) { store(*this, m_position, position); }
void Camera::target(TgPoint3d const & target) { store(*this, m_target, target); }
void Camera::up(TgVector3d const & up) { store(*this, m_up, up); }
void Camera::extentsWidth(double width) { store(*this, m_extentsWidth, width); }
void Camera::extentsHeight(double height) { store(*this, m_extentsHeight, height); }

std::wstring Camera::onToString() const { return L"Camera (base " + Entity::onToString() + L")"; }

} // namespace Vn::Scene
