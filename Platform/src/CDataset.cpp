#include "Dataset.h"
#include "DebugMPI.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

const uint64_t kBelow4GiB = 0x100000000ull;
// No handheld content comes near this; a larger file is refused before any memory is spent on it.
const uint32_t kMaxDatasetMiB = 256;
const uint64_t kMaxDatasetBytes = uint64_t(kMaxDatasetMiB) << 20;

uint32_t readLE32(const uint8_t* p)
{
    return uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24;
}

void writeLE32(uint8_t* p, uint32_t v)
{
    p[0] = uint8_t(v);
    p[1] = uint8_t(v >> 8);
    p[2] = uint8_t(v >> 16);
    p[3] = uint8_t(v >> 24);
}

void fail(const char* format, const char* path, unsigned a = 0, unsigned b = 0)
{
    std::string full = std::string("LoadDataset: %s: ") + format + "\n";
    Tadwick::Vell::CDebugMPI().DebugOut(1, full.c_str(), path, a, b);
}

/// A file's bytes; not zeroed first, as every one of them is read over.
struct tFileBytes
{
    std::unique_ptr<uint8_t[]> bytes;
    size_t length = 0;

    size_t size() const { return length; }
    const uint8_t& operator[](size_t i) const { return bytes[i]; }
    const uint8_t* data() const { return bytes.get(); }
};

