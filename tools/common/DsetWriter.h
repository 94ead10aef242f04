#ifndef ZEPHRIN2D_TOOLS_DSETWRITER_H
#define ZEPHRIN2D_TOOLS_DSETWRITER_H

#include <cstring>
#include <map>
#include <stdint.h>
#include <string>
#include <vector>

/// Builds a dataset in memory: records are reserved by offset, pointer
/// fields are set to offsets and remembered for the relink file.
class DsetWriter
{
public:
    DsetWriter();

    /// Reserves zeroed bytes, 4-byte aligned; returns their offset.
    uint32_t reserve(size_t bytes);
    /// A NUL-terminated copy of text (shared between equal strings).
    uint32_t addString(const std::string& text);

    template <class T> void put(uint32_t offset, const T& value)
    {
        memcpy(&mBytes[offset], &value, sizeof(T));
    }
    /// Writes a pointer field: target is an offset in the dataset, 0 for null.
    void setPointer(uint32_t fieldOffset, uint32_t target);
    void setRoot(uint32_t offset);

    const std::vector<uint8_t>& bytes() const { return mBytes; }
    const std::vector<uint32_t>& relinks() const { return mRelinks; }
    bool write(const std::string& dsetPath, const std::string& relinkPath, std::string& error) const;

private:
    std::vector<uint8_t> mBytes;
    std::vector<uint32_t> mRelinks;
    std::map<std::string, uint32_t> mStrings;
};

#endif
