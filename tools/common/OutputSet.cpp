#include "OutputSet.h"

#include "Paths.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <algorithm>
#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const char* const kLock = ".zephrin2d-lock";
const char* const kJournal = ".zephrin2d-journal";
const char* const kTempMark = ".zephrin2d-tmp-";
const char* const kOldMark = ".zephrin2d-old-";

bool syncPath(const std::string& path, bool directory)
{
    const int fd = ::open(path.c_str(), directory ? O_RDONLY | O_DIRECTORY : O_RDONLY);
    if (fd < 0)
        return false;
    // Some file systems cannot sync a folder; the files themselves are synced.
    const bool ok = fsync(fd) == 0 || (directory && (errno == EINVAL || errno == EBADF));
    close(fd);
    return ok;
}

bool exists(const std::string& path)
{
    struct stat st;
    return lstat(path.c_str(), &st) == 0;
}

bool makeDirectories(const std::string& dir)
{
    for (size_t slash = dir.find('/', 1);; slash = dir.find('/', slash + 1)) {
        const std::string part = dir.substr(0, slash);
        struct stat st;
        if (!part.empty() && stat(part.c_str(), &st) != 0 && mkdir(part.c_str(), 0777) != 0 && errno != EEXIST)
            return false;
        if (!part.empty() && stat(part.c_str(), &st) == 0 && !S_ISDIR(st.st_mode)) {
            errno = ENOTDIR;
            return false;
        }
        if (slash == std::string::npos)
            return true;
    }
}

// The fault asked for by ZEPHRIN2D_OUTPUT_FAULT: 'f' or 'k' after count renames.
struct tFault
{
    char kind = 0;
    long count = 0;
};

tFault faultFromEnvironment()
{
    tFault fault;
    const char* text = std::getenv("ZEPHRIN2D_OUTPUT_FAULT");
    char kind[8] = {0};
    if (text && std::sscanf(text, "%4[a-z]:%ld", kind, &fault.count) == 2 &&
        (std::strcmp(kind, "fail") == 0 || std::strcmp(kind, "kill") == 0))
        fault.kind = kind[0];
    return fault;
}

long gRenames = 0;

int renameWithFaults(const std::string& from, const std::string& to)
{
    static const tFault fault = faultFromEnvironment();
    if (fault.kind && gRenames == fault.count) {
        if (fault.kind == 'k')
            raise(SIGKILL);
        errno = EIO;
        return -1;
    }
    ++gRenames;
    return rename(from.c_str(), to.c_str());
}

} // namespace

OutputSet::OutputSet()
{
    // Past a file-size limit a write fails with EFBIG instead of killing the run.
    signal(SIGXFSZ, SIG_IGN);
    char run[48];
    std::snprintf(run, sizeof run, "%lx-%lx", static_cast<unsigned long>(getpid()),
                  static_cast<unsigned long>(time(0)));
    mRun = run;
}

OutputSet::~OutputSet()
{
    if (!mCommitted)
        for (const tFile& f : mFiles)
            unlink(f.temp.c_str());
    if (mLock >= 0)
        close(mLock);
}

bool OutputSet::isOwnFile(const std::string& name)
{
    return name == kLock || name == kJournal || name.find(kTempMark) != std::string::npos ||
           name.find(kOldMark) != std::string::npos;
}

void OutputSet::protect(const std::string& input)
{
    struct stat st;
    if (stat(input.c_str(), &st) == 0)
        mInputs.push_back(std::make_pair(static_cast<unsigned long long>(st.st_dev),
                                         static_cast<unsigned long long>(st.st_ino)));
}

bool OutputSet::isInput(const std::string& path) const
{
    struct stat st;
    if (stat(path.c_str(), &st) != 0)
        return false;
    for (const auto& input : mInputs)
        if (input.first == static_cast<unsigned long long>(st.st_dev) &&
            input.second == static_cast<unsigned long long>(st.st_ino))
            return true;
    return false;
}

bool OutputSet::fail(const std::string& file, const std::string& what)
{
    mErrorFile = file;
    mError = what;
    return false;
}

