#include "CSceneLoaderDset.h"
#include "CLoadReport.h"

#include "Avatar2DPiece.h"
#include "CBillboard.h"
#include "CDrawChunk.h"
#include "CDsetReader.h"
#include "CSprite.h"
#include "CTexture.h"
#include "CTextureManager.h"
#include "CTexturedChunk.h"
#include "tDefinitionTable.h"

#include <BaseUtils.h>
#include <DebugMPI.h>
#include <Dataset.h>

#include <boost/make_shared.hpp>

namespace {

const char* const kFile = "Zephrin2D/Src/CSceneLoaderDset";

const Tadwick::Vell::CDebugMPI& debug()
{
    static Tadwick::Vell::CDebugMPI d(0x287);
    return d;
}

/// Play Audio arguments are names kept for tools: the operation carries 0.
operation operationOf(const tDsetOperation& record)
{
    operation op;
    op.opcode = record.opcode;
    op.oparg = record.opcode == operation::PLAY_AUDIO ? 0 : record.oparg;
    return op;
}

} // namespace

const char* const CSceneLoaderDset::dsetExtension = ".dsetBin";
const char* const CSceneLoaderDset::relinkExtension = ".relinkBin";

CSceneLoaderDset::CSceneLoaderDset() : mCostume(0), mTextureSheet(0) {}

CSceneLoaderDset::~CSceneLoaderDset() {}

void CSceneLoaderDset::setCostume(AvatarCostume* costume) { mCostume = costume; }
void CSceneLoaderDset::setTextureSheet(CTextureSheet* sheet) { mTextureSheet = sheet; }
void CSceneLoaderDset::setDefaultPath(Glib::ustring path) { mDefaultPath = path; }

boost::shared_ptr<CDataset> CSceneLoaderDset::LoadDset(Glib::ustring path, void*& data)
{
    const CLoadReport::tScope scope(path, true);
    data = 0;
    const std::string p = path.raw();
    const std::string::size_type at = p.rfind(dsetExtension);
    BaseUtils::Assert(at != std::string::npos, kFile, __LINE__,
                      "CSceneLoaderDset::LoadDataset file name \"%s\" doesn't have \"%s\" extension.", p.c_str(),
                      dsetExtension);
    if (at == std::string::npos)
        return boost::shared_ptr<CDataset>();
    const std::string relink = p.substr(0, at) + relinkExtension;
    boost::shared_ptr<CDataset> dataset = LoadDataset(p.c_str(), relink.c_str());
    if (dataset) {
        data = dataset->data;
        mReader.reset(new CDsetReader(dataset));
    }
    return dataset;
}

const char* CSceneLoaderDset::string(uint32_t pointer) const
{
    if (!mReader)
        return static_cast<const char*>(CDsetReader::address(pointer));
    return mReader->string(pointer);
}

template <class T> const T* CSceneLoaderDset::array(uint32_t pointer, uint32_t count) const
{
    if (count == 0)
        return 0;
    if (!mReader)
        return static_cast<const T*>(CDsetReader::address(pointer));
    return mReader->array<T>(pointer, count);
}

void CSceneLoaderDset::parseColorPortion(const tDsetColor* record, tColor& color)
{
    color = tColor{record->red, record->green, record->blue, record->alpha};
}

void CSceneLoaderDset::parseGraphicElementPortion(const tDsetGraphicElement* record, CGraphicElement* element)
{
    element->moveTo(tVect3{tFixed::fromRaw(record->positionX), tFixed::fromRaw(record->positionY),
                           tFixed::fromRaw(record->positionZ)});
    element->rotateTo(tFixed::fromRaw(record->rotation));
    element->scaleTo(tVect2{tFixed::fromRaw(record->scaleX), tFixed::fromRaw(record->scaleY)});
    element->moveRegTo(tVect2{tFixed::fromRaw(record->regX), tFixed::fromRaw(record->regY)});
    tColor color;
    parseColorPortion(&record->color, color);
    element->setColor(color);
}

