#include "CActor2D.h"
#include "CLoadReport.h"

#include "CDrawChunk.h"
#include "CDrawManager.h"
#include "CDsetReader.h"
#include "CSceneLoaderDset.h"
#include "CSceneLoaderJson.h"
#include "tDsetRecords.h"

#include <Dataset.h>
#include <QJN.h>
#include <algorithm>
#include <cstring>

#include <BaseUtils.h>
#include <limits>

namespace {

const char* const SOURCE = "Zephrin2D/Src/CActor2D";
// Cel offsets are 16-bit.
const unsigned int MAX_CELS = 65536;

const std::string& emptyLabelKey()
{
    static const std::string key = Glib::ustring().collate_key();
    return key;
}

} // namespace

CActor2D::CActor2D() : mCurrentCelOffset(0), mStateFlags(PLAYING | SKIPPABLE), mAudio(0)
{
    mReserved = 0;
    tActor2DAnimationStruct placeholder = {0, 0, Glib::ustring(), std::string(), Glib::ustring()};
    mCurrentAnimationIterator = mAnimationMap.insert(std::make_pair(emptyLabelKey(), placeholder)).first;
    mLastAppendedAnimation = mCurrentAnimationIterator;
}

CActor2D::CActor2D(const CActor2D& other)
    : CBaseActor(other), mCels(other.mCels), mAnimationMap(other.mAnimationMap),
      mCurrentCelOffset(other.mCurrentCelOffset), mStateFlags(other.mStateFlags), mAudio(0)
{
    mLastAppendedAnimation = repoint(other, other.mLastAppendedAnimation);
    mCurrentAnimationIterator = repoint(other, other.mCurrentAnimationIterator);
    setName(other.getName());
}

CActor2D& CActor2D::operator=(const CActor2D& other)
{
    if (this == &other)
        return *this;
    removeCurrentFrameFromDrawManager();
    CBaseActor::operator=(other);
    mCels = other.mCels;
    mAnimationMap = other.mAnimationMap;
    mLastAppendedAnimation = repoint(other, other.mLastAppendedAnimation);
    mCurrentAnimationIterator = repoint(other, other.mCurrentAnimationIterator);
    mCurrentCelOffset = other.mCurrentCelOffset;
    mStateFlags = other.mStateFlags;
    addCurrentFrameToDrawManager();
    return *this;
}

namespace {

// Names of actors loaded from named actor files, beside the actors so that
// an unnamed actor costs nothing.
std::map<const CActor2D*, Glib::ustring>& actorNames()
{
    static std::map<const CActor2D*, Glib::ustring> names;
    return names;
}

} // namespace

CActor2D::~CActor2D()
{
    if (!actorNames().empty())
        actorNames().erase(this);
}

Glib::ustring CActor2D::getName() const
{
    const std::map<const CActor2D*, Glib::ustring>::const_iterator it = actorNames().find(this);
    return it == actorNames().end() ? Glib::ustring() : it->second;
}

void CActor2D::setName(const Glib::ustring& name)
{
    if (name.empty())
        actorNames().erase(this);
    else
        actorNames()[this] = name;
}

CActor2D::tAnimationMap::iterator CActor2D::repoint(const CActor2D& other, tAnimationMap::const_iterator it)
{
    if (it == other.mAnimationMap.end())
        return mAnimationMap.end();
    return mAnimationMap.find(it->first);
}

// ---------------------------------------------------------------------------
// Playing

