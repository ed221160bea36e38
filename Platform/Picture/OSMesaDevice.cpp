#include <array>

#include <GL/osmesa.h>

#include "Platform/Base/LocalizedText.h"
#include "Platform/Base/OS.h"
#include "Platform/Picture/DeviceInternal.h"

namespace Vn::Picture {

namespace {

constexpr char c_operation[] = "draw the picture";

// The library is loaded with the first picture, since it brings a compiler along, and stays.
class OSMesaDevice final : public Device {
public:
    Status load() {
        OS::Module module;
        Status status;
        for (char const * const name : {"libOSMesa.so.8", "libOSMesa.so.6"}) {
            status = module.loadLibrary(name);
            if (status) break;
        }
        if (!status)
            return Status(StatusUnsupported, c_operation, {},
                          localized("the library that draws, libOSMesa, isn't installed (%1%)",
                                    status.cause()));
        auto const create = reinterpret_cast<decltype(&OSMesaCreateContextAttribs)>(
            module.symbol("OSMesaCreateContextAttribs"));
        m_destroy = reinterpret_cast<decltype(m_destroy)>(module.symbol("OSMesaDestroyContext"));
        m_makeCurrent =
            reinterpret_cast<decltype(m_makeCurrent)>(module.symbol("OSMesaMakeCurrent"));
        m_function = reinterpret_cast<decltype(m_function)>(module.symbol("OSMesaGetProcAddress"));
        // What it has made may refer to it until the process ends.
        module.keep();
        if (!create || !m_destroy || !m_makeCurrent || !m_function)
            return Status(StatusUnsupported, c_operation, {}, localized("libOSMesa is too old"));
        static constexpr int c_attributes[] = {OSMESA_FORMAT,
                                               OSMESA_RGBA,
                                               OSMESA_DEPTH_BITS,
                                               0,
                                               OSMESA_PROFILE,
                                               OSMESA_CORE_PROFILE,
                                               OSMESA_CONTEXT_MAJOR_VERSION,
                                               3,
                                               OSMESA_CONTEXT_MINOR_VERSION,
                                               3,
                                               0};
        m_context = create(c_attributes, nullptr);
        if (!m_context)
            return Status(StatusUnsupported, c_operation, {},
                          localized("libOSMesa has no OpenGL 3.3 to draw with"));
        return Status::success();
    }
    ~OSMesaDevice() override {
        if (m_context) m_destroy(m_context);
    }

    Status makeCurrent() override {
        // Pictures are drawn into memory of OpenGL itself.
        if (m_makeCurrent(m_context, m_pixel.data(), GL_UNSIGNED_BYTE, 1, 1))
            return Status::success();
        return Status(StatusFailed, c_operation, {},
                      localized("libOSMesa doesn't take its own context"));
    }
    void * function(char const * name) const override {
        return reinterpret_cast<void *>(m_function(name));
    }

private:
    decltype(&OSMesaDestroyContext) m_destroy = nullptr;
    decltype(&OSMesaMakeCurrent) m_makeCurrent = nullptr;
    decltype(&OSMesaGetProcAddress) m_function = nullptr;
    OSMesaContext m_context = nullptr;
    std::array<unsigned char, 4> m_pixel{};
};

} // namespace

Device::~Device() = default;

Status Device::open(std::unique_ptr<Device> & device) {
    auto made = std::make_unique<OSMesaDevice>();
    if (Status const status = made->load(); !status) return status;
    device = std::move(made);
    return Status::success();
}

} // namespace Vn::Picture