bool CSceneLoaderDset::celArrays(const tDsetSpriteCel* record, const tDsetBillboard*& billboards,
                                 const tDsetAvatarPiece*& pieces, const tDsetOperation*& operations) const
{
    billboards = array<tDsetBillboard>(record->billboards, record->billboardCount);
    pieces = array<tDsetAvatarPiece>(record->avatarPieces, record->avatarPieceCount);
    operations = array<tDsetOperation>(record->operations, record->operationCount);
    const bool inside = (!record->billboardCount || billboards) && (!record->avatarPieceCount || pieces) &&
                        (!record->operationCount || operations);
    BaseUtils::Assert(inside, kFile, __LINE__, "CSceneLoaderDset::parseSpriteCel record reaches outside the dataset");
    return inside;
}

boost::shared_ptr<CTexture> CSceneLoaderDset::fileTexture(uint32_t url)
{
    boost::shared_ptr<CTexture>& texture = mTextures[url];
    const char* name = texture ? 0 : string(url);
    if (name)
        texture = CTextureManager::Instance()->load(mDefaultPath + name, true, false, false);
    return texture;
}

void CSceneLoaderDset::loadBillboardTexture(CBillboard* billboard, uint32_t url)
{
    const char* name = string(url);
    if (!name) {
        BaseUtils::Assert(false, kFile, __LINE__, "CSceneLoaderDset::parseBillboard image name outside the dataset");
        return;
    }
    if (mTextureSheet && billboard->loadTexture(name, mTextureSheet))
        return;
    // A dataset stores each name once: the texture found for it serves every later billboard of that name.
    boost::shared_ptr<CTexture>& known = mTextures[url];
    if (known) {
        billboard->setTexture(known);
        return;
    }
    const bool loaded = billboard->loadTexture(mDefaultPath + name, 0);
    if (loaded)
        known = billboard->getTexture();
    BaseUtils::Assert(loaded, kFile, __LINE__, "CSceneLoaderDset::parseBillboard texture %s did not load",
                      (mDefaultPath + name).c_str());
}

boost::shared_ptr<CBillboard> CSceneLoaderDset::parseBillboard(const tDsetBillboard* record)
{
    boost::shared_ptr<CBillboard> billboard;
    if (earlierDefinition(record->id, mBillboards, billboard, debug(),
                          "CSceneLoaderDset::parseBillboard ID number is wrong, got %d, expected %d\n"))
        return billboard;
    billboard = boost::make_shared<CBillboard>();
    mBillboards.push_back(billboard);
    parseGraphicElementPortion(&record->element, billboard.get());
    loadBillboardTexture(billboard.get(), record->url);
    return billboard;
}

boost::shared_ptr<Avatar2DPiece> CSceneLoaderDset::parseAvatarPiece(const tDsetAvatarPiece* record)
{
    BaseUtils::Assert(mCostume != 0, kFile, __LINE__,
                      "CSceneLoaderDset::parseAvatarPiece - no costume defined, probably tried to load with parseSpritePortion");
    boost::shared_ptr<Avatar2DPiece> piece;
    if (earlierDefinition(record->id, mAvatarPieces, piece, debug(),
                          "CSceneLoaderDset::parseAvatarPiece ID number is wrong, got %d, expected %d\n"))
        return piece;
    piece = boost::make_shared<Avatar2DPiece>();
    mAvatarPieces.push_back(piece);
    parseGraphicElementPortion(&record->element, piece.get());
    const char* component = string(record->component);
    const char* variation = string(record->variation);
    if (!component || !variation) {
        BaseUtils::Assert(false, kFile, __LINE__, "CSceneLoaderDset::parseAvatarPiece names outside the dataset");
        return piece;
    }
    piece->setPiece(component, variation);
    piece->setCostume(mCostume);
    return piece;
}

