#ifndef ZEPHRIN2D_TOOLS_OUTPUTSET_H
#define ZEPHRIN2D_TOOLS_OUTPUTSET_H

#include <string>
#include <utility>
#include <vector>

/// The files a tool writes into one folder, put in place as one set.
///
/// Each file is written to a temporary file in the folder (add() gives its
/// name), then commit() syncs them all to disk, renames them into place in
/// the order they were added (the last rename is the commit point: add the
/// file that names the others last) and syncs the folder; only then are the
/// previous set's files that the new one no longer uses removed. A failure
/// puts back what was replaced; a run killed while renaming leaves a journal
/// that the next run into the folder completes before anything else.
///
/// The folder is locked (flock on ".zephrin2d-lock") from open() until the
/// set is destroyed, so two runs into one folder take turns. No output may
/// replace an input given to protect(). The set owns its temporary files:
/// those not committed are removed when it is destroyed.
///
/// ZEPHRIN2D_OUTPUT_FAULT="fail:N" or "kill:N" makes the rename after N
/// renames fail, or kills the run there (for the fault-injection tests).
class OutputSet
{
public:
    OutputSet();
    ~OutputSet();

    /// A file read by the run: no output may replace it.
    void protect(const std::string& input);
    /// Makes the folder when missing, locks it (waiting for another run),
    /// finishes a set a killed run left there and removes stray temporaries.
    bool open(const std::string& dir);
    /// The temporary file to write finalPath to (a name in the open folder);
    /// empty, with error(), when finalPath is an input or a folder.
    std::string add(const std::string& finalPath);
    /// A file of the previous set, removed after the commit unless the new set has it.
    void retire(const std::string& path);
    /// Puts the set in place; false with error() naming the file, the old set then intact.
    bool commit();

    /// "FILE: what went wrong", and its two parts.
    std::string error() const { return mErrorFile.empty() ? std::string() : mErrorFile + ": " + mError; }
    const std::string& errorFile() const { return mErrorFile; }
    const std::string& errorMessage() const { return mError; }
    const std::string& dir() const { return mDir; }
    /// The name of the journal and lock files, which a folder of outputs may hold.
    static bool isOwnFile(const std::string& name);

private:
    OutputSet(const OutputSet&);
    OutputSet& operator=(const OutputSet&);

    bool fail(const std::string& file, const std::string& what);
    bool isInput(const std::string& path) const;
    bool writeJournal();
    bool renameAll();
    void rollBack(size_t renamed);
    void recover();

    struct tFile
    {
        std::string temp;
        std::string final;
        std::string backup;  ///< the replaced file, kept until the commit
    };

    std::string mDir;
    std::string mRun;
    int mLock = -1;
    std::vector<tFile> mFiles;
    std::vector<std::string> mRetired;
    std::vector<std::pair<unsigned long long, unsigned long long> > mInputs;  ///< device, inode
    std::string mError;
    std::string mErrorFile;
    bool mCommitted = false;
};

#endif