void CActor2D::update(int elapsed)
{
    if (hasUpdateFunction())
        callUpdateFunction(elapsed);
    if (mCels.empty())
        return;
    if (!(mStateFlags & PLAYING)) {
        mStateFlags &= ~ENDED;
        return;
    }
    int64_t sum = static_cast<int64_t>(mElapsed) + elapsed;
    if (sum > std::numeric_limits<int32_t>::max())
        sum = std::numeric_limits<int32_t>::max();
    else if (sum < std::numeric_limits<int32_t>::min())
        sum = std::numeric_limits<int32_t>::min();
    int32_t t = static_cast<int32_t>(sum);
    mElapsed = t;
    unsigned int instantCels = 0;
    for (;;) {
        const int32_t d = mCels[mCurrentCelOffset].duration;
        if (t < d || !(mStateFlags & PLAYING))
            break;
        // Time no longer passes: only a cycle of cels without duration gets here.
        if (d > 0)
            instantCels = 0;
        else if (++instantCels > mCels.size()) {
            BaseUtils::Assert(false, SOURCE, __LINE__, "CActor2D::update cels without duration loop at cel %d\n",
                              mCurrentCelOffset);
            break;
        }
        mElapsed = t - d;
        mStateFlags &= PLAYING | SKIPPABLE;
        const bool valid = isCurrentAnimationValid();
        if (!valid)
            BaseUtils::Assert(false, SOURCE, __LINE__, "CActor2D::update currentAnimation is bad\n");
        if (valid && mCurrentAnimationIterator->second.endOffset <= mCurrentCelOffset) {
            mStateFlags |= ENDED;
            // Only the done function reads it (exit operations cannot set one).
            if (hasAnimationDoneFunction())
                mDoneLabel = mCurrentAnimationIterator->first;
        }
        executeOperations(true);
        if ((mStateFlags & ENDED) && hasAnimationDoneFunction()) {
            callAnimationDoneFunction(mDoneLabel);
            if (!(mStateFlags & PLAYING))
                return;
        }
        if (!(mStateFlags & (GOTO | JUMPED))) {
            const boost::shared_ptr<CGraphicElement> self = celChangeSelf();
            removeCurrentFrameFromDrawManager(self);
            if ((mStateFlags & ENDED) && isCurrentAnimationValid() &&
                !mCurrentAnimationIterator->second.next.empty()) {
                mCurrentAnimationIterator = mAnimationMap.find(mCurrentAnimationIterator->second.nextKey);
                BaseUtils::Assert(isCurrentAnimationValid(), SOURCE, __LINE__,
                                  "CActor2D::draw mCurrentAnimationIterator == mAnimationMap.end()\n");
            }
            if (mCurrentCelOffset + 1u < mCels.size()) {
                ++mCurrentCelOffset;
                // Registered before the enter operations, so a trigger callback that jumps swaps the right chunks.
                addCurrentFrameToDrawManager(self);
                executeOperations(false);
            } else {
                stop();
                addCurrentFrameToDrawManager(self);
            }
        } else if (mStateFlags & JUMPED) {
            mStateFlags &= ~JUMPED;
            executeOperations(false);
        }
        if ((mStateFlags & (SKIPPABLE | TRIGGERED | ENDED)) != SKIPPABLE)
            break;
        t = mElapsed;
    }
    mStateFlags &= ~ENDED;
}

void CActor2D::executeOperations(bool exit)
{
    // Most cels have none: those cost no more than this look.
    const unsigned int cel = mCurrentCelOffset;
    if (cel < mCels.size() && !(exit ? mCels[cel].exitOperations : mCels[cel].enterOperations).empty())
        runOperations(exit);
}

void CActor2D::runOperations(bool exit)
{
    // Indexed, not iterated: a callback may append cels and move the lists.
    const unsigned int cel = mCurrentCelOffset;
    const size_t count = (exit ? mCels[cel].exitOperations : mCels[cel].enterOperations).size();
    for (size_t i = 0; i < count && cel < mCels.size(); ++i) {
        const tOperationList& ops = exit ? mCels[cel].exitOperations : mCels[cel].enterOperations;
        if (i >= ops.size())
            break;
        const operation op = ops[i];
        switch (op.opcode) {
        case operation::GOTO_AND_PLAY:
            mStateFlags |= PLAYING | JUMPED;
            gotoCel(op.oparg);
            break;
        case operation::GOTO_AND_STOP:
            mStateFlags = (mStateFlags & ~PLAYING) | JUMPED;
            gotoCel(op.oparg);
            break;
        case operation::TRIGGER:
            callTriggerFunction(op.oparg);
            mStateFlags |= TRIGGERED;
            break;
        case operation::STOP:
            mStateFlags &= ~PLAYING;
            break;
        default: // audio is the application's business
            break;
        }
    }
}

