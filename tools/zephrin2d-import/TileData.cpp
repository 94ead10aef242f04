#include "TiledMap.h"

#include <zlib.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>

namespace {

bool base64Decode(const std::string& text, std::string& out)
{
    int bits = 0, value = 0;
    for (unsigned char c : text) {
        int d;
        if (c >= 'A' && c <= 'Z')
            d = c - 'A';
        else if (c >= 'a' && c <= 'z')
            d = c - 'a' + 26;
        else if (c >= '0' && c <= '9')
            d = c - '0' + 52;
        else if (c == '+')
            d = 62;
        else if (c == '/')
            d = 63;
        else if (c == '=' || std::isspace(c))
            continue;
        else
            return false;
        value = ((value << 6) | d) & 0xFFFFFF;
        bits += 6;
        if (bits >= 8) {
            bits -= 8;
            out += static_cast<char>((value >> bits) & 0xFF);
        }
    }
    return true;
}

// zlib and gzip streams alike (the window bits ask zlib to detect which).
bool inflateAll(const std::string& in, size_t expected, std::string& out)
{
    z_stream z = z_stream();
    if (inflateInit2(&z, 15 + 32) != Z_OK)
        return false;
    out.assign(expected + 1, '\0');
    z.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(in.data()));
    z.avail_in = static_cast<uInt>(in.size());
    z.next_out = reinterpret_cast<Bytef*>(&out[0]);
    z.avail_out = static_cast<uInt>(out.size());
    const int status = inflate(&z, Z_FINISH);
    out.resize(out.size() - z.avail_out);
    inflateEnd(&z);
    return status == Z_STREAM_END;
}

bool decodeCsv(const std::string& text, size_t count, std::vector<uint32_t>& gids, std::string& error)
{
    const char* p = text.c_str();
    while (*p) {
        while (*p && (std::isspace(static_cast<unsigned char>(*p)) || *p == ','))
            ++p;
        if (!*p)
            break;
        char* end = nullptr;
        const unsigned long long v = *p == '-' ? ~0ull : strtoull(p, &end, 10);
        if (end == p || !end || v > 0xFFFFFFFFull) {
            error = "the CSV tile data holds something that is not a tile number";
            return false;
        }
        if (gids.size() > count)
            break;
        gids.push_back(static_cast<uint32_t>(v));
        p = end;
    }
    return true;
}

} // namespace

bool decodeTileData(const std::string& encoding, const std::string& compression, const std::string& text,
                    size_t count, std::vector<uint32_t>& gids, std::string& error)
{
    gids.clear();
    if (encoding == "csv") {
        if (!decodeCsv(text, count, gids, error))
            return false;
    } else if (encoding == "base64") {
        std::string bytes, raw;
        if (!base64Decode(text, bytes)) {
            error = "the base64 tile data holds a character that is not base64";
            return false;
        }
        if (compression == "zlib" || compression == "gzip") {
            if (!inflateAll(bytes, count * 4, raw)) {
                error = "the " + compression + " tile data cannot be uncompressed";
                return false;
            }
        } else if (compression.empty()) {
            raw = bytes;
        } else {
            error = compression + "-compressed tile data is not supported (use CSV, or base64 with zlib or gzip)";
            return false;
        }
        if (raw.size() % 4 == 0 && raw.size() / 4 != count) {
            error = "the layer holds " + std::to_string(raw.size() / 4) + " tiles where its size asks for " +
                    std::to_string(count);
            return false;
        }
        for (size_t i = 0; i + 3 < raw.size(); i += 4)
            gids.push_back(static_cast<uint8_t>(raw[i]) | static_cast<uint8_t>(raw[i + 1]) << 8 |
                           static_cast<uint8_t>(raw[i + 2]) << 16 | static_cast<uint32_t>(static_cast<uint8_t>(raw[i + 3])) << 24);
        if (raw.size() % 4) {
            error = "the tile data's length is not a whole number of tiles";
            return false;
        }
    } else {
        error = "the tile data encoding \"" + encoding + "\" is not supported (use CSV or base64)";
        return false;
    }
    if (gids.size() != count) {
        error = "the layer holds " + std::string(gids.size() > count ? "more than " : "") +
                std::to_string(std::min(gids.size(), count)) + " tiles where its size asks for " +
                std::to_string(count);
        return false;
    }
    return true;
}
