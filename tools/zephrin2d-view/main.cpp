// zephrin2d-view: a scene file in an X11 window, animated in real time.
#include "CommandLine.h"
#include "ContentCheck.h"
#include "GLRecorder.h"
#include "ImageIO.h"
#include "OutputSet.h"
#include "Paths.h"
#include "LoadReport.h"
#include "SceneFiles.h"

#include "CDrawManager.h"
#include "CGraphics2D.h"
#include "CText.h"

#include <VellOpenGLConfig.h>

#include <Buttons.h>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

namespace {

const char* const kTool = "zephrin2d-view";

struct tOptions
{
    SceneOptions files;
    int width = 320;
    int height = 240;
    int frames = 0;  // 0: until quit
    std::string screenshot;
    bool noColors = false;
};

const char* const kAbout = "Shows a scene file in a window and plays its actors in real time.\n";

const char* const kEpilog =
    "Keys (the handheld's buttons): Start (Return or space) pauses and resumes,\n"
    "right arrow steps one frame (33 ms) while paused, Select (Backspace) reloads\n"
    "every file from disk, Escape or closing the window quits.\n"
    "The title shows frames per second, draw calls and uploaded bytes per frame.\n";

bool parse(int argc, char** argv, tOptions& o, int& status)
{
    std::vector<std::string> scenes;
    CommandLine line(kTool, "SCENE.json", kAbout);
    line.content(o.files);
    line.add({"--size", "", "WxH", "window size (default 320x240), each side 1 to 4096",
              [&o](const std::string& v) {
                  int w = 0, h = 0;
                  char tail = 0;
                  if (std::sscanf(v.c_str(), "%dx%d%c", &w, &h, &tail) != 2 || w < 1 || h < 1 || w > 4096 || h > 4096)
                      return "--size needs WxH, each side 1 to 4096, got '" + v + "'";
                  o.width = w;
                  o.height = h;
                  return std::string();
              }});
    line.number("--frames", "N", "quit after N frames (for scripts and tests)", 1, 100000000, o.frames);
    line.flag("--no-colors", "ignore element colours in batched drawing: \"Color\"\ntints and fades only immediate draws", o.noColors);
    line.text("--screenshot", "FILE", "write the last frame to FILE.png when quitting", o.screenshot);
    line.operands("scene file", 1, 1, scenes);
    line.epilog(kEpilog);
    if (!line.parse(argc, argv, status))
        return false;
    o.files.scene = scenes[0];
    return true;
}

/// The frame just drawn, opaque, as a set of one file.
bool saveScreenshot(const Tadwick::Vell::VellOpenGLConfig& config, const SceneOptions& inputs,
                    const std::string& path)
{
    OutputSet out;
    for (const std::string& input : inputs.sheets)
        out.protect(input);
    for (const std::string& input : inputs.actors)
        out.protect(input);
    out.protect(inputs.costume);
    out.protect(inputs.scene);
    ImageIO::tImage frame;
    std::string temp;
    if (out.open(directoryOf(path)) && !(temp = out.add(path)).empty() &&
        config.readPixels(frame.rgba, frame.width, frame.height) && ImageIO::writePNG(temp, frame, true) &&
        out.commit())
        return true;
    std::fprintf(stderr, "%s: %s\n", kTool, out.errorFile().empty() ? (path + ": cannot be written").c_str()
                                                                     : out.error().c_str());
    return false;
}

/// What the last load reported: on standard error, in the window title and
/// on screen, so that a scene with problems is not just a black window.
class ProblemNote
{
public:
    explicit ProblemNote(const tOptions& o) : mOptions(o) {}
    ~ProblemNote() { clear(); }

    /// Loads (or reloads) the scene; false when it failed or reported problems.
    bool load(SceneFiles& scene, std::string& error)
    {
        clear();
        std::string firstFound;
        const int found = ContentCheck::errorsIn(mOptions.files, firstFound);
        mReport.reset();
        mReport.add(found, firstFound);
        const bool loaded = scene.load(error);
        if (!loaded)
            mLines.push_back(error);
        if (mReport.count() > 0) {
            const std::string summary = mReport.summary(mOptions.files.scene, mOptions.files.checkArguments());
            std::fprintf(stderr, "%s: %s\n", kTool, summary.c_str());
            mLines.push_back(mOptions.files.scene + ": " + std::to_string(mReport.count()) + " problems while loading");
            mLines.push_back("first: " + mReport.first());
            mLines.push_back("run zephrin2d-check " + mOptions.files.checkArguments());
            mLines.push_back("then press r to reload");
        } else if (!loaded) {
            std::fprintf(stderr, "%s: %s\n", kTool, error.c_str());
        }
        show();
        return loaded && mReport.count() == 0;
    }

    std::string title() const
    {
        return mLines.empty() ? mOptions.files.scene : "PROBLEMS: " + mLines[0] + " - " + mOptions.files.scene;
    }