void CActor2D::gotoAndPlay(Glib::ustring const& label)
{
    tAnimationMap::iterator it = playableAnimation(label);
    if (it == mAnimationMap.end())
        return;
    mStateFlags = (mStateFlags & ~(JUMPED | ENDED)) | PLAYING | GOTO;
    showAnimation(it);
    executeOperations(false);
    mElapsed = 0;
}

void CActor2D::gotoAndPlay(int cel)
{
    if (!celExists(cel))
        return;
    mStateFlags = (mStateFlags & ~(JUMPED | ENDED)) | PLAYING | GOTO;
    showCel(cel);
    executeOperations(false);
    mElapsed = 0;
}

void CActor2D::gotoAndStop(Glib::ustring const& label)
{
    tAnimationMap::iterator it = playableAnimation(label);
    if (it == mAnimationMap.end())
        return;
    mStateFlags = (mStateFlags & ~(PLAYING | JUMPED)) | GOTO;
    showAnimation(it);
    executeOperations(false);
    mElapsed = 0;
}

void CActor2D::gotoAndStop(int cel)
{
    if (!celExists(cel))
        return;
    mStateFlags = (mStateFlags & ~(PLAYING | JUMPED)) | GOTO;
    showCel(cel);
    executeOperations(false);
    mElapsed = 0;
}

void CActor2D::play() { mStateFlags |= PLAYING; }
void CActor2D::stop() { mStateFlags &= ~PLAYING; }
bool CActor2D::isPlaying() const { return (mStateFlags & PLAYING) != 0; }

void CActor2D::setSkippable(bool skippable)
{
    if (skippable)
        mStateFlags |= SKIPPABLE;
    else
        mStateFlags &= ~SKIPPABLE;
}

void CActor2D::gotoCel(unsigned int cel)
{
    if (celExists(cel))
        showCel(cel);
}

void CActor2D::gotoAnimation(Glib::ustring const& label)
{
    tAnimationMap::iterator it = playableAnimation(label);
    if (it != mAnimationMap.end())
        showAnimation(it);
}

bool CActor2D::celExists(unsigned int cel)
{
    if (cel < mCels.size())
        return true;
    BaseUtils::Assert(false, SOURCE, __LINE__, "CActor2D::gotoCel celOffset %d out of bounds\n", static_cast<int>(cel));
    return false;
}

CActor2D::tAnimationMap::iterator CActor2D::playableAnimation(Glib::ustring const& label)
{
    tAnimationMap::iterator it = findAnimation(label);
    if (it == mAnimationMap.end()) {
        BaseUtils::Assert(false, SOURCE, __LINE__, "CActor2D::gotoAnimation anim %s not found\n", label.c_str());
        return it;
    }
    if (it->second.startOffset >= mCels.size()) {
        BaseUtils::Assert(false, SOURCE, __LINE__, "CActor2D::gotoAnimation currentSpriteCellOffset %d out of bounds\n",
                          static_cast<int>(it->second.startOffset));
        return mAnimationMap.end();
    }
    return it;
}

void CActor2D::showCel(unsigned int cel)
{
    const boost::shared_ptr<CGraphicElement> self = celChangeSelf();
    removeCurrentFrameFromDrawManager(self);
    mCurrentCelOffset = static_cast<unsigned short>(cel);
    findCurrentAnimation();
    addCurrentFrameToDrawManager(self);
}

