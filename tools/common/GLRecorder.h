#ifndef ZEPHRIN2D_TOOLS_GLRECORDER_H
#define ZEPHRIN2D_TOOLS_GLRECORDER_H

#include <stddef.h>
#include <stdint.h>
#include <string>
#include <vector>

/// Records GL calls on their way to the real driver.
///
/// Linked into an executable that exports its symbols (-rdynamic), it
/// defines the GL entry points the library uses; each counts or records the
/// call and forwards to the real function. Counters always run; the call
/// list fills only between start() and stop().
namespace GLRecorder {

struct tCall
{
    std::string name;
    std::vector<long> args;   ///< enums, names, counts and fixed-point values as given
    unsigned int buffer;      ///< for buffer uploads: the buffer bound to the target
    long offset;              ///< for buffer uploads: first byte written
    long size;                ///< for buffer uploads: bytes written
};

void start();
void stop();
void clear();
bool isRecording();
const std::vector<tCall>& calls();

/// Recorded calls of one name.
std::vector<tCall> callsNamed(const std::string& name);
size_t count(const std::string& name);

/// Running totals, whether recording or not.
struct tCounters
{
    unsigned long drawCalls;      ///< glDrawArrays + glDrawElements
    unsigned long uploadBytes;    ///< glBufferData + glBufferSubData bytes
    unsigned long bufferUploads;  ///< glBufferData + glBufferSubData calls
    unsigned long textureUploads; ///< glTexImage2D + glCompressedTexImage2D calls
};
tCounters counters();
void resetCounters();

/// Makes the GPU look as if it took no compressed texture format.
void setHideCompressedFormats(bool hide);

} // namespace GLRecorder

#endif