// Reads a whole file; false when it cannot be read, with tooLarge set when it is over the limit.
bool readFile(const char* path, tFileBytes& file, bool& tooLarge)
{
    tooLarge = false;
    int fd = open(path, O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return false;
    struct stat info;
    if (fstat(fd, &info) != 0 || !S_ISREG(info.st_mode) || uint64_t(info.st_size) > kMaxDatasetBytes) {
        tooLarge = S_ISREG(info.st_mode) && uint64_t(info.st_size) > kMaxDatasetBytes;
        close(fd);
        return false;
    }
    const size_t wanted = size_t(info.st_size);
    file.bytes.reset(new uint8_t[wanted]);
    size_t done = 0;
    while (done < wanted) {
        ssize_t n = read(fd, file.bytes.get() + done, wanted - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            break;
        done += size_t(n);
    }
    close(fd);
    file.length = done;
    return done == wanted;
}

// Anonymous memory whose every byte has an address below 4 GiB, or null.
void* mapLow(size_t bytes)
{
#if defined(__x86_64__)
    void* p = mmap(0, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_32BIT, -1, 0);
    if (p == MAP_FAILED)
        return 0;
    if (uint64_t(uintptr_t(p)) + bytes > kBelow4GiB) {
        munmap(p, bytes);
        return 0;
    }
    return p;
#else
    // Nothing asks this kernel for low memory but a hint, and a hint already
    // taken (by the dataset loaded before) is placed anywhere: walk the hints
    // up through the low 4 GiB until one lands there.
    const uint64_t step = (uint64_t(bytes) + 0xFFFFF) & ~uint64_t(0xFFFFF);
    for (uint64_t at = 0x10000000; at + bytes <= kBelow4GiB; at += step) {
        void* p = mmap(reinterpret_cast<void*>(uintptr_t(at)), bytes, PROT_READ | PROT_WRITE,
                       MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (p == MAP_FAILED)
            return 0;
        if (uint64_t(uintptr_t(p)) + bytes <= kBelow4GiB)
            return p;
        munmap(p, bytes);
    }
    return 0;
#endif
}

} // namespace

CDataset::CDataset() : data(0), base(0), size(0), mMapped(0) {}

CDataset::~CDataset()
{
    if (base)
        munmap(base, mMapped);
}

bool CDataset::contains(const void* p, size_t bytes) const
{
    if (!base || !p)
        return false;
    uintptr_t start = uintptr_t(base);
    uintptr_t at = uintptr_t(p);
    return at >= start && bytes <= size && at - start <= size - bytes;
}

boost::shared_ptr<CDataset> LoadDataset(const char* path, const char* relinkPath)
{
    // Callers test the result; an exception (memory running out) must not reach them.
    try {
        return LoadDatasetOrThrow(path, relinkPath);
    } catch (const std::exception&) {
        fail("not enough memory to load the dataset", path ? path : "(null)");
        return boost::shared_ptr<CDataset>();
    }
}

boost::shared_ptr<CDataset> LoadDatasetOrThrow(const char* path, const char* relinkPath)
{
    boost::shared_ptr<CDataset> none;
    if (!path || !relinkPath) {
        fail("no dataset or relink path given", "(null)");
        return none;
    }
    tFileBytes file;
    bool tooLarge = false;
    if (!readFile(path, file, tooLarge)) {
        if (tooLarge)
            fail("larger than the %u MiB a dataset may hold", path, kMaxDatasetMiB);
        else
            fail("could not read the dataset", path);
        return none;
    }
    const uint32_t size = uint32_t(file.size());
    if (size < CDataset::kHeaderSize) {
        fail("%u bytes, shorter than the %u-byte header", path, size, CDataset::kHeaderSize);
        return none;
    }
    if (readLE32(&file[0]) != CDataset::kMagic) {
        fail("bad magic number (not a dataset)", path);
        return none;
    }
    uint32_t version = readLE32(&file[4]);
    if (version != CDataset::kVersion) {
        fail("format version %u, expected %u", path, version, CDataset::kVersion);
        return none;
    }
    uint32_t root = readLE32(&file[8]);
    if (root < CDataset::kHeaderSize || root >= size || root % 4 != 0) {
        fail("root offset %u outside the records or unaligned (file of %u bytes)", path, root, size);
        return none;
    }

    tFileBytes relinkBytes;
    if (!readFile(relinkPath, relinkBytes, tooLarge)) {
        if (tooLarge)
            fail("larger than the %u MiB a relink file may hold", relinkPath, kMaxDatasetMiB);
        else
            fail("could not read the relink file", relinkPath);
        return none;
    }
    if (relinkBytes.size() % 4 != 0) {
        fail("relink file of %u bytes, not a whole number of offsets", relinkPath, unsigned(relinkBytes.size()));
        return none;
    }
    std::vector<uint32_t> relink(relinkBytes.size() / 4);
    for (size_t i = 0; i < relink.size(); ++i)
        relink[i] = readLE32(&relinkBytes[i * 4]);

    // One bit per 4-byte field: a field listed twice would be fixed up twice.
    std::vector<uint8_t> listed(size / 32 + 1, 0);
    for (size_t i = 0; i < relink.size(); ++i) {
        uint32_t at = relink[i];
        if (at > size - 4) {
            fail("relink offset %u outside the dataset", path, at);
            return none;
        }
        if (at % 4 != 0) {
            fail("relink offset %u not 4-byte aligned", path, at);
            return none;
        }
        if (at < CDataset::kHeaderSize) {
            fail("relink offset %u inside the header", path, at);
            return none;
        }
        uint32_t target = readLE32(&file[at]);
        if (target >= size) {
            fail("pointer at offset %u holds %u, outside the dataset", path, at, target);
            return none;
        }
        const uint8_t bit = uint8_t(1u << (at / 4 % 8));
        if (listed[at / 32] & bit) {
            fail("relink offset %u listed more than once", path, at);
            return none;
        }
        listed[at / 32] |= bit;
    }

    void* memory = mapLow(size);
    if (!memory) {
        fail("no memory below 4 GiB for %u bytes", path, size);
        return none;
    }
    boost::shared_ptr<CDataset> dataset(new CDataset);
    dataset->base = memory;
    dataset->size = size;
    dataset->mMapped = size;
    uint8_t* bytes = static_cast<uint8_t*>(memory);
    memcpy(bytes, file.data(), size);
    const uint32_t address = uint32_t(uintptr_t(memory));
    for (size_t i = 0; i < relink.size(); ++i) {
        uint32_t value = readLE32(bytes + relink[i]);
        if (value != 0)
            writeLE32(bytes + relink[i], value + address);
    }
    dataset->data = bytes + root;
    return dataset;
}