void CActor2D::showAnimation(tAnimationMap::iterator it)
{
    const boost::shared_ptr<CGraphicElement> self = celChangeSelf();
    removeCurrentFrameFromDrawManager(self);
    mCurrentAnimationIterator = it;
    mCurrentCelOffset = static_cast<unsigned short>(it->second.startOffset);
    addCurrentFrameToDrawManager(self);
}

void CActor2D::findCurrentAnimation()
{
    tAnimationMap::iterator it = mAnimationMap.begin();
    for (; it != mAnimationMap.end(); ++it) {
        if (it->second.startOffset <= mCurrentCelOffset && mCurrentCelOffset <= it->second.endOffset)
            break;
    }
    mCurrentAnimationIterator = it;
    // Checked here: the report's arguments are not even passed on a cel change that finds its animation.
    if (it == mAnimationMap.end())
        BaseUtils::Assert(false, SOURCE, __LINE__, "CActor2D::findCurrentAnimation SpriteCel offset %d not found in map",
                          mCurrentCelOffset);
}

CActor2D::tAnimationMap::iterator CActor2D::findAnimation(Glib::ustring const& label)
{
    // Byte-equal labels have equal keys; comparing bytes spares building a key on every goto.
    for (tAnimationMap::iterator it = mAnimationMap.begin(); it != mAnimationMap.end(); ++it) {
        if (it->second.label.raw() == label.raw())
            return it;
    }
    return mAnimationMap.find(label.collate_key());
}

// ---------------------------------------------------------------------------
// Draw manager registration

CGraphicElement::tChunkList& CActor2D::getChunks()
{
    if (mCels.empty())
        return mChunks;
    return mCels[mCurrentCelOffset].chunks;
}

boost::shared_ptr<CGraphicElement> CActor2D::managedSelf()
{
    boost::shared_ptr<CGraphicElement> self = weak_from_this().lock();
    if (!self)
        BaseUtils::Assert(false, SOURCE, __LINE__, "CActor2D draw-managed actor is not held by a shared_ptr\n");
    return self;
}

boost::shared_ptr<CGraphicElement> CActor2D::celChangeSelf()
{
    return mCels.empty() || !mDrawManaged ? boost::shared_ptr<CGraphicElement>() : managedSelf();
}

void CActor2D::addCurrentFrameToDrawManager() { addCurrentFrameToDrawManager(celChangeSelf()); }

void CActor2D::addCurrentFrameToDrawManager(const boost::shared_ptr<CGraphicElement>& self)
{
    if (mCels.empty())
        return;
    const tChunkList& chunks = mCels[mCurrentCelOffset].chunks;
    // The element's own list follows the shown cel, so that moving the actor re-places it.
    if (mChunks.size() == chunks.size()) {
        for (size_t i = 0; i < chunks.size(); ++i)
            if (mChunks[i] != chunks[i])
                mChunks[i] = chunks[i];
    } else {
        mChunks = chunks;
    }
    if (!mDrawManaged || !self)
        return;
    CDrawManager* const manager = CDrawManager::instanceInline();
    for (size_t i = 0; i < chunks.size(); ++i) {
        if (chunks[i])
            manager->addPair(self, chunks[i]);
    }
}

void CActor2D::removeCurrentFrameFromDrawManager() { removeCurrentFrameFromDrawManager(celChangeSelf()); }

void CActor2D::removeCurrentFrameFromDrawManager(const boost::shared_ptr<CGraphicElement>& self)
{
    if (mCels.empty() || !mDrawManaged || !self)
        return;
    const tChunkList& chunks = mCels[mCurrentCelOffset].chunks;
    CDrawManager* const manager = CDrawManager::instanceInline();
    for (size_t i = 0; i < chunks.size(); ++i) {
        if (chunks[i])
            manager->removePair(self, chunks[i]);
    }
}

void CActor2D::draw(tColor*) {}

// ---------------------------------------------------------------------------
// Building

