// The functions of OpenGL 3.3 that pictures are drawn with.

#ifndef VN_PLATFORM_PICTURE_GLINTERNAL_H
#define VN_PLATFORM_PICTURE_GLINTERNAL_H

#include <GL/glcorearb.h>

#include "Platform/Base/LocalizedText.h"
#include "Platform/Base/Status.h"
#include "Platform/Picture/DeviceInternal.h"

namespace Vn::Picture {

// clang-format off
#define VN_GL_FUNCTIONS(F) \
    F(PFNGLATTACHSHADERPROC, AttachShader) \
    F(PFNGLBINDBUFFERPROC, BindBuffer) \
    F(PFNGLBINDFRAMEBUFFERPROC, BindFramebuffer) \
    F(PFNGLBINDRENDERBUFFERPROC, BindRenderbuffer) \
    F(PFNGLBINDVERTEXARRAYPROC, BindVertexArray) \
    F(PFNGLBLENDFUNCPROC, BlendFunc) \
    F(PFNGLBLITFRAMEBUFFERPROC, BlitFramebuffer) \
    F(PFNGLBUFFERDATAPROC, BufferData) \
    F(PFNGLCHECKFRAMEBUFFERSTATUSPROC, CheckFramebufferStatus) \
    F(PFNGLCLEARCOLORPROC, ClearColor) \
    F(PFNGLCLEARPROC, Clear) \
    F(PFNGLCOMPILESHADERPROC, CompileShader) \
    F(PFNGLCREATEPROGRAMPROC, CreateProgram) \
    F(PFNGLCREATESHADERPROC, CreateShader) \
    F(PFNGLDELETEBUFFERSPROC, DeleteBuffers) \
    F(PFNGLDELETEFRAMEBUFFERSPROC, DeleteFramebuffers) \
    F(PFNGLDELETEPROGRAMPROC, DeleteProgram) \
    F(PFNGLDELETERENDERBUFFERSPROC, DeleteRenderbuffers) \
    F(PFNGLDELETESHADERPROC, DeleteShader) \
    F(PFNGLDELETEVERTEXARRAYSPROC, DeleteVertexArrays) \
    F(PFNGLDEPTHMASKPROC, DepthMask) \
    F(PFNGLDISABLEPROC, Disable) \
    F(PFNGLDRAWELEMENTSPROC, DrawElements) \
    F(PFNGLENABLEPROC, Enable) \
    F(PFNGLENABLEVERTEXATTRIBARRAYPROC, EnableVertexAttribArray) \
    F(PFNGLFRAMEBUFFERRENDERBUFFERPROC, FramebufferRenderbuffer) \
    F(PFNGLGENBUFFERSPROC, GenBuffers) \
    F(PFNGLGENFRAMEBUFFERSPROC, GenFramebuffers) \
    F(PFNGLGENRENDERBUFFERSPROC, GenRenderbuffers) \
    F(PFNGLGENVERTEXARRAYSPROC, GenVertexArrays) \
    F(PFNGLGETERRORPROC, GetError) \
    F(PFNGLGETPROGRAMIVPROC, GetProgramiv) \
    F(PFNGLGETUNIFORMLOCATIONPROC, GetUniformLocation) \
    F(PFNGLLINKPROGRAMPROC, LinkProgram) \
    F(PFNGLPIXELSTOREIPROC, PixelStorei) \
    F(PFNGLPOLYGONOFFSETPROC, PolygonOffset) \
    F(PFNGLREADPIXELSPROC, ReadPixels) \
    F(PFNGLRENDERBUFFERSTORAGEMULTISAMPLEPROC, RenderbufferStorageMultisample) \
    F(PFNGLSHADERSOURCEPROC, ShaderSource) \
    F(PFNGLUNIFORM1FPROC, Uniform1f) \
    F(PFNGLUNIFORM4FPROC, Uniform4f) \
    F(PFNGLUNIFORMMATRIX4FVPROC, UniformMatrix4fv) \
    F(PFNGLUSEPROGRAMPROC, UseProgram) \
    F(PFNGLVERTEXATTRIBPOINTERPROC, VertexAttribPointer) \
    F(PFNGLVIEWPORTPROC, Viewport)
// clang-format on

// As OpenGL names them, without "gl".
struct Gl {
#define VN_GL_FUNCTION(type, name) type name = nullptr;
    VN_GL_FUNCTIONS(VN_GL_FUNCTION)
#undef VN_GL_FUNCTION

    // Finds them all, or tells the first that is missing.
    [[nodiscard]] Status load(Device const & device) {
#define VN_GL_FUNCTION(type, name)                                                                 \
    name = reinterpret_cast<type>(device.function("gl" #name));                                    \
    if (!name)                                                                                     \
        return Status(StatusUnsupported, "draw the picture", {},                                   \
                      localized("there is no %1%", "gl" #name));
        VN_GL_FUNCTIONS(VN_GL_FUNCTION)
#undef VN_GL_FUNCTION
        return Status::success();
    }
};

#undef VN_GL_FUNCTIONS

} // namespace Vn::Picture

#endif
