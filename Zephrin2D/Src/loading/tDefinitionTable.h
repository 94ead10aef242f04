#ifndef ZEPHRIN2D_TDEFINITIONTABLE_H
#define ZEPHRIN2D_TDEFINITIONTABLE_H

#include <DebugMPI.h>

#include <boost/shared_ptr.hpp>
#include <vector>

/// The definition-number rule of scene files and datasets: an ID below the
/// table's size names that earlier definition (found); any other ID defines
/// the next element, and one other than the table's size is reported with
/// wrongMessage (given the ID and the size) at debug level 3.
template <class T>
bool earlierDefinition(unsigned int id, const std::vector<boost::shared_ptr<T> >& table, boost::shared_ptr<T>& found,
                       const Tadwick::Vell::CDebugMPI& debug, const char* wrongMessage)
{
    if (id < table.size()) {
        found = table[id];
        return true;
    }
    if (id != table.size())
        debug.DebugOut(3, wrongMessage, static_cast<int>(id), static_cast<int>(table.size()));
    return false;
}

#endif