bool CActor2D::startAnimation(Glib::ustring const& label)
{
    const std::string key = label.collate_key();
    const bool first = mCels.empty();
    if (mAnimationMap.count(key) && !(first && key == emptyLabelKey())) {
        BaseUtils::Assert(false, SOURCE, __LINE__, "CActor2D::pushBackSpriteCelStart duplicate animation name %s\n",
                          label.c_str());
        return false;
    }
    if (first)
        mAnimationMap.erase(emptyLabelKey());
    else if (mLastAppendedAnimation != mAnimationMap.end()) {
        mLastAppendedAnimation->second.next = label;
        mLastAppendedAnimation->second.nextKey = key;
    }
    const unsigned int start = mCels.size();
    // Later animations end before they start until their first cel arrives: appendFrame grows them.
    tActor2DAnimationStruct animation = {start, first ? start : start - 1, Glib::ustring(), std::string(), label};
    mLastAppendedAnimation = mAnimationMap.insert(std::make_pair(key, animation)).first;
    if (first)
        mCurrentAnimationIterator = mLastAppendedAnimation;
    return true;
}

void CActor2D::appendAnimationStart(Glib::ustring const& label) { startAnimation(label); }

void CActor2D::appendFrame(tActor2DFrameStruct& frame) { appendCel(frame); }

void CActor2D::appendFrameStart(tActor2DFrameStruct& frame, Glib::ustring const& label)
{
    const bool started = startAnimation(label);
    if (appendCel(frame) && started)
        mLastAppendedAnimation->second.endOffset = mLastAppendedAnimation->second.startOffset;
}

void CActor2D::appendLoadedFrame(tActor2DFrameStruct& frame, const char* label)
{
    const bool started = label && startAnimation(label);
    if (appendCel(std::move(frame)) && started)
        mLastAppendedAnimation->second.endOffset = mLastAppendedAnimation->second.startOffset;
}

bool CActor2D::appendCel(tActor2DFrameStruct frame)
{
    if (mCels.size() >= MAX_CELS) {
        BaseUtils::Assert(false, SOURCE, __LINE__, "CActor2D::appendFrame an actor holds at most %d cels\n",
                          static_cast<int>(MAX_CELS));
        return false;
    }
    if (!mCels.empty() && mLastAppendedAnimation != mAnimationMap.end())
        ++mLastAppendedAnimation->second.endOffset;
    mCels.push_back(std::move(frame));
    return true;
}

bool CActor2D::frameFromCel(boost::shared_ptr<CSpriteCel> cel, tActor2DFrameStruct& frame)
{
    if (!cel) {
        BaseUtils::Assert(false, SOURCE, __LINE__, "CActor2D::appendSpriteCel empty sprite cel\n");
        return false;
    }
    frame.duration = cel->duration;
    tOperationList::const_iterator begin, end;
    cel->getEnterOpcodeIterators(begin, end);
    frame.enterOperations.assign(begin, end);
    cel->getExitOpcodeIterators(begin, end);
    frame.exitOperations.assign(begin, end);
    frame.chunks = cel->getChunks();
    return true;
}

void CActor2D::appendSpriteCel(boost::shared_ptr<CSpriteCel> cel)
{
    tActor2DFrameStruct frame;
    if (frameFromCel(cel, frame))
        appendFrame(frame);
}

void CActor2D::appendSpriteCelStart(boost::shared_ptr<CSpriteCel> cel, Glib::ustring const& label)
{
    tActor2DFrameStruct frame;
    if (frameFromCel(cel, frame))
        appendFrameStart(frame, label);
}