void CSceneLoaderDset::parseBillboards(unsigned long count, const tDsetBillboard* records, CSprite* sprite)
{
    for (unsigned long i = 0; i < count; ++i)
        sprite->attach(parseBillboard(&records[i]));
}

void CSceneLoaderDset::parseAvatarPieces(unsigned long count, const tDsetAvatarPiece* records, CSprite* sprite)
{
    for (unsigned long i = 0; i < count; ++i)
        sprite->attach(parseAvatarPiece(&records[i]));
}

boost::shared_ptr<CSpriteCel> CSceneLoaderDset::parseSpriteCel(const tDsetSpriteCel* record)
{
    boost::shared_ptr<CSpriteCel> cel = boost::make_shared<CSpriteCel>();
    const tDsetBillboard* billboards;
    const tDsetAvatarPiece* pieces;
    const tDsetOperation* ops;
    if (!celArrays(record, billboards, pieces, ops)) {
        return cel;
    }
    cel->getChunks().reserve(record->billboardCount + record->avatarPieceCount);
    parseBillboards(record->billboardCount, billboards, cel.get());
    parseAvatarPieces(record->avatarPieceCount, pieces, cel.get());
    cel->duration = record->duration;
    for (uint32_t i = 0; i < record->operationCount; ++i) {
        const operation op = operationOf(ops[i]);
        cel->pushBackOperation(op);
    }
    return cel;
}

boost::shared_ptr<CDrawChunk> CSceneLoaderDset::directBillboardChunk(const tDsetBillboard* record)
{
    // Pictures of a texture sheet and failed loads take the billboard's own path (with its messages).
    if (mTextureSheet)
        return boost::shared_ptr<CDrawChunk>();
    const boost::shared_ptr<CTexture> texture = fileTexture(record->url);
    if (!texture)
        return boost::shared_ptr<CDrawChunk>();
    // The quad a billboard makes of a whole texture, placed by the record's transform.
    boost::shared_ptr<CTexturedChunk> chunk = boost::make_shared<CTexturedChunk>(4, 6);
    static const uint16_t kIndices[6] = {0, 1, 2, 2, 1, 3};
    std::copy(kIndices, kIndices + 6, chunk->getIndices().begin());
    chunk->setTexture(texture);
    const tFixed w = tFixed(static_cast<int>(texture->imageInfo.width));
    const tFixed h = tFixed(static_cast<int>(texture->imageInfo.height));
    std::vector<tVect3>& v = chunk->getVertices();
    v[0] = tVect3{ZERO_X, h, ZERO_X};
    v[1] = tVect3{w, h, ZERO_X};
    v[2] = tVect3{ZERO_X, ZERO_X, ZERO_X};
    v[3] = tVect3{w, ZERO_X, ZERO_X};
    std::vector<tVect2>& st = chunk->getTexCoords();
    st[0] = tVect2{ZERO_X, ZERO_X};
    st[1] = tVect2{ONE_X, ZERO_X};
    st[2] = tVect2{ZERO_X, ONE_X};
    st[3] = tVect2{ONE_X, ONE_X};
    const tDsetGraphicElement& e = record->element;
    chunk->transformVertices(tMatrix23(tVect2{tFixed::fromRaw(e.regX), tFixed::fromRaw(e.regY)},
                                       tVect2{tFixed::fromRaw(e.scaleX), tFixed::fromRaw(e.scaleY)},
                                       tFixed::fromRaw(e.rotation),
                                       tVect3{tFixed::fromRaw(e.positionX), tFixed::fromRaw(e.positionY),
                                              tFixed::fromRaw(e.positionZ)}));
    return chunk;
}

