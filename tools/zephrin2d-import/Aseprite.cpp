#include "Aseprite.h"

#include "ActorJson.h"
#include "JsonFields.h"
#include "JsonText.h"

#include <algorithm>
#include <set>

namespace {

const int MAX_DURATION = 65535;
const int MAX_SIDE = 8192;

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

bool readRect(JsonFields& f, const Json::Value& frame, const char* key, int& x, int& y, int* w, int* h)
{
    if (!f.member(frame, key, Json::objectValue))
        return false;
    const Json::Value& r = frame[key];
    bool ok = true;
    if (w) {
        ok = f.integer(r, "x", x) && ok;
        ok = f.integer(r, "y", y) && ok;
    }
    ok = f.integer(r, "w", w ? *w : x) && ok;
    ok = f.integer(r, "h", h ? *h : y) && ok;
    return ok;
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
    if (v.isMember("spriteSourceSize")) {
        int w = 0, h = 0;
        ok = readRect(f, v, "spriteSourceSize", frame.srcX, frame.srcY, &w, &h) && ok;
    }
    if (v.isMember("sourceSize"))
        ok = readRect(f, v, "sourceSize", frame.sourceW, frame.sourceH, nullptr, nullptr) && ok;
    if (v.isMember("duration") && f.integer(v, "duration", frame.duration)) {
        if (frame.duration < 0 || frame.duration > MAX_DURATION) {
            f.error(v["duration"], "a duration must lie between 0 and 65535 milliseconds");
            ok = false;
        }
    }
    if (ok && (frame.sourceW > MAX_SIDE || frame.sourceH > MAX_SIDE)) {
        f.error(v, "a frame may be at most " + std::to_string(MAX_SIDE) + " pixels on each side");
        ok = false;
    }
    if (ok && (frame.w <= 0 || frame.h <= 0 || frame.srcX < 0 || frame.srcY < 0 ||
               frame.srcX + frame.w > frame.sourceW || frame.srcY + frame.h > frame.sourceH)) {
        f.error(v, "the frame's rectangle does not fit its source size");
        ok = false;
    }
    return ok;
}

// The first slice with a pivot gives every frame its registration point.
std::vector<tPivotKey> readPivots(JsonFields& f, const Json::Value& meta)
{
    std::vector<tPivotKey> keys;
    if (!meta.isMember("slices") || !f.member(meta, "slices", Json::arrayValue))
        return keys;
    for (const Json::Value& slice : meta["slices"]) {
        if (!f.member(slice, "keys", Json::arrayValue))
            continue;
        bool anyPivot = false;
        keys.clear();
        for (const Json::Value& key : slice["keys"]) {
            tPivotKey k;
            int bx = 0, by = 0, bw = 0, bh = 0;
            if (!f.integer(key, "frame", k.frame) || !readRect(f, key, "bounds", bx, by, &bw, &bh))
                continue;
            if (key.isMember("pivot")) {
                int px = 0, py = 0;
                const Json::Value& p = key["pivot"];
                if (f.integer(p, "x", px) && f.integer(p, "y", py)) {
                    k.hasPivot = true;
                    k.x = bx + px;
                    k.y = by + py;
                    anyPivot = true;
                }
            }
            keys.push_back(k);
        }
        if (anyPivot)
            return keys;
    }
    keys.clear();
    return keys;
}

struct tTag
{
    std::string name;
    int from = 0, to = 0;
    std::string direction = "forward";
    int repeat = 0;  // 0: for ever
};

bool readTag(JsonFields& f, const Json::Value& v, int frameCount, tTag& tag)
{
    bool ok = f.string(v, "name", tag.name);
    ok = f.integer(v, "from", tag.from) && ok;
    ok = f.integer(v, "to", tag.to) && ok;
    if (v.isMember("direction"))
        ok = f.string(v, "direction", tag.direction) && ok;
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
    if (v.isMember("repeat")) {
        const Json::Value& r = v["repeat"];
        // Aseprite writes the count as a string.
        const std::string text = r.isString() ? r.asString() : r.isInt() ? std::to_string(r.asInt()) : "x";
        char* end = nullptr;
        const long n = strtol(text.c_str(), &end, 10);
        if (text.empty() || *end || n < 0 || n > 1000) {
            f.error(r, "\"repeat\" must be a count from 0 to 1000");
            return false;
        }
        tag.repeat = static_cast<int>(n);
    }
    return true;
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

} // namespace

bool isAsepriteSheet(const Json::Value& root)
{
    return root.isObject() && root.isMember("frames") && root.isMember("meta") &&
           (root["frames"].isObject() || root["frames"].isArray());
}

bool importAseprite(const JsonDocument& doc, const tAsepriteOptions& options, tImportResult& result,
                    Diagnostics& diag)
{
    JsonFields f(doc, diag);
    const Json::Value& root = doc.root();
    const Json::Value& frames = root["frames"];
    const Json::Value& meta = root["meta"];

    std::vector<tFrame> parsed;
    bool ok = true;
    if (frames.isArray()) {
        for (const Json::Value& v : frames) {
            parsed.emplace_back();
            ok = readFrame(f, v, parsed.back()) && ok;
        }
    } else {
        for (const std::string& name : doc.memberNamesInFileOrder(frames)) {
            parsed.emplace_back();
            ok = readFrame(f, frames[name], parsed.back()) && ok;
        }
    }
    if (parsed.empty()) {
        f.error(frames, "the sheet has no frames");
        return false;
    }

    std::string imageName;
    ImageIO::tImage sheet;
    if (f.member(root, "meta", Json::objectValue) && f.string(meta, "image", imageName)) {
        const std::string path = imageName[0] == '/' ? imageName : directoryOf(doc.path()) + imageName;
        if (!ImageIO::readPNG(path, sheet)) {
            f.error(meta["image"], "the sheet image \"" + path + "\" is not there or is not a PNG");
            ok = false;
        }
    } else {
        ok = false;
    }
    for (const tFrame& frame : parsed) {
        if (sheet.width && (frame.x < 0 || frame.y < 0 || frame.x + frame.w > sheet.width ||
                            frame.y + frame.h > sheet.height)) {
            f.error(*frame.at, "the frame lies outside the " + std::to_string(sheet.width) + "x" +
                                   std::to_string(sheet.height) + " sheet image");
            ok = false;
        }
    }

    std::vector<tTag> tags;
    if (meta.isMember("frameTags") && f.member(meta, "frameTags", Json::arrayValue)) {
        std::set<std::string> names;
        for (const Json::Value& v : meta["frameTags"]) {
            tTag tag;
            if (!readTag(f, v, static_cast<int>(parsed.size()), tag)) {
                ok = false;
                continue;
            }
            if (!names.insert(tag.name).second || tag.name == options.name) {
                f.error(v["name"], "two animations would be named \"" + tag.name + "\"");
                ok = false;
            }
            tags.push_back(tag);
        }
    }
    const std::vector<tPivotKey> pivots = readPivots(f, meta);
    if (!ok || diag.failed())
        return false;

    for (size_t i = 0; i < parsed.size(); ++i) {
        const tFrame& frame = parsed[i];
        tImportPicture picture;
        picture.name = options.name + "/" + std::to_string(i);
        picture.image.width = frame.sourceW;
        picture.image.height = frame.sourceH;
        picture.image.rgba.assign(static_cast<size_t>(frame.sourceW) * frame.sourceH * 4, 0);
        for (int y = 0; y < frame.h; ++y)
            std::copy(sheet.at(frame.x, frame.y + y), sheet.at(frame.x, frame.y + y) + frame.w * 4,
                      picture.image.at(frame.srcX, frame.srcY + y));
        // Without a pivot the bottom-left corner, where a plain billboard has its origin.
        picture.regX = 0;
        picture.regY = frame.sourceH;
        for (const tPivotKey& key : pivots) {
            if (key.frame <= static_cast<int>(i)) {
                picture.regX = key.hasPivot ? key.x : 0;
                picture.regY = key.hasPivot ? key.y : frame.sourceH;
            }
        }
        result.pictures.push_back(picture);
    }

    std::vector<tAnimationSpec> animations;
    std::vector<bool> tagged(parsed.size(), false);
    for (const tTag& tag : tags) {
        tAnimationSpec animation;
        animation.label = tag.name;
        animation.hold = options.once || tag.repeat > 0;
        for (int frame : tagOrder(tag)) {
            animation.cels.push_back({options.name + "/" + std::to_string(frame), parsed[frame].duration});
            tagged[frame] = true;
        }
        animations.push_back(animation);
    }
    tAnimationSpec rest;
    rest.label = options.name;
    rest.hold = options.once;
    for (size_t i = 0; i < parsed.size(); ++i)
        if (!tagged[i])
            rest.cels.push_back({options.name + "/" + std::to_string(i), parsed[i].duration});
    if (!rest.cels.empty())
        animations.push_back(rest);

    tDefinitionCounts ids;
    result.kind = "actor";
    result.content = JsonText::pretty(JsonText::Object().set("Animation", animationArray(animations, ids)).text());
    for (const tAnimationSpec& a : animations)
        result.notes.push_back("animation \"" + a.label + "\": " + std::to_string(a.cels.size()) + " cels");
    return true;
}
