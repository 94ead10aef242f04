// Datasets and their relink files through the platform's LoadDataset.
#include "FuzzSupport.h"

#include <Dataset.h>

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    Fuzz::quiet();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string path = Fuzz::writeDataset("fuzz", data, size);
    const std::string relink = Fuzz::scratchDir() + "/fuzz.relinkBin";
    boost::shared_ptr<CDataset> dataset = LoadDataset(path.c_str(), relink.c_str());
    if (dataset) {
        // Everything the loader vouches for must be readable.
        volatile unsigned sum = 0;
        const unsigned char* bytes = static_cast<const unsigned char*>(dataset->base);
        for (uint32_t i = 0; i < dataset->size; ++i)
            sum += bytes[i];
        sum += dataset->contains(dataset->data, 4);
        (void)sum;
    }
    return 0;
}