void CActor2D::pushBackOperation(unsigned short cel, int opcode, unsigned short oparg)
{
    if (opcode == 0)
        return;
    if (cel >= mCels.size()) {
        BaseUtils::Assert(false, SOURCE, __LINE__, "CActor2D::pushBackOperation cel %d out of bounds\n", cel);
        return;
    }
    const operation op = {opcode, oparg};
    if (opcode == operation::GOTO_AND_PLAY || opcode == operation::GOTO_AND_STOP)
        mCels[cel].exitOperations.push_back(op);
    else
        mCels[cel].enterOperations.push_back(op);
}

// ---------------------------------------------------------------------------
// Queries

unsigned int CActor2D::getAnimationStartOffset(Glib::ustring const& label)
{
    tAnimationMap::iterator it = findAnimation(label);
    if (it == mAnimationMap.end()) {
        BaseUtils::Assert(false, SOURCE, __LINE__, "CActor2D::getAnimationStartOffset animation %s not found\n",
                          label.c_str());
        return 0;
    }
    return it->second.startOffset;
}

unsigned int CActor2D::getAnimationEndOffset(Glib::ustring const& label)
{
    tAnimationMap::iterator it = findAnimation(label);
    if (it == mAnimationMap.end()) {
        BaseUtils::Assert(false, SOURCE, __LINE__, "CActor2D::getAnimationEndOffset animation %s not found\n",
                          label.c_str());
        return 0;
    }
    return it->second.endOffset;
}

const tActor2DFrameStruct& CActor2D::getCel(unsigned int cel) const
{
    static const tActor2DFrameStruct none = {0, tOperationList(), tOperationList(), tChunkList()};
    return cel < mCels.size() ? mCels[cel] : none;
}

const Glib::ustring& CActor2D::getCurrentAnimationLabel() const
{
    static const Glib::ustring none;
    return isCurrentAnimationValid() ? mCurrentAnimationIterator->second.label : none;
}

tVect2 CActor2D::getWidthHeight() { return tVect2{tFixed(10), tFixed(10)}; }

tRect2 CActor2D::getBoundingBoxAccurate()
{
    tRect2 box = {MAX_X, MAX_X, MIN_X, MIN_X};
    const tMatrix23 m = getMatrix();
    const tChunkList& chunks = getChunks();
    for (size_t i = 0; i < chunks.size(); ++i) {
        if (!chunks[i])
            continue;
        const std::vector<tVect3>& vertices = chunks[i]->getVertices();
        for (size_t j = 0; j < vertices.size(); ++j) {
            const tVect3 p = m * vertices[j];
            widen(box, p);
        }
    }
    return box;
}

tRect2 CActor2D::getBoundingBox()
{
    tRect2 local = {MAX_X, MAX_X, MIN_X, MIN_X};
    const tChunkList& chunks = getChunks();
    for (size_t i = 0; i < chunks.size(); ++i) {
        if (!chunks[i])
            continue;
        const std::vector<tVect3>& vertices = chunks[i]->getVertices();
        for (size_t j = 0; j < vertices.size(); ++j)
            widen(local, vertices[j]);
    }
    if (local.left > local.right)
        return local;
    const tMatrix23 m = getMatrix();
    const tVect3 corners[4] = {
        {local.left, local.bottom, ZERO_X}, {local.right, local.bottom, ZERO_X},
        {local.left, local.top, ZERO_X}, {local.right, local.top, ZERO_X},
    };
    tRect2 box = {MAX_X, MAX_X, MIN_X, MIN_X};
    for (int i = 0; i < 4; ++i)
        widen(box, m * corners[i]);
    return box;
}

void CActor2D::widen(tRect2& box, const tVect3& p)
{
    if (p.x < box.left)
        box.left = p.x;
    if (p.x > box.right)
        box.right = p.x;
    if (p.y < box.bottom)
        box.bottom = p.y;
    if (p.y > box.top)
        box.top = p.y;
}

// ---------------------------------------------------------------------------
// Loading

namespace {

/// The directory of path, with its trailing '/', or "".
Glib::ustring directoryOf(const Glib::ustring& path)
{
    const Glib::ustring::size_type slash = path.rfind('/');
    return slash == Glib::ustring::npos ? Glib::ustring() : path.substr(0, slash + 1);
}

} // namespace

