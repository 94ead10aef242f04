#include "CLoadReport.h"

#include <BaseUtils.h>
#include <DebugMPI.h>

#include <cstring>
#include <deque>

using Tadwick::Vell::CDebugMPI;

namespace {

struct tState
{
    std::deque<tLoadProblem> kept;
    uint64_t count = 0;  // problems ever reported; kept.back() is number count - 1
    int depth = 0;
    std::vector<Glib::ustring> files;
    std::vector<Glib::ustring> asked;
    BaseUtils::tAssertHandler previousAssert;
    CDebugMPI::tHandler previousDebug;
};

tState& state()
{
    static tState s;
    return s;
}

bool has(const std::string& text, const char* part) { return text.find(part) != std::string::npos; }

// Level-3 messages that mean something did not load as written (the rest
// at that level trace what loads).
bool isFailure(int level, const std::string& text)
{
    static const char* const kFailures[] = {"ID number is wrong", "failed to open file", "libpng error",
                                            "should be power of 2", "names no file", "has no name",
                                            "could not find ", "could not load", "could not select"};
    if (level <= 1)
        return true;
    if (level > 3)
        return false;
    for (const char* f : kFailures)
        if (has(text, f))
            return true;
    return false;
}

void record(const std::string& source, const std::string& message)
{
    tState& s = state();
    const std::string text = CLoadReport::oneLine(message);
    tLoadProblem::tReason reason = tLoadProblem::BAD_CONTENT;
    Glib::ustring asked = s.asked.empty() ? Glib::ustring() : s.asked.back();
    const size_t find = text.find("could not find ");
    if (has(text, "failed to open file")) {
        reason = tLoadProblem::NOT_FOUND;
    } else if (find == 0) {
        reason = tLoadProblem::PICTURE_MISSING;
        asked = text.substr(strlen("could not find "));
    } else if (has(source, "CTexturePNG") || has(source, "tImageInfo") || has(text, "libpng error") ||
               has(text, "should be power of 2")) {
        reason = tLoadProblem::REFUSED_IMAGE;
    }
    if (reason == tLoadProblem::BAD_CONTENT)
        asked.clear();
    CLoadReport::add(reason, asked, text);
}

void onAssert(const char* file, int line, const std::string& message)
{
    record(file ? file : "", message);
    if (state().previousAssert)
        state().previousAssert(file, line, message);
}

void onDebug(int module, int level, const std::string& text)
{
    if (isFailure(level, text))
        record(std::string(), text);
    if (state().previousDebug)
        state().previousDebug(module, level, text);
}

} // namespace

uint64_t CLoadReport::mark() { return state().count; }

std::vector<tLoadProblem> CLoadReport::since(uint64_t mark)
{
    const tState& s = state();
    const uint64_t first = s.count - s.kept.size();
    std::vector<tLoadProblem> out;
    for (uint64_t n = mark > first ? mark : first; n < s.count; ++n)
        out.push_back(s.kept[static_cast<size_t>(n - first)]);
    return out;
}

void CLoadReport::clear() { state().kept.clear(); }

void CLoadReport::forget(uint64_t mark, tLoadProblem::tReason reason)
{
    tState& s = state();
    const uint64_t first = s.count - s.kept.size();
    std::deque<tLoadProblem> keep;
    for (uint64_t n = first; n < s.count; ++n) {
        const tLoadProblem& p = s.kept[static_cast<size_t>(n - first)];
        if (n < mark || p.reason != reason)
            keep.push_back(p);
    }
    s.count -= s.kept.size() - keep.size();
    s.kept.swap(keep);
}

void CLoadReport::add(tLoadProblem::tReason reason, const Glib::ustring& asked, const Glib::ustring& detail)
{
    tState& s = state();
    tLoadProblem p;
    p.file = s.files.empty() ? asked : s.files.back();
    p.asked = asked;
    p.reason = reason;
    p.detail = detail;
    if (!s.kept.empty()) {
        const tLoadProblem& last = s.kept.back();
        if (last.file == p.file && last.asked == p.asked && last.reason == p.reason &&
            (reason != tLoadProblem::BAD_CONTENT || last.detail == p.detail))
            return;
    }
    s.kept.push_back(p);
    ++s.count;
    if (s.kept.size() > MAX_KEPT)
        s.kept.pop_front();
}

Glib::ustring CLoadReport::describe(const tLoadProblem& p)
{
    const Glib::ustring file = p.file.empty() ? Glib::ustring("(no file)") : p.file;
    switch (p.reason) {
    case tLoadProblem::NOT_FOUND:
        return file + ": image \"" + p.asked + "\" not found: the placeholder is shown";
    case tLoadProblem::REFUSED_IMAGE:
        return file + ": image \"" + p.asked + "\" refused: " + p.detail;
    case tLoadProblem::PICTURE_MISSING:
        return file + ": picture \"" + p.asked + "\" is not in the texture sheet";
    case tLoadProblem::BAD_CONTENT:
        break;
    }
    return file + ": " + p.detail;
}

CLoadReport::tScope::tScope(const Glib::ustring& name, bool isFile) : mIsFile(isFile)
{
    tState& s = state();
    if (s.depth++ == 0) {
        s.previousAssert = BaseUtils::SetAssertListener(onAssert);
        s.previousDebug = CDebugMPI::SetListener(onDebug);
    }
    (isFile ? s.files : s.asked).push_back(name);
}

CLoadReport::tScope::~tScope()
{
    tState& s = state();
    (mIsFile ? s.files : s.asked).pop_back();
    if (--s.depth == 0) {
        BaseUtils::SetAssertListener(s.previousAssert);
        CDebugMPI::SetListener(s.previousDebug);
        s.previousAssert = BaseUtils::tAssertHandler();
        s.previousDebug = CDebugMPI::tHandler();
    }
}

std::string CLoadReport::oneLine(std::string text)
{
    while (!text.empty() && (text.back() == '\n' || text.back() == ' '))
        text.pop_back();
    for (char& c : text)
        if (c == '\n')
            c = ' ';
    return text;
}
