#include "CSpriteCel.h"

CSpriteCel::CSpriteCel() : duration(0) {}

CSpriteCel::~CSpriteCel() {}

void CSpriteCel::pushBackOperation(operation op)
{
    switch (op.opcode) {
    case operation::GOTO_AND_PLAY:
    case operation::GOTO_AND_STOP:
        mExitOperations.push_back(op);
        break;
    case operation::TRIGGER:
    case operation::STOP:
    case operation::PLAY_AUDIO:
        mEnterOperations.push_back(op);
        break;
    default:
        break;
    }
}

void CSpriteCel::pushBackOperation(int opcode, unsigned short oparg)
{
    operation op = {opcode, oparg};
    pushBackOperation(op);
}

void CSpriteCel::getEnterOpcodeIterators(tOperationList::const_iterator& begin,
                                         tOperationList::const_iterator& end) const
{
    begin = mEnterOperations.begin();
    end = mEnterOperations.end();
}

void CSpriteCel::getExitOpcodeIterators(tOperationList::const_iterator& begin,
                                        tOperationList::const_iterator& end) const
{
    begin = mExitOperations.begin();
    end = mExitOperations.end();
}