CActor2D::CActor2D(Glib::ustring path, AvatarCostume* costume, CTextureSheet* sheet) : CActor2D()
{
    loadFile(path, costume, sheet);
}

bool CActor2D::loadFile(Glib::ustring path, AvatarCostume* costume, CTextureSheet* sheet)
{
    const CLoadReport::tScope scope(path, true);
    const std::string p = path.raw();
    const size_t n = strlen(CSceneLoaderDset::dsetExtension);
    if (p.size() > n && p.compare(p.size() - n, n, CSceneLoaderDset::dsetExtension) == 0)
        return loadDset(path, costume, sheet);
    return loadJson(path, costume, sheet);
}

bool CActor2D::loadJson(Glib::ustring path, AvatarCostume* costume, CTextureSheet* sheet)
{
    const CLoadReport::tScope scope(path, true);
    QJN::CJSonFile file(path, 0);
    file.Load();
    const QJN::Value& root = file.getRoot();
    if (!root.isObject()) {
        BaseUtils::Assert(false, SOURCE, __LINE__, "CActor2D::loadJson(char *url) outermost container is not an object\n");
        return false;
    }
    if (!root.isMember("Animation")) {
        BaseUtils::Assert(false, SOURCE, __LINE__, "CActor2D::loadJson(char *url) no member Animation\n");
        return false;
    }
    if (!root["Animation"].isArray()) {
        BaseUtils::Assert(false, SOURCE, __LINE__, "CActor2D::loadJson(char *url) Animation is not array\n");
        return false;
    }
    CSceneLoaderJson loader;
    loader.setCostume(costume);
    loader.setTextureSheet(sheet);
    loader.setDefaultPath(directoryOf(path));
    loader.reportUnknownKeys(root, 3);
    if (root["Name"].isString())
        setName(root["Name"].asString());
    loader.parseGraphicElementPortion(root, this);
    loader.parseAnimation(root["Animation"], this);
    return true;
}

bool CActor2D::loadDset(Glib::ustring path, AvatarCostume* costume, CTextureSheet* sheet)
{
    const CLoadReport::tScope scope(path, true);
    CSceneLoaderDset loader;
    loader.setCostume(costume);
    loader.setTextureSheet(sheet);
    loader.setDefaultPath(directoryOf(path));
    void* data = 0;
    boost::shared_ptr<CDataset> dataset = loader.LoadDset(path, data);
    const tDsetActor* root = data && loader.getReader() ? loader.getReader()->record<tDsetActor>(data) : 0;
    if (!root) {
        BaseUtils::Assert(false, SOURCE, __LINE__, "CActor2D::loadDset could not load dataset file: %s\n", path.c_str());
        return false;
    }
    const tDsetSpriteCel* cels = loader.getReader()->array<tDsetSpriteCel>(root->cels, root->celCount);
    if (root->magic != DSET_ACTOR_MAGIC || (root->celCount && !cels)) {
        BaseUtils::Assert(false, SOURCE, __LINE__, "CActor2D::loadDset %s does not hold an actor inside the dataset\n",
                          path.c_str());
        return false;
    }
    loader.parseGraphicElementPortion(&root->element, this);
    // The cel count fits the dataset (checked above), so this reserves at most a few times its size.
    mCels.reserve(mCels.size() + std::min<uint32_t>(root->celCount, MAX_CELS));
    for (uint32_t i = 0; i < root->celCount; ++i) {
        tActor2DFrameStruct frame;
        frame.duration = 0;
        if (!loader.parseSpriteCel(&cels[i], frame.duration, frame.exitOperations, frame.enterOperations, frame.chunks))
            return false;
        appendLoadedFrame(frame, cels[i].label ? loader.getReader()->string(cels[i].label) : 0);
    }
    return true;
}