    void clear()
    {
        for (const boost::shared_ptr<CText>& text : mTexts)
            CDrawManager::Instance()->remove(text);
        mTexts.clear();
        mLines.clear();
    }

private:
    void show()
    {
        Glib::ustring font = "DejaVu Sans";
        for (size_t i = 0; i < mLines.size(); ++i) {
            boost::shared_ptr<CText> text(new CText(mLines[i], font, 12));
            text->setColor(tColor{255, 80, 60, 255});
            text->moveTo(tVect3{tFixed(6), tFixed(mOptions.height - 18 * static_cast<int>(i + 1)), tFixed(9)});
            CDrawManager::Instance()->add(text);
            mTexts.push_back(text);
        }
    }

    const tOptions& mOptions;
    LoadReport mReport;
    std::vector<std::string> mLines;
    std::vector<boost::shared_ptr<CText> > mTexts;
};

/// The milliseconds the scene moves on: scripted runs step like the render tool, whatever the clock says.
int stepOf(const tOptions& o, int steps, bool paused, int frame, int elapsed)
{
    if (paused && steps > 0)
        return 33 * steps;
    return o.frames > 0 ? (frame > 0 ? 33 : 0) : paused ? 0 : elapsed;
}

void showTitle(Tadwick::Vell::VellOpenGLConfig& config, const std::string& name, double fps,
               const GLRecorder::tCounters& counters, bool paused)
{
    char title[512];
    std::snprintf(title, sizeof title, "%s  %.0f fps  %lu draw calls  %lu bytes uploaded%s", name.c_str(), fps,
                  counters.drawCalls, counters.uploadBytes, paused ? "  (paused)" : "");
    config.setWindowTitle(title);
}

Tadwick::Vell::VellOpenGLConfig* openWindow(const tOptions& o)
{
    Tadwick::Vell::VellOpenGLConfig::SetWindowed(true);
    Tadwick::Vell::VellOpenGLConfig::SetSurfaceSize(o.width, o.height);
    CGraphics2D::Instance()->init(tVect2{tFixed(o.width), tFixed(o.height)}, tColor{0, 0, 0, 255}, 0, 0);
    Tadwick::Vell::VellOpenGLConfig* config = CGraphics2D::Instance()->getConfig();
    if (!config || !config->isValid() || !config->getX11Display()) {
        std::fprintf(stderr, "%s: no X11 display to open a window on (is DISPLAY set?)\n", kTool);
        return 0;
    }
    return config;
}

int view(const tOptions& o)
{
    Tadwick::Vell::VellOpenGLConfig* config = openWindow(o);
    if (!config)
        return 1;
    CGraphics2D* graphics = CGraphics2D::Instance();
    CDrawManager::Instance()->setColorsEnabled(!o.noColors);
    Tadwick::Vell::CButtons buttons;
    Tadwick::Vell::CFrameClock clock;

    SceneFiles scene(o.files);
    std::string error;
    // The exit status tells whether the scene shown last loaded without problems.
    ProblemNote note(o);
    bool loaded = note.load(scene, error);

    typedef std::chrono::steady_clock tClock;
    const std::chrono::milliseconds frameTime(16);
    tClock::time_point titleAt = tClock::now();
    bool paused = false;
    int frame = 0, framesSinceTitle = 0;
    int status = 0;
    for (;;) {
        buttons.Poll();
        if (buttons.QuitRequested())
            break;
        if (buttons.Presses(Tadwick::Vell::CButtons::START) % 2)
            paused = !paused;
        if (buttons.WasPressed(Tadwick::Vell::CButtons::SELECT))
            loaded = note.load(scene, error);
        const tClock::time_point now = tClock::now();
        const int dt = stepOf(o, buttons.Presses(Tadwick::Vell::CButtons::RIGHT), paused, frame, clock.Tick());
        if (dt > 0)
            scene.step(dt);

        GLRecorder::resetCounters();
        graphics->clearBuffer();
        scene.draw();
        const GLRecorder::tCounters counters = GLRecorder::counters();
        const bool lastFrame = o.frames > 0 && frame + 1 >= o.frames;
        if (lastFrame && !o.screenshot.empty() && !saveScreenshot(*config, o.files, o.screenshot))
            status = 1;
        graphics->swapBuffer();
        ++frame;
        ++framesSinceTitle;
        const double seconds = std::chrono::duration<double>(now - titleAt).count();
        if (seconds >= 0.5) {
            showTitle(*config, note.title(), framesSinceTitle / seconds, counters, paused);
            titleAt = now;
            framesSinceTitle = 0;
        }
        if (lastFrame)
            break;
        const tClock::duration spent = tClock::now() - now;
        if (spent < frameTime)
            std::this_thread::sleep_for(frameTime - spent);
    }
    note.clear();
    scene.unload();
    return loaded ? status : 1;
}

} // namespace

int main(int argc, char** argv)
{
    tOptions options;
    int status = 0;
    if (!parse(argc, argv, options, status))
        return status;
    status = view(options);
    CGraphics2D::Instance()->cleanup();
    return status;
}
