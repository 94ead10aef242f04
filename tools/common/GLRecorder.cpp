#include "GLRecorder.h"

#include <GLES/gl.h>
#include <GLES/glext.h>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>

namespace GLRecorder {

namespace {

struct tState
{
    bool recording = false;
    bool hideCompressed = false;
    std::vector<tCall> calls;
    tCounters counters = {0, 0, 0, 0};
    unsigned int arrayBuffer = 0;
    unsigned int elementBuffer = 0;
};

tState& state()
{
    static tState s;
    return s;
}

void* realFunction(const char* name)
{
    void* f = dlsym(RTLD_NEXT, name);
    if (!f) {
        static void* gles = dlopen("libGLESv1_CM.so.1", RTLD_NOW | RTLD_GLOBAL);
        f = gles ? dlsym(gles, name) : 0;
    }
    if (!f) {
        fprintf(stderr, "GLRecorder: no real %s\n", name);
        abort();
    }
    return f;
}

void record(const char* name, std::initializer_list<long> args, unsigned int buffer = 0, long offset = 0,
            long size = 0)
{
    if (!state().recording)
        return;
    tCall c;
    c.name = name;
    c.args.assign(args.begin(), args.end());
    c.buffer = buffer;
    c.offset = offset;
    c.size = size;
    state().calls.push_back(c);
}

unsigned int boundBuffer(GLenum target)
{
    return target == GL_ELEMENT_ARRAY_BUFFER ? state().elementBuffer : state().arrayBuffer;
}

} // namespace

void start() { state().recording = true; }
void stop() { state().recording = false; }
void clear() { state().calls.clear(); }
bool isRecording() { return state().recording; }
const std::vector<tCall>& calls() { return state().calls; }

std::vector<tCall> callsNamed(const std::string& name)
{
    std::vector<tCall> out;
    for (const tCall& c : state().calls)
        if (c.name == name)
            out.push_back(c);
    return out;
}

size_t count(const std::string& name)
{
    size_t n = 0;
    for (const tCall& c : state().calls)
        n += (c.name == name);
    return n;
}

tCounters counters() { return state().counters; }
void resetCounters() { state().counters = tCounters{0, 0, 0, 0}; }
void setHideCompressedFormats(bool hide) { state().hideCompressed = hide; }

} // namespace GLRecorder

using GLRecorder::record;
using GLRecorder::state;