bool OutputSet::open(const std::string& dir)
{
    mDir = dir.empty() ? "." : dir;
    while (mDir.size() > 1 && mDir.back() == '/')
        mDir.pop_back();
    if (!makeDirectories(mDir))
        return fail(mDir, std::string("cannot make the folder: ") + std::strerror(errno));
    mLock = ::open((mDir + "/" + kLock).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    // Without a lock file (a read-only folder) the writes fail and say so.
    while (mLock >= 0 && flock(mLock, LOCK_EX) != 0 && errno == EINTR) {
    }
    recover();
    DIR* d = opendir(mDir.c_str());
    for (struct dirent* e = d ? readdir(d) : 0; e; e = readdir(d)) {
        const std::string name = e->d_name;
        if (name.find(kTempMark) != std::string::npos || name.find(kOldMark) != std::string::npos)
            unlink((mDir + "/" + name).c_str());
    }
    if (d)
        closedir(d);
    return true;
}

std::string OutputSet::add(const std::string& finalPath)
{
    const std::string name = fileNameOf(finalPath);
    const std::string final = mDir + "/" + name;
    struct stat st;
    if (name.empty() || isOwnFile(name)) {
        fail(finalPath, "not a name for an output");
        return std::string();
    }
    if (isInput(final)) {
        fail(finalPath, "is an input of this run: refused to write over it");
        return std::string();
    }
    if (lstat(final.c_str(), &st) == 0 && S_ISDIR(st.st_mode)) {
        fail(finalPath, "cannot be written: it is a folder");
        return std::string();
    }
    tFile f;
    f.temp = mDir + "/." + name + kTempMark + mRun;
    f.final = final;
    mFiles.push_back(f);
    return f.temp;
}

void OutputSet::retire(const std::string& path)
{
    mRetired.push_back(mDir + "/" + fileNameOf(path));
}

bool OutputSet::writeJournal()
{
    // What the new set has or the run reads stays.
    std::vector<std::string> retired;
    for (const std::string& r : mRetired) {
        bool kept = isInput(r);
        for (const tFile& f : mFiles)
            kept = kept || f.final == r;
        if (!kept)
            retired.push_back(r);
    }
    mRetired.swap(retired);
    std::string text;
    for (const tFile& f : mFiles)
        text += "rename\t" + fileNameOf(f.temp) + "\t" + fileNameOf(f.final) + "\t" + fileNameOf(f.backup) + "\n";
    for (const std::string& r : mRetired)
        text += "remove\t" + fileNameOf(r) + "\n";
    const std::string journal = mDir + "/" + kJournal, temp = journal + kTempMark + mRun;
    FILE* f = std::fopen(temp.c_str(), "wb");
    bool ok = f && std::fwrite(text.data(), 1, text.size(), f) == text.size();
    ok = f && std::fflush(f) == 0 && fsync(fileno(f)) == 0 && ok;
    if (f)
        ok = std::fclose(f) == 0 && ok;
    ok = ok && rename(temp.c_str(), journal.c_str()) == 0 && syncPath(mDir, true);
    if (!ok)
        unlink(temp.c_str());
    return ok || fail(journal, std::string("cannot be written: ") + std::strerror(errno));
}

bool OutputSet::renameAll()
{
    for (size_t i = 0; i < mFiles.size(); ++i)
        if (renameWithFaults(mFiles[i].temp, mFiles[i].final) != 0) {
            const int error = errno;
            rollBack(i);
            return fail(mFiles[i].final, std::string("cannot be written: ") + std::strerror(error) +
                                             "; the previous files are kept");
        }
    return true;
}

void OutputSet::rollBack(size_t renamed)
{
    while (renamed-- > 0) {
        const tFile& f = mFiles[renamed];
        if (!f.backup.empty())
            rename(f.backup.c_str(), f.final.c_str());
        else
            unlink(f.final.c_str());
    }
    for (const tFile& f : mFiles)
        if (!f.backup.empty())
            unlink(f.backup.c_str());
    unlink((mDir + "/" + kJournal).c_str());
    syncPath(mDir, true);
}

void OutputSet::recover()
{
    // Before the commit point (the last rename) the killed run's set is undone, after it finished.
    std::string text, error;
    const std::string journal = mDir + "/" + kJournal;
    if (!readTextFile(journal, text, error, 1 << 20))
        return;
    std::vector<std::vector<std::string> > entries;
    for (size_t at = 0, end; at < text.size(); at = end + 1) {
        end = std::min(text.find('\n', at), text.size());
        std::vector<std::string> field;
        for (size_t p = at, tab; p <= end; p = tab + 1) {
            tab = std::min(text.find('\t', p), end);
            const std::string name = fileNameOf(text.substr(p, tab - p));
            field.push_back(name.empty() ? name : mDir + "/" + name);
        }
        if (field.size() == 4 || field.size() == 2)
            entries.push_back(field);
    }
    bool committed = true;
    for (const std::vector<std::string>& e : entries)
        if (e.size() == 4 && !e[1].empty())
            committed = !exists(e[1]);
    for (size_t i = entries.size(); i-- > 0;) {
        const std::vector<std::string>& e = entries[i];
        if (e[1].empty() || (e.size() == 4 && e[2].empty()))
            continue;
        const bool renamed = e.size() == 4 && !exists(e[1]);
        if (renamed && !committed && !e[3].empty() && exists(e[3]))
            rename(e[3].c_str(), e[2].c_str());
        else if (renamed && !committed)
            unlink(e[2].c_str());
        if (e.size() == 4 && !e[3].empty())
            unlink(e[3].c_str());
        if (e.size() == 2 && committed)
            unlink(e[1].c_str());
    }
    syncPath(mDir, true);
    unlink(journal.c_str());
    syncPath(mDir, true);
}

bool OutputSet::commit()
{
    if (!mErrorFile.empty())
        return false;
    for (tFile& f : mFiles) {
        if (!syncPath(f.temp, false))
            return fail(f.final, std::string("cannot be written: ") + std::strerror(errno));
        if (isInput(f.final))
            return fail(f.final, "is an input of this run: refused to write over it");
        f.backup.clear();
        if (exists(f.final)) {
            const std::string backup = mDir + "/." + fileNameOf(f.final) + kOldMark + mRun;
            if (link(f.final.c_str(), backup.c_str()) == 0)
                f.backup = backup;
        }
    }
    if (!writeJournal() || !renameAll())
        return false;
    syncPath(mDir, true);
    mCommitted = true;
    for (const tFile& f : mFiles)
        if (!f.backup.empty())
            unlink(f.backup.c_str());
    for (const std::string& r : mRetired)
        unlink(r.c_str());
    unlink((mDir + "/" + kJournal).c_str());
    syncPath(mDir, true);
    return true;
}
