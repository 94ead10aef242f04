#ifndef ZEPHRIN2D_CLOADREPORT_H
#define ZEPHRIN2D_CLOADREPORT_H

#include <glibmm/ustring.h>
#include <stdint.h>
#include <string>
#include <vector>

/// One thing that did not load as asked.
struct tLoadProblem
{
    enum tReason
    {
        NOT_FOUND,        ///< an image file that is not there (the placeholder is shown)
        REFUSED_IMAGE,    ///< an image of a kind or size the PNG loader refuses
        PICTURE_MISSING,  ///< a name the texture sheet does not hold
        BAD_CONTENT       ///< anything else the loaders reported: detail holds their message
    };
    Glib::ustring file;    ///< the scene, actor, sheet, costume or dataset being loaded (or the image itself)
    Glib::ustring asked;   ///< what was asked for: an image path or a picture name; empty for BAD_CONTENT
    tReason reason;
    Glib::ustring detail;  ///< the loader's own message, one line
};

/// What loading reported, for a program to show: every problem the loaders
/// raise through the assertion and debug services while a file loads, kept
/// whatever the debug level, with the file and what was asked for. The
/// messages themselves still go where they always went.
///
/// Usage: `uint64_t from = CLoadReport::mark();` ... load ...
/// `for (const tLoadProblem& p : CLoadReport::since(from)) puts(CLoadReport::describe(p).c_str());`
///
/// Process-wide and single-threaded like the rest of the library. The last
/// MAX_KEPT problems are kept. While a load runs, the report chains itself
/// in front of the platform's assertion and debug listeners, and restores
/// them when the outermost load ends.
class CLoadReport
{
public:
    enum { MAX_KEPT = 1024 };

    /// The count of problems so far: a point to ask since().
    static uint64_t mark();
    /// The problems reported after that point, oldest first.
    static std::vector<tLoadProblem> since(uint64_t mark);
    /// "FILE: why" in words, for a person.
    static Glib::ustring describe(const tLoadProblem& problem);
    static void clear();
    /// A message as one line: trailing blanks and newlines dropped, inner newlines made spaces.
    static std::string oneLine(std::string text);

    /// Drops problems of one reason reported after mark: a loader that found
    /// the thing another way after all.
    static void forget(uint64_t mark, tLoadProblem::tReason reason);
    /// Adds a problem found by a loader itself (nothing else reports it).
    static void add(tLoadProblem::tReason reason, const Glib::ustring& asked, const Glib::ustring& detail);

    /// While alive, problems are put down to this file (isFile) or to this
    /// thing asked for within the current file.
    class tScope
    {
    public:
        tScope(const Glib::ustring& name, bool isFile);
        ~tScope();
    private:
        tScope(const tScope&);
        tScope& operator=(const tScope&);
        bool mIsFile;
    };
};

#endif
