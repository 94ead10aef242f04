#include "PeerGLCount.h"

#include <EGL/egl.h>
#include <GLES2/gl2.h>
#include <dlfcn.h>
#include <string.h>

namespace PeerGLCount {

namespace {

tCounters gCounters = {0, 0, 0};

typedef void* (*tDlsym)(void*, const char*);
typedef void (*tDrawArrays)(GLenum, GLint, GLsizei);
typedef void (*tDrawElements)(GLenum, GLsizei, GLenum, const void*);
typedef void (*tBufferData)(GLenum, GLsizeiptr, const void*, GLenum);
typedef void (*tBufferSubData)(GLenum, GLintptr, GLsizeiptr, const void*);
typedef void* (*tGetProcAddress)(const char*);

tDrawArrays gDrawArrays;
tDrawElements gDrawElements;
tBufferData gBufferData;
tBufferSubData gBufferSubData;
tGetProcAddress gGetProcAddress;

tDlsym realDlsym()
{
    static tDlsym real = reinterpret_cast<tDlsym>(dlvsym(RTLD_NEXT, "dlsym", "GLIBC_2.34"));
    if (!real)
        real = reinterpret_cast<tDlsym>(dlvsym(RTLD_NEXT, "dlsym", "GLIBC_2.2.5"));
    return real;
}

void countedDrawArrays(GLenum mode, GLint first, GLsizei count)
{
    ++gCounters.drawCalls;
    gDrawArrays(mode, first, count);
}

void countedDrawElements(GLenum mode, GLsizei count, GLenum type, const void* indices)
{
    ++gCounters.drawCalls;
    gDrawElements(mode, count, type, indices);
}

void countedBufferData(GLenum target, GLsizeiptr size, const void* data, GLenum usage)
{
    gCounters.uploadBytes += data ? size : 0;
    gBufferData(target, size, data, usage);
}

void countedBufferSubData(GLenum target, GLintptr offset, GLsizeiptr size, const void* data)
{
    gCounters.uploadBytes += size;
    gBufferSubData(target, offset, size, data);
}

void* wrap(const char* name, void* real);

void* countedGetProcAddress(const char* name) { return wrap(name, gGetProcAddress(name)); }

void* wrap(const char* name, void* real)
{
    if (!real || !name)
        return real;
    if (!strcmp(name, "glDrawArrays")) {
        gDrawArrays = reinterpret_cast<tDrawArrays>(real);
        real = reinterpret_cast<void*>(&countedDrawArrays);
    } else if (!strcmp(name, "glDrawElements")) {
        gDrawElements = reinterpret_cast<tDrawElements>(real);
        real = reinterpret_cast<void*>(&countedDrawElements);
    } else if (!strcmp(name, "glBufferData")) {
        gBufferData = reinterpret_cast<tBufferData>(real);
        real = reinterpret_cast<void*>(&countedBufferData);
    } else if (!strcmp(name, "glBufferSubData")) {
        gBufferSubData = reinterpret_cast<tBufferSubData>(real);
        real = reinterpret_cast<void*>(&countedBufferSubData);
    } else if (!strcmp(name, "eglGetProcAddress")) {
        gGetProcAddress = reinterpret_cast<tGetProcAddress>(real);
        real = reinterpret_cast<void*>(&countedGetProcAddress);
    } else {
        return real;
    }
    ++gCounters.wrappedLookups;
    return real;
}

} // namespace

tCounters counters() { return gCounters; }
void resetCounters()
{
    gCounters.drawCalls = 0;
    gCounters.uploadBytes = 0;
}

} // namespace PeerGLCount

extern "C" void* dlsym(void* handle, const char* name)
{
    void* f = PeerGLCount::realDlsym()(handle, name);
    // RTLD_NEXT and RTLD_DEFAULT lookups are the link-time recorder's own.
    if (handle == RTLD_NEXT || handle == RTLD_DEFAULT)
        return f;
    return PeerGLCount::wrap(name, f);
}