boost::shared_ptr<CDrawChunk> CSceneLoaderDset::parseBillboardChunk(const tDsetBillboard* record)
{
    boost::shared_ptr<CDrawChunk> chunk;
    if (earlierDefinition(record->id, mBillboardChunks, chunk, debug(),
                          "CSceneLoaderDset::parseBillboardChunk ID number is wrong, got %d, expected %d\n"))
        return chunk;
    chunk = directBillboardChunk(record);
    if (chunk) {
        mBillboardChunks.push_back(chunk);
        return chunk;
    }
    // The billboard is a scratch object: its chunk is placed by its transform and kept on its own.
    boost::shared_ptr<CBillboard> billboard = boost::make_shared<CBillboard>();
    parseGraphicElementPortion(&record->element, billboard.get());
    loadBillboardTexture(billboard.get(), record->url);
    chunk = billboard->getChunks().empty() ? boost::shared_ptr<CDrawChunk>() : billboard->getChunks()[0];
    if (chunk)
        chunk->transformVertices(billboard->getMatrix());
    mBillboardChunks.push_back(chunk);
    return chunk;
}

void CSceneLoaderDset::parseBillboards(unsigned long count, const tDsetBillboard* records, tChunkList& chunks)
{
    for (unsigned long i = 0; i < count; ++i) {
        boost::shared_ptr<CDrawChunk> chunk = parseBillboardChunk(&records[i]);
        if (chunk)
            copyMergeChunk(chunk, chunks);
    }
}

void CSceneLoaderDset::parseAvatarPieces(unsigned long count, const tDsetAvatarPiece* records, tChunkList& chunks)
{
    for (unsigned long i = 0; i < count; ++i)
        copyMergeChunks(parseAvatarPiece(&records[i]), chunks);
}

bool CSceneLoaderDset::parseSpriteCel(const tDsetSpriteCel* record, unsigned short& duration,
                                      tOperationList& exitOperations, tOperationList& enterOperations,
                                      tChunkList& chunks)
{
    const tDsetBillboard* billboards;
    const tDsetAvatarPiece* pieces;
    const tDsetOperation* ops;
    if (!celArrays(record, billboards, pieces, ops)) {
        return false;
    }
    chunks.reserve(chunks.size() + record->billboardCount + record->avatarPieceCount);
    parseBillboards(record->billboardCount, billboards, chunks);
    parseAvatarPieces(record->avatarPieceCount, pieces, chunks);
    duration = record->duration;
    for (uint32_t i = 0; i < record->operationCount; ++i) {
        const operation op = operationOf(ops[i]);
        pushBackOperation(op, exitOperations, enterOperations);
    }
    return true;
}

void CSceneLoaderDset::copyMergeChunks(boost::shared_ptr<CGraphicElement> element, tChunkList& chunks)
{
    if (!element)
        return;
    CGraphicElement::tChunkList& own = element->getChunks();
    for (size_t i = 0; i < own.size(); ++i)
        copyMergeChunk(own[i]->createTransformedChunk(element), chunks);
}

void CSceneLoaderDset::copyMergeChunk(boost::shared_ptr<CDrawChunk> chunk, tChunkList& chunks)
{
    const boost::shared_ptr<CGraphicElement> inPlace;
    for (size_t i = 0; i < chunks.size(); ++i) {
        if (!chunks[i]->canMerge(inPlace, chunk))
            continue;
        // Copy on write: a chunk held elsewhere too (a definition, another cel) is never changed.
        if (chunks[i].use_count() > 1)
            chunks[i] = chunks[i]->createMergedChunk(inPlace, chunk);
        else
            chunks[i]->merge(inPlace, chunk);
        return;
    }
    chunks.push_back(chunk);
}

void CSceneLoaderDset::pushBackOperation(operation op, tOperationList& exitOperations, tOperationList& enterOperations)
{
    if (op.opcode == operation::GOTO_AND_PLAY || op.opcode == operation::GOTO_AND_STOP)
        exitOperations.push_back(op);
    else if (op.opcode >= operation::TRIGGER && op.opcode <= operation::PLAY_AUDIO)
        enterOperations.push_back(op);
}