#define REAL(ret, name, params) \
    static ret(GL_APIENTRY * real) params = reinterpret_cast<ret(GL_APIENTRY*) params>(GLRecorder::realFunction(#name))

extern "C" {

GL_API void GL_APIENTRY glDrawElements(GLenum mode, GLsizei count, GLenum type, const void* indices)
{
    REAL(void, glDrawElements, (GLenum, GLsizei, GLenum, const void*));
    ++state().counters.drawCalls;
    record("glDrawElements", {(long)mode, (long)count, (long)type, (long)(intptr_t)indices},
           state().elementBuffer);
    real(mode, count, type, indices);
}

GL_API void GL_APIENTRY glDrawArrays(GLenum mode, GLint first, GLsizei count)
{
    REAL(void, glDrawArrays, (GLenum, GLint, GLsizei));
    ++state().counters.drawCalls;
    record("glDrawArrays", {(long)mode, (long)first, (long)count});
    real(mode, first, count);
}

GL_API void GL_APIENTRY glBufferData(GLenum target, GLsizeiptr size, const void* data, GLenum usage)
{
    REAL(void, glBufferData, (GLenum, GLsizeiptr, const void*, GLenum));
    state().counters.uploadBytes += data ? size : 0;
    ++state().counters.bufferUploads;
    record("glBufferData", {(long)target, (long)size, (long)usage}, GLRecorder::boundBuffer(target), 0,
           data ? (long)size : 0);
    real(target, size, data, usage);
}

GL_API void GL_APIENTRY glBufferSubData(GLenum target, GLintptr offset, GLsizeiptr size, const void* data)
{
    REAL(void, glBufferSubData, (GLenum, GLintptr, GLsizeiptr, const void*));
    state().counters.uploadBytes += size;
    ++state().counters.bufferUploads;
    record("glBufferSubData", {(long)target, (long)offset, (long)size}, GLRecorder::boundBuffer(target),
           (long)offset, (long)size);
    real(target, offset, size, data);
}

GL_API void GL_APIENTRY glBindBuffer(GLenum target, GLuint buffer)
{
    REAL(void, glBindBuffer, (GLenum, GLuint));
    if (target == GL_ELEMENT_ARRAY_BUFFER)
        state().elementBuffer = buffer;
    else
        state().arrayBuffer = buffer;
    record("glBindBuffer", {(long)target, (long)buffer});
    real(target, buffer);
}

GL_API void GL_APIENTRY glGenBuffers(GLsizei n, GLuint* buffers)
{
    REAL(void, glGenBuffers, (GLsizei, GLuint*));
    real(n, buffers);
    record("glGenBuffers", {(long)n, n > 0 ? (long)buffers[0] : 0L});
}

GL_API void GL_APIENTRY glDeleteBuffers(GLsizei n, const GLuint* buffers)
{
    REAL(void, glDeleteBuffers, (GLsizei, const GLuint*));
    record("glDeleteBuffers", {(long)n, n > 0 ? (long)buffers[0] : 0L});
    real(n, buffers);
}

GL_API void GL_APIENTRY glBindTexture(GLenum target, GLuint texture)
{
    REAL(void, glBindTexture, (GLenum, GLuint));
    record("glBindTexture", {(long)target, (long)texture});
    real(target, texture);
}

GL_API void GL_APIENTRY glGenTextures(GLsizei n, GLuint* textures)
{
    REAL(void, glGenTextures, (GLsizei, GLuint*));
    real(n, textures);
    record("glGenTextures", {(long)n, n > 0 ? (long)textures[0] : 0L});
}

GL_API void GL_APIENTRY glDeleteTextures(GLsizei n, const GLuint* textures)
{
    REAL(void, glDeleteTextures, (GLsizei, const GLuint*));
    record("glDeleteTextures", {(long)n, n > 0 ? (long)textures[0] : 0L});
    real(n, textures);
}

GL_API void GL_APIENTRY glTexImage2D(GLenum target, GLint level, GLint internalformat, GLsizei width,
                                     GLsizei height, GLint border, GLenum format, GLenum type,
                                     const void* pixels)
{
    REAL(void, glTexImage2D, (GLenum, GLint, GLint, GLsizei, GLsizei, GLint, GLenum, GLenum, const void*));
    ++state().counters.textureUploads;
    record("glTexImage2D", {(long)target, (long)level, (long)internalformat, (long)width, (long)height,
                            (long)border, (long)format, (long)type});
    real(target, level, internalformat, width, height, border, format, type, pixels);
}

GL_API void GL_APIENTRY glCompressedTexImage2D(GLenum target, GLint level, GLenum internalformat, GLsizei width,
                                               GLsizei height, GLint border, GLsizei imageSize, const void* data)
{
    REAL(void, glCompressedTexImage2D, (GLenum, GLint, GLenum, GLsizei, GLsizei, GLint, GLsizei, const void*));
    ++state().counters.textureUploads;
    record("glCompressedTexImage2D", {(long)target, (long)level, (long)internalformat, (long)width,
                                      (long)height, (long)border, (long)imageSize});
    real(target, level, internalformat, width, height, border, imageSize, data);
}

GL_API void GL_APIENTRY glEnable(GLenum cap)
{
    REAL(void, glEnable, (GLenum));
    record("glEnable", {(long)cap});
    real(cap);
}

GL_API void GL_APIENTRY glDisable(GLenum cap)
{
    REAL(void, glDisable, (GLenum));
    record("glDisable", {(long)cap});
    real(cap);
}

GL_API void GL_APIENTRY glEnableClientState(GLenum array)
{
    REAL(void, glEnableClientState, (GLenum));
    record("glEnableClientState", {(long)array});
    real(array);
}

GL_API void GL_APIENTRY glDisableClientState(GLenum array)
{
    REAL(void, glDisableClientState, (GLenum));
    record("glDisableClientState", {(long)array});
    real(array);
}

GL_API void GL_APIENTRY glVertexPointer(GLint size, GLenum type, GLsizei stride, const void* pointer)
{
    REAL(void, glVertexPointer, (GLint, GLenum, GLsizei, const void*));
    record("glVertexPointer", {(long)size, (long)type, (long)stride, (long)(intptr_t)pointer});
    real(size, type, stride, pointer);
}

GL_API void GL_APIENTRY glTexCoordPointer(GLint size, GLenum type, GLsizei stride, const void* pointer)
{
    REAL(void, glTexCoordPointer, (GLint, GLenum, GLsizei, const void*));
    record("glTexCoordPointer", {(long)size, (long)type, (long)stride, (long)(intptr_t)pointer});
    real(size, type, stride, pointer);
}

GL_API void GL_APIENTRY glColorPointer(GLint size, GLenum type, GLsizei stride, const void* pointer)
{
    REAL(void, glColorPointer, (GLint, GLenum, GLsizei, const void*));
    record("glColorPointer", {(long)size, (long)type, (long)stride, (long)(intptr_t)pointer});
    real(size, type, stride, pointer);
}

GL_API void GL_APIENTRY glColor4ub(GLubyte r, GLubyte g, GLubyte b, GLubyte a)
{
    REAL(void, glColor4ub, (GLubyte, GLubyte, GLubyte, GLubyte));
    record("glColor4ub", {(long)r, (long)g, (long)b, (long)a});
    real(r, g, b, a);
}

GL_API void GL_APIENTRY glPointSizex(GLfixed size)
{
    REAL(void, glPointSizex, (GLfixed));
    record("glPointSizex", {(long)size});
    real(size);
}

GL_API void GL_APIENTRY glLineWidthx(GLfixed width)
{
    REAL(void, glLineWidthx, (GLfixed));
    record("glLineWidthx", {(long)width});
    real(width);
}

GL_API void GL_APIENTRY glTexEnvi(GLenum target, GLenum pname, GLint param)
{
    REAL(void, glTexEnvi, (GLenum, GLenum, GLint));
    record("glTexEnvi", {(long)target, (long)pname, (long)param});
    real(target, pname, param);
}

GL_API void GL_APIENTRY glTexEnvx(GLenum target, GLenum pname, GLfixed param)
{
    REAL(void, glTexEnvx, (GLenum, GLenum, GLfixed));
    record("glTexEnvx", {(long)target, (long)pname, (long)param});
    real(target, pname, param);
}

GL_API void GL_APIENTRY glPushMatrix(void)
{
    REAL(void, glPushMatrix, (void));
    record("glPushMatrix", {});
    real();
}

GL_API void GL_APIENTRY glPopMatrix(void)
{
    REAL(void, glPopMatrix, (void));
    record("glPopMatrix", {});
    real();
}

GL_API void GL_APIENTRY glTranslatex(GLfixed x, GLfixed y, GLfixed z)
{
    REAL(void, glTranslatex, (GLfixed, GLfixed, GLfixed));
    record("glTranslatex", {(long)x, (long)y, (long)z});
    real(x, y, z);
}

GL_API void GL_APIENTRY glRotatex(GLfixed angle, GLfixed x, GLfixed y, GLfixed z)
{
    REAL(void, glRotatex, (GLfixed, GLfixed, GLfixed, GLfixed));
    record("glRotatex", {(long)angle, (long)x, (long)y, (long)z});
    real(angle, x, y, z);
}

GL_API void GL_APIENTRY glScalex(GLfixed x, GLfixed y, GLfixed z)
{
    REAL(void, glScalex, (GLfixed, GLfixed, GLfixed));
    record("glScalex", {(long)x, (long)y, (long)z});
    real(x, y, z);
}

GL_API void GL_APIENTRY glClear(GLbitfield mask)
{
    REAL(void, glClear, (GLbitfield));
    record("glClear", {(long)mask});
    real(mask);
}

GL_API void GL_APIENTRY glAlphaFuncx(GLenum func, GLfixed ref)
{
    REAL(void, glAlphaFuncx, (GLenum, GLfixed));
    record("glAlphaFuncx", {(long)func, (long)ref});
    real(func, ref);
}

GL_API void GL_APIENTRY glBlendFunc(GLenum sfactor, GLenum dfactor)
{
    REAL(void, glBlendFunc, (GLenum, GLenum));
    record("glBlendFunc", {(long)sfactor, (long)dfactor});
    real(sfactor, dfactor);
}

GL_API void GL_APIENTRY glGetIntegerv(GLenum pname, GLint* data)
{
    REAL(void, glGetIntegerv, (GLenum, GLint*));
    if (state().hideCompressed && pname == GL_NUM_COMPRESSED_TEXTURE_FORMATS) {
        *data = 0;
        return;
    }
    if (state().hideCompressed && pname == GL_COMPRESSED_TEXTURE_FORMATS)
        return;
    real(pname, data);
}

} // extern "C"
