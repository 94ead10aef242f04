#include "Aseprite.h"

#include "ActorJson.h"
#include "ImageFiles.h"
#include "ImportLimits.h"
#include "JsonFields.h"
#include "JsonText.h"

#include <algorithm>
#include <set>

using namespace ImportLimits;

namespace {

const int MAX_DURATION = 65535;

struct tFrame
{
    const Json::Value* at = nullptr;
    int x = 0, y = 0, w = 0, h = 0;
    int srcX = 0, srcY = 0;      // where the stored rectangle sits in the source frame
    int sourceW = 0, sourceH = 0;
    int duration = 100;
};

struct tPivotKey
{
    int frame = 0;
    bool hasPivot = false;
    int x = 0, y = 0;  // bounds origin plus pivot, in source-frame pixels
};

struct tTag
{
    std::string name;
    int from = 0, to = 0;
    std::string direction = "forward";
    int repeat = 0;  // 0: for ever
};

// Everything read from the sheet before anything is made.
struct tSheet
{
    std::vector<tFrame> frames;
    ImageIO::tImage image;
    std::vector<tTag> tags;
    std::vector<tPivotKey> pivots;
};

// Coordinates are bounded so that no sum of a few of them overflows.
bool readRect(JsonFields& f, const Json::Value& frame, const char* key, int& x, int& y, int* w, int* h)
{
    if (!f.member(frame, key, Json::objectValue))
        return false;
    const Json::Value& r = frame[key];
    bool ok = true;
    if (w) {
        ok = f.integer(r, "x", x, -MAX_COORDINATE, MAX_COORDINATE) && ok;
        ok = f.integer(r, "y", y, -MAX_COORDINATE, MAX_COORDINATE) && ok;
    }
    ok = f.integer(r, "w", w ? *w : x, 0, MAX_COORDINATE) && ok;
    ok = f.integer(r, "h", h ? *h : y, 0, MAX_COORDINATE) && ok;
    return ok;
}

bool frameFits(JsonFields& f, const Json::Value& v, const tFrame& frame)
{
    if (frame.sourceW > MAX_IMAGE_SIDE || frame.sourceH > MAX_IMAGE_SIDE) {
        f.error(v, atMost("a frame's side", MAX_IMAGE_SIDE));
        return false;
    }
    if (frame.w <= 0 || frame.h <= 0 || frame.srcX < 0 || frame.srcY < 0 ||
        int64_t(frame.srcX) + frame.w > frame.sourceW || int64_t(frame.srcY) + frame.h > frame.sourceH) {
        f.error(v, "the frame's rectangle does not fit its source size");
        return false;
    }
    return true;
}

bool readFrame(JsonFields& f, const Json::Value& v, tFrame& frame)
{
    frame.at = &v;
    if (!v.isObject()) {
        f.error(v, "a frame must be an object");
        return false;
    }
    bool ok = readRect(f, v, "frame", frame.x, frame.y, &frame.w, &frame.h);
    bool rotated = false;
    if (f.boolean(v, "rotated", rotated) && rotated) {
        f.error(v["rotated"], "rotated frames are not supported: export the sheet without rotation");
        ok = false;
    }
    frame.sourceW = frame.w;
    frame.sourceH = frame.h;
    int w = 0, h = 0;
    if (v.isMember("spriteSourceSize"))
        ok = readRect(f, v, "spriteSourceSize", frame.srcX, frame.srcY, &w, &h) && ok;
    if (v.isMember("sourceSize"))
        ok = readRect(f, v, "sourceSize", frame.sourceW, frame.sourceH, nullptr, nullptr) && ok;
    ok = f.integer(v, "duration", frame.duration, 0, MAX_DURATION, false) && ok;
    return ok && frameFits(f, v, frame);
}

bool readFrames(JsonFields& f, const Json::Value& frames, std::vector<tFrame>& parsed)
{
    if (frames.size() > unsigned(MAX_FRAMES)) {
        f.error(frames, atMost("the number of frames", MAX_FRAMES));
        return false;
    }
    const std::vector<std::string> names =
        frames.isObject() ? f.doc().memberNamesInFileOrder(frames) : std::vector<std::string>();
    parsed.resize(frames.size());
    bool ok = true;
    int64_t pixels = 0;
    for (Json::ArrayIndex i = 0; i < frames.size(); ++i) {
        ok = readFrame(f, frames.isArray() ? frames[i] : frames[names[i]], parsed[i]) && ok;
        pixels += int64_t(parsed[i].sourceW) * parsed[i].sourceH;
    }
    if (ok && pixels > MAX_TOTAL_PIXELS) {
        f.error(frames, atMost("the pixel count of all frames together", MAX_TOTAL_PIXELS));
        return false;
    }
    if (parsed.empty()) {
        f.error(frames, "the sheet has no frames");
        return false;
    }
    return ok;
}

bool readSheetImage(JsonFields& f, const Json::Value& meta, ImageIO::tImage& image)
{
    std::string name;
    if (!f.string(meta, "image", name))
        return false;
    const std::string path = ImageFiles::locate(f.doc().path(), name);
    std::string why;
    if (!ImageFiles::read(path, image, why)) {
        f.error(meta["image"], "the sheet image \"" + path + "\" " + why);
        return false;
    }
    return true;
}

bool framesInsideImage(JsonFields& f, const tSheet& sheet)
{
    bool ok = true;
    const ImageIO::tImage& image = sheet.image;
    for (const tFrame& frame : sheet.frames) {
        if (frame.x < 0 || frame.y < 0 || int64_t(frame.x) + frame.w > image.width ||
            int64_t(frame.y) + frame.h > image.height) {
            f.error(*frame.at, "the frame lies outside the " + std::to_string(image.width) + "x" +
                                   std::to_string(image.height) + " sheet image");
            ok = false;
        }
    }
    return ok;
}

tPivotKey readPivotKey(JsonFields& f, const Json::Value& key, bool& valid)
{
    tPivotKey k;
    int bx = 0, by = 0, bw = 0, bh = 0;
    valid = f.integer(key, "frame", k.frame) && readRect(f, key, "bounds", bx, by, &bw, &bh);
    if (!valid || !key.isMember("pivot"))
        return k;
    int px = 0, py = 0;
    const Json::Value& p = key["pivot"];
    if (f.integer(p, "x", px, -MAX_COORDINATE, MAX_COORDINATE) &&
        f.integer(p, "y", py, -MAX_COORDINATE, MAX_COORDINATE)) {
        k.hasPivot = true;
        k.x = bx + px;
        k.y = by + py;
    }
    return k;
}

// The first slice with a pivot gives every frame its registration point.
std::vector<tPivotKey> readPivots(JsonFields& f, const Json::Value& meta)
{
    std::vector<tPivotKey> keys;
    if (!meta.isMember("slices") || !f.member(meta, "slices", Json::arrayValue))
        return keys;
    for (const Json::Value& slice : meta["slices"]) {
        if (!f.member(slice, "keys", Json::arrayValue) || slice["keys"].size() > unsigned(MAX_FRAMES))
            continue;
        bool anyPivot = false;
        keys.clear();
        for (const Json::Value& key : slice["keys"]) {
            bool valid = false;
            const tPivotKey k = readPivotKey(f, key, valid);
            if (valid)
                keys.push_back(k);
            anyPivot = anyPivot || k.hasPivot;
        }
        if (anyPivot)
            return keys;
    }
    keys.clear();
    return keys;
}

bool readRepeat(JsonFields& f, const Json::Value& r, tTag& tag)
{
    // Aseprite writes the count as a string.
    const std::string text = r.isString() ? r.asString() : r.isInt() ? std::to_string(r.asInt()) : "x";
    char* end = nullptr;
    const long n = text.size() > 8 ? -1 : strtol(text.c_str(), &end, 10);
    if (text.empty() || n < 0 || *end || n > 1000) {
        f.error(r, "\"repeat\" must be a count from 0 to 1000");
        return false;
    }
    tag.repeat = static_cast<int>(n);
    return true;
}

bool readTag(JsonFields& f, const Json::Value& v, int frameCount, tTag& tag)
{
    bool ok = f.string(v, "name", tag.name);
    ok = f.integer(v, "from", tag.from) && ok;
    ok = f.integer(v, "to", tag.to) && ok;
    ok = ok && f.string(v, "direction", tag.direction, false);
    if (!ok)
        return false;
    if (tag.from < 0 || tag.to >= frameCount || tag.from > tag.to) {
        f.error(v, "tag \"" + tag.name + "\" covers frames " + std::to_string(tag.from) + " to " +
                       std::to_string(tag.to) + ", outside the sheet's frames 0 to " + std::to_string(frameCount - 1));
        return false;
    }
    if (tag.direction != "forward" && tag.direction != "reverse" && tag.direction != "pingpong" &&
        tag.direction != "pingpong_reverse") {
        f.error(v["direction"], "tag \"" + tag.name + "\" has the unknown direction \"" + tag.direction +
                                    "\" (forward, reverse, pingpong or pingpong_reverse)");
        return false;
    }
    return !v.isMember("repeat") || readRepeat(f, v["repeat"], tag);
}

// An upper bound of the cels tagOrder gives, computed without making them.
int64_t celsOf(const tTag& tag)
{
    const int64_t frames = int64_t(tag.to) - tag.from + 1;
    const bool pingpong = tag.direction == "pingpong" || tag.direction == "pingpong_reverse";
    return frames * (pingpong ? std::max(2, tag.repeat) : std::max(1, tag.repeat));
}

bool readTags(JsonFields& f, const Json::Value& meta, const std::string& untaggedName, tSheet& sheet)
{
    if (!meta.isMember("frameTags"))
        return true;
    if (!f.member(meta, "frameTags", Json::arrayValue))
        return false;
    const Json::Value& list = meta["frameTags"];
    if (list.size() > unsigned(MAX_TAGS)) {
        f.error(list, atMost("the number of tags", MAX_TAGS));
        return false;
    }
    std::set<std::string> names;
    int64_t cels = int64_t(sheet.frames.size());
    bool ok = true;
    for (const Json::Value& v : list) {
        tTag tag;
        if (!readTag(f, v, static_cast<int>(sheet.frames.size()), tag)) {
            ok = false;
            continue;
        }
        if (!names.insert(tag.name).second || tag.name == untaggedName) {
            f.error(v["name"], "two animations would be named \"" + tag.name + "\"");
            ok = false;
        }
        cels += celsOf(tag);
        sheet.tags.push_back(tag);
    }
    if (ok && cels > MAX_CELS) {
        f.error(list, atMost("the number of cels of all animations", MAX_CELS));
        return false;
    }
    return ok;
}

// The frames of a tag in playing order: pingpong goes there and back without
// repeating its ends; a repeat count plays that many passes.
std::vector<int> tagOrder(const tTag& tag)
{
    std::vector<int> forward, order;
    for (int i = tag.from; i <= tag.to; ++i)
        forward.push_back(i);
    const bool reversed = tag.direction == "reverse" || tag.direction == "pingpong_reverse";
    std::vector<int> pass(forward);
    if (reversed)
        std::reverse(pass.begin(), pass.end());
    if (tag.direction == "forward" || tag.direction == "reverse") {
        for (int r = 0; r < std::max(1, tag.repeat); ++r)
            order.insert(order.end(), pass.begin(), pass.end());
        return order;
    }
    // A pingpong pass each way; the first frame of every later pass is the
    // last of the one before, so it is left out.
    const int passes = tag.repeat > 0 ? tag.repeat : 2;
    for (int p = 0; p < passes; ++p) {
        const size_t skip = p == 0 ? 0 : 1;
        order.insert(order.end(), pass.begin() + std::min(skip, pass.size()), pass.end());
        std::reverse(pass.begin(), pass.end());
    }
    // Looping back to the start: the end frame would repeat.
    if (tag.repeat == 0 && order.size() > 1 && forward.size() > 1)
        order.pop_back();
    return order;
}

bool readSheet(JsonFields& f, const tAsepriteOptions& options, tSheet& sheet)
{
    const Json::Value& root = f.doc().root();
    if (!f.member(root, "meta", Json::objectValue))
        return false;
    const Json::Value& meta = root["meta"];
    bool ok = readFrames(f, root["frames"], sheet.frames);
    ok = readSheetImage(f, meta, sheet.image) && ok;
    ok = ok && framesInsideImage(f, sheet);
    ok = readTags(f, meta, options.name, sheet) && ok;
    sheet.pivots = readPivots(f, meta);
    return ok && !f.diag().failed();
}

tImportPicture framePicture(const tSheet& sheet, size_t i, const std::string& name)
{
    const tFrame& frame = sheet.frames[i];
    tImportPicture picture;
    picture.name = name + "/" + std::to_string(i);
    picture.image.width = frame.sourceW;
    picture.image.height = frame.sourceH;
    picture.image.rgba.assign(static_cast<size_t>(frame.sourceW) * frame.sourceH * 4, 0);
    for (int y = 0; y < frame.h; ++y)
        std::copy(sheet.image.at(frame.x, frame.y + y), sheet.image.at(frame.x, frame.y + y) + frame.w * 4,
                  picture.image.at(frame.srcX, frame.srcY + y));
    // Without a pivot the bottom-left corner, where a plain billboard has its origin.
    picture.regX = 0;
    picture.regY = frame.sourceH;
    for (const tPivotKey& key : sheet.pivots) {
        if (key.frame <= static_cast<int>(i)) {
            picture.regX = key.hasPivot ? key.x : 0;
            picture.regY = key.hasPivot ? key.y : frame.sourceH;
        }
    }
    return picture;
}

std::vector<tAnimationPlan> planAnimations(const tSheet& sheet, const tAsepriteOptions& options)
{
    std::vector<tAnimationPlan> animations;
    std::vector<bool> tagged(sheet.frames.size(), false);
    for (const tTag& tag : sheet.tags) {
        tAnimationPlan animation;
        animation.label = tag.name;
        animation.hold = options.once || tag.repeat > 0;
        for (int frame : tagOrder(tag)) {
            animation.cels.push_back({options.name + "/" + std::to_string(frame), sheet.frames[frame].duration});
            tagged[frame] = true;
        }
        animations.push_back(animation);
    }
    tAnimationPlan rest;
    rest.label = options.name;
    rest.hold = options.once;
    for (size_t i = 0; i < sheet.frames.size(); ++i)
        if (!tagged[i])
            rest.cels.push_back({options.name + "/" + std::to_string(i), sheet.frames[i].duration});
    if (!rest.cels.empty())
        animations.push_back(rest);
    return animations;
}

} // namespace

bool isAsepriteSheet(const Json::Value& root)
{
    return JsonFields::has(root, "frames") && JsonFields::has(root, "meta") &&
           (root["frames"].isObject() || root["frames"].isArray());
}

bool importAseprite(const JsonDocument& doc, const tAsepriteOptions& options, tImportResult& result,
                    Diagnostics& diag)
{
    JsonFields f(doc, diag);
    tSheet sheet;
    if (!readSheet(f, options, sheet))
        return false;
    for (size_t i = 0; i < sheet.frames.size(); ++i)
        result.pictures.push_back(framePicture(sheet, i, options.name));
    const std::vector<tAnimationPlan> animations = planAnimations(sheet, options);
    tDefinitionCounts ids;
    result.kind = "actor";
    result.content = JsonText::pretty(JsonText::Object().set("Animation", animationArray(animations, ids)).text());
    for (const tAnimationPlan& a : animations)
        result.notes.push_back("animation \"" + a.label + "\": " + std::to_string(a.cels.size()) + " cels");
    return true;
}
