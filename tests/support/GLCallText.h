#ifndef ZEPHRIN2D_TESTS_GLCALLTEXT_H
#define ZEPHRIN2D_TESTS_GLCALLTEXT_H

#include "GLRecorder.h"

#include <initializer_list>
#include <string>
#include <vector>

/// "name(a, b, ...)": how a test writes an expected GL call.
inline std::string glCall(const std::string& name, const std::vector<long>& args = {})
{
    std::string text = name + "(";
    for (size_t i = 0; i < args.size(); ++i)
        text += (i ? ", " : "") + std::to_string(args[i]);
    return text + ")";
}

/// The recorded calls as glCall() writes them; array addresses are left out.
inline std::vector<std::string> recordedGLCalls()
{
    std::vector<std::string> out;
    for (const GLRecorder::tCall& c : GLRecorder::calls()) {
        std::vector<long> args = c.args;
        if (c.name.find("Pointer") != std::string::npos && !args.empty())
            args.pop_back();
        out.push_back(glCall(c.name, args));
    }
    return out;
}

#endif
