#include "DsetWriter.h"

#include "OutputSet.h"
#include "Paths.h"

#include <Dataset.h>

#include <cerrno>
#include <cstdio>

DsetWriter::DsetWriter() : mBytes(CDataset::kHeaderSize, 0)
{
    const uint32_t magic = CDataset::kMagic;
    const uint32_t version = CDataset::kVersion;
    put(0, magic);
    put(4, version);
}

uint32_t DsetWriter::reserve(size_t bytes)
{
    const size_t offset = (mBytes.size() + 3) & ~size_t(3);
    mBytes.resize(offset + ((bytes + 3) & ~size_t(3)), 0);
    return static_cast<uint32_t>(offset);
}

uint32_t DsetWriter::addString(const std::string& text)
{
    std::map<std::string, uint32_t>::const_iterator found = mStrings.find(text);
    if (found != mStrings.end())
        return found->second;
    const uint32_t offset = reserve(text.size() + 1);
    memcpy(&mBytes[offset], text.c_str(), text.size() + 1);
    mStrings[text] = offset;
    return offset;
}

void DsetWriter::setPointer(uint32_t fieldOffset, uint32_t target)
{
    put(fieldOffset, target);
    if (target != 0)
        mRelinks.push_back(fieldOffset);
}

void DsetWriter::setRoot(uint32_t offset) { put(8, offset); }

bool DsetWriter::write(const std::string& dsetPath, const std::string& relinkPath, std::string& error) const
{
    // One set: the relink file first, the dataset last, so the old pair stays until the new one is whole.
    OutputSet out;
    const std::string relinkTemp = out.open(directoryOf(dsetPath)) ? out.add(relinkPath) : std::string();
    const std::string dsetTemp = relinkTemp.empty() ? std::string() : out.add(dsetPath);
    if (dsetTemp.empty()) {
        error = out.error();
        return false;
    }
    FILE* f = fopen(relinkTemp.c_str(), "wb");
    if (!f || (!mRelinks.empty() && fwrite(mRelinks.data(), 4, mRelinks.size(), f) != mRelinks.size()) ||
        fclose(f) != 0) {
        error = relinkPath + ": cannot be written: " + strerror(errno);
        return false;
    }
    f = fopen(dsetTemp.c_str(), "wb");
    if (!f || fwrite(mBytes.data(), 1, mBytes.size(), f) != mBytes.size() || fclose(f) != 0) {
        error = dsetPath + ": cannot be written: " + strerror(errno);
        return false;
    }
    if (!out.commit()) {
        error = out.error();
        return false;
    }
    return true;
}
