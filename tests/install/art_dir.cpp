// Prints where the installed platform finds its own art.
#include <SystemData.h>

#include <cstdio>

int main()
{
    std::printf("%s\n", CSystemData::Instance()->GetLibraryArtDirectory().c_str());
    return 0;
}
