#ifndef ZEPHRIN2D_TESTS_PLATFORM_ERRORMESSAGES_H
#define ZEPHRIN2D_TESTS_PLATFORM_ERRORMESSAGES_H

#include <DebugMPI.h>

#include <string>

/// Collects the debug messages of level 1 and below (errors) while alive.
struct ErrorMessages
{
    ErrorMessages()
    {
        previous = Tadwick::Vell::CDebugMPI::SetHandler([this](int, int level, const std::string& t) {
            if (level <= 1)
                text += t;
        });
    }
    ~ErrorMessages() { Tadwick::Vell::CDebugMPI::SetHandler(previous); }
    std::string text;
    Tadwick::Vell::CDebugMPI::tHandler previous;
};

#endif
