#ifndef ZEPHRIN2D_CHECK_DSETCHECK_H
#define ZEPHRIN2D_CHECK_DSETCHECK_H

#include "ContentModel.h"
#include "Diagnostics.h"

#include <boost/shared_ptr.hpp>
#include <set>
#include <stdint.h>
#include <string>

class CDataset;
class CDsetReader;
struct tDsetSpriteCel;
class ContentCheck;

/// Checks an actor or costume dataset: loads it as the platform does (and
/// reports why it is refused), walks its records as the loaders do, and
/// compares the pointer fields met with those the relink file lists.
/// A place in a dataset is reported as line 1, column = byte offset + 1.
class DsetCheck
{
public:
    DsetCheck(Diagnostics& report, ContentCheck& content);
    ~DsetCheck();

    /// Checks the dataset at path; role is the kind the options give it as
    /// (Costume for --costume, Actor for --actor, else Unknown).
    void check(const std::string& path, ContentModel::FileKind role);

private:
    void error(uint32_t offset, const std::string& message);
    void error(const void* at, const std::string& message);
    void warning(const void* at, const std::string& message);
    /// The value of a pointer field, noted as met; 0 (with an error) when the relink file misses it.
    uint32_t pointer(const uint32_t& field);
    /// Whether pointer() refused the field.
    bool refused(const uint32_t& field) const;
    const char* string(const uint32_t& field, const char* what);
    /// Loads the dataset as the platform does; false (reported) when it is refused.
    bool load();
    void checkActor(const void* data);
    /// The billboards and avatar pieces of cel i, numbered on from those before.
    void checkChildren(const tDsetSpriteCel& cel, uint32_t i, unsigned int& billboards, unsigned int& pieces);
    void checkCostume(const void* data);

    Diagnostics& mReport;
    ContentCheck& mContent;
    std::string mPath;
    std::string mRelinkPath;
    std::string mDirectory;
    boost::shared_ptr<CDataset> mDataset;
    CDsetReader* mReader;
    std::set<uint32_t> mRelink;
    std::set<uint32_t> mFields;
    bool mWalkComplete;
};

#endif
