#ifndef ZEPHRIN2D_PLATFORM_DATASET_H
#define ZEPHRIN2D_PLATFORM_DATASET_H

#include <boost/shared_ptr.hpp>
#include <stddef.h>
#include <stdint.h>

/// A dataset loaded below 4 GiB with its pointer fields fixed up.
///
/// File layout (little-endian): a 12-byte header, magic "ZDST", format
/// version 1, then the offset of the root record; the records follow. Every
/// pointer field holds an offset from the start of the file (0 means null)
/// and is listed in the companion relink file, a plain array of 32-bit
/// offsets. Loading adds the base address to each listed field.
class CDataset
{
public:
    enum { kMagic = 0x5453445A, kVersion = 1, kHeaderSize = 12 };

    ~CDataset();

    void* data;          ///< the root record
    void* base;          ///< the first byte of the file in memory
    uint32_t size;       ///< bytes of the file

    /// Whether [p, p + bytes) lies inside the loaded file.
    bool contains(const void* p, size_t bytes) const;

private:
    friend boost::shared_ptr<CDataset> LoadDatasetOrThrow(const char*, const char*);
    CDataset();
    size_t mMapped;
};

/// Loads "path" with the relink file "relinkPath". Returns an empty reference,
/// after a message on the debug service, when either file cannot be read or
/// the dataset breaks a rule (bad header, relink offset outside the file or
/// unaligned, pointer outside the file, no memory below 4 GiB, a file over
/// the size limit, checked before it is read). No exception leaves it.
boost::shared_ptr<CDataset> LoadDataset(const char* path, const char* relinkPath);
/// LoadDataset's work; lets std::bad_alloc through.
boost::shared_ptr<CDataset> LoadDatasetOrThrow(const char* path, const char* relinkPath);

#endif
