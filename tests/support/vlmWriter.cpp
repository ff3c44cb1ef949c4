#include "tests/support/vlmWriter.h"

#include <atomic>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>

#include <unistd.h>
#include <zip.h>
#include <zlib.h>

namespace vlm {

// ---- chunk chains ----

std::string zlib_compress(const std::string& data, int level)
{
    uLongf n = compressBound(static_cast<uLong>(data.size()));
    std::string out(n, '\0');
    if (compress2(reinterpret_cast<Bytef*>(out.data()), &n, reinterpret_cast<const Bytef*>(data.data()),
                  static_cast<uLong>(data.size()), level) != Z_OK)
        return std::string();
    out.resize(n);
    return out;
}

std::string chunk_header(std::uint32_t compressed, std::uint32_t decompressed, bool lower_case,
                         const std::string& magic)
{
    char c[16];
    char d[16];
    std::snprintf(c, sizeof c, lower_case ? "%08x" : "%08X", compressed);
    std::snprintf(d, sizeof d, lower_case ? "%08x" : "%08X", decompressed);
    std::string h = magic.substr(0, 3);
    h.resize(3, ' ');
    return h + "000000" + c + d;
}

std::string chunk(const std::string& data)
{
    const std::string z = zlib_compress(data);
    return chunk_header(static_cast<std::uint32_t>(z.size()), static_cast<std::uint32_t>(data.size())) + z;
}

std::string chunk_chain(const std::string& data, std::size_t chunk_size)
{
    std::string out;
    if (chunk_size == 0)
        return out;
    for (std::size_t at = 0; at < data.size(); at += chunk_size)
        out += chunk(data.substr(at, chunk_size));
    return out;
}

// ---- records ----

std::string le16(std::uint16_t v)
{
    return std::string{static_cast<char>(v & 0xFF), static_cast<char>(v >> 8)};
}

std::string le32(std::uint32_t v)
{
    std::string s(4, '\0');
    for (int k = 0; k < 4; ++k)
        s[static_cast<std::size_t>(k)] = static_cast<char>((v >> (8 * k)) & 0xFF);
    return s;
}

std::string lef32(float v)
{
    std::uint32_t u;
    std::memcpy(&u, &v, 4);
    return le32(u);
}

namespace {
std::string le64(std::uint64_t v)
{
    return le32(static_cast<std::uint32_t>(v)) + le32(static_cast<std::uint32_t>(v >> 32));
}

// The 508-byte header shared by grid and image records: sizes at 8 and 12,
// three spacings at 28, 32, 36; tail written by the caller from 40 on.
std::string record_header(std::int32_t a, std::int32_t b, float s1, float s2, float s3)
{
    std::string h(8, 'h');
    h += le32(static_cast<std::uint32_t>(a)) + le32(static_cast<std::uint32_t>(b));
    h += std::string(12, 'u');
    h += lef32(s1) + lef32(s2) + lef32(s3);
    return h;
}
} // namespace

std::string height_grid_record(const height_grid& g)
{
    std::string r = record_header(g.nx, g.ny, g.dx, g.dy, g.dz) + le16(g.nodata);
    r += std::string(466, 'g');
    for (std::uint16_t c : g.codes)
        r += le16(c);
    return r;
}

std::string grid_entry(const height_grid& g, const std::string& magic)
{
    return magic + height_grid_record(g);
}

std::string pcim_entry(const scan_image& im)
{
    std::string r = "PCIM" + record_header(im.width, im.height, im.sx, im.sy, im.sz);
    r += std::string(468, 'i');
    for (std::uint8_t p : im.pixels)
        r += static_cast<char>(p);
    return r;
}

// ---- the catalogue ----

catalogue& catalogue::header(const std::string& line) { return raw(line); }
catalogue& catalogue::separator(const std::string& line) { return raw(line); }

catalogue& catalogue::level1(const std::string& name0, const std::string& name1)
{
    return raw("1," + name0 + "," + name1);
}

catalogue& catalogue::level2(const std::string& name0, const std::string& name1)
{
    return raw("2," + name0 + "," + name1);
}

catalogue& catalogue::level3(int type1, int indx, int ref_indx, int type2, const std::string& date,
                             const std::string& name1, const std::string& comment, int data_indx)
{
    return raw("3," + std::to_string(type1) + "," + std::to_string(indx) + "," + std::to_string(ref_indx) + "," +
               std::to_string(type2) + "," + date + "," + name1 + ",0," + comment + ",0," +
               std::to_string(data_indx));
}

catalogue& catalogue::raw(const std::string& line)
{
    lines_.push_back(line);
    return *this;
}

std::string catalogue::text(bool crlf) const
{
    std::string out;
    for (const std::string& l : lines_)
        out += l + (crlf ? "\r\n" : "\n");
    return out;
}

// ---- the ZIP ----

archive& archive::add(const std::string& name, const std::string& content, method m)
{
    entries_.push_back({name, {content, m}});
    return *this;
}

bool archive::write(const std::string& path) const
{
    int error = 0;
    zip_t* z = zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &error);
    if (!z)
        return false;
    for (const auto& e : entries_) {
        const std::string& data = e.second.first;
        // libzip reads the buffer at zip_close; entries_ outlives that.
        zip_source_t* src = zip_source_buffer(z, data.data(), data.size(), 0);
        if (!src) {
            zip_discard(z);
            return false;
        }
        zip_int64_t i = zip_file_add(z, e.first.c_str(), src, ZIP_FL_ENC_RAW);
        if (i < 0) {
            zip_source_free(src);
            zip_discard(z);
            return false;
        }
        zip_set_file_compression(z, static_cast<zip_uint64_t>(i),
                                 e.second.second == method::stored ? ZIP_CM_STORE : ZIP_CM_DEFLATE, 0);
    }
    return zip_close(z) == 0;
}

namespace {

struct raw_entry {
    std::string name;
    std::string data;
    std::uint32_t crc;
    std::uint64_t offset;
};

std::uint32_t crc_of(const std::string& d)
{
    return static_cast<std::uint32_t>(
        crc32(crc32(0L, Z_NULL, 0), reinterpret_cast<const Bytef*>(d.data()), static_cast<uInt>(d.size())));
}

// Local header, data, optional descriptor; central header. Stored entries only.
std::string hand_made_zip(const std::vector<raw_entry>& in, bool descriptor, bool zip64)
{
    std::string out;
    std::vector<raw_entry> es = in;
    const std::uint16_t version = zip64 ? 45 : 20;
    const std::uint16_t flags = descriptor ? 8 : 0;
    const std::uint32_t ff = 0xFFFFFFFFu;
    for (raw_entry& e : es) {
        e.offset = out.size();
        const std::uint32_t size = static_cast<std::uint32_t>(e.data.size());
        const std::string extra = zip64 ? le16(1) + le16(16) + le64(e.data.size()) + le64(e.data.size()) : "";
        out += le32(0x04034b50) + le16(version) + le16(flags) + le16(0) + le16(0) + le16(0x21);
        out += descriptor ? le32(0) + le32(0) + le32(0) : le32(e.crc) + le32(zip64 ? ff : size) + le32(zip64 ? ff : size);
        out += le16(static_cast<std::uint16_t>(e.name.size())) + le16(static_cast<std::uint16_t>(extra.size()));
        out += e.name + extra + e.data;
        if (descriptor)
            out += le32(0x08074b50) + le32(e.crc) + le32(size) + le32(size);
    }
    const std::uint64_t cd_offset = out.size();
    for (const raw_entry& e : es) {
        const std::uint32_t size = static_cast<std::uint32_t>(e.data.size());
        const std::string extra = zip64 ? le16(1) + le16(24) + le64(e.data.size()) + le64(e.data.size()) + le64(e.offset) : "";
        out += le32(0x02014b50) + le16(version) + le16(version) + le16(flags) + le16(0) + le16(0) + le16(0x21);
        out += le32(e.crc) + le32(zip64 ? ff : size) + le32(zip64 ? ff : size);
        out += le16(static_cast<std::uint16_t>(e.name.size())) + le16(static_cast<std::uint16_t>(extra.size()));
        out += le16(0) + le16(0) + le16(0) + le32(0) + le32(zip64 ? ff : static_cast<std::uint32_t>(e.offset));
        out += e.name + extra;
    }
    const std::uint64_t cd_size = out.size() - cd_offset;
    const std::uint64_t n = es.size();
    if (zip64) {
        const std::uint64_t eocd64 = out.size();
        out += le32(0x06064b50) + le64(44) + le16(45) + le16(45) + le32(0) + le32(0);
        out += le64(n) + le64(n) + le64(cd_size) + le64(cd_offset);
        out += le32(0x07064b50) + le32(0) + le64(eocd64) + le32(1);
        out += le32(0x06054b50) + le16(0) + le16(0) + le16(0xFFFF) + le16(0xFFFF) + le32(ff) + le32(ff) + le16(0);
    } else {
        out += le32(0x06054b50) + le16(0) + le16(0) + le16(static_cast<std::uint16_t>(n)) +
               le16(static_cast<std::uint16_t>(n)) + le32(static_cast<std::uint32_t>(cd_size)) +
               le32(static_cast<std::uint32_t>(cd_offset)) + le16(0);
    }
    return out;
}

} // namespace

bool archive::write_with_data_descriptors(const std::string& path) const
{
    std::vector<raw_entry> es;
    for (const auto& e : entries_)
        es.push_back({e.first, e.second.first, crc_of(e.second.first), 0});
    return write_file(path, hand_made_zip(es, true, false));
}

bool archive::write_zip64(const std::string& path) const
{
    std::vector<raw_entry> es;
    for (const auto& e : entries_)
        es.push_back({e.first, e.second.first, crc_of(e.second.first), 0});
    return write_file(path, hand_made_zip(es, false, true));
}

// ---- files ----

std::string archive::bytes() const
{
    const std::string path = temp_path("archive_bytes");
    std::string out = write(path) ? read_file(path) : std::string();
    std::remove(path.c_str());
    return out;
}

std::string with_method(std::string zip, const std::string& name, std::uint16_t method)
{
    const auto le16_at = [&](std::size_t at) {
        return static_cast<std::size_t>(static_cast<unsigned char>(zip[at])) |
               static_cast<std::size_t>(static_cast<unsigned char>(zip[at + 1])) << 8;
    };
    // Local header: method at 8, name length at 26, name at 30; central
    // header: method at 10, name length at 28, name at 46.
    const struct { const char* signature; std::size_t method, name_len, name; } headers[] = {
        {"PK\x03\x04", 8, 26, 30}, {"PK\x01\x02", 10, 28, 46}};
    for (const auto& h : headers) {
        for (std::size_t at = zip.find(h.signature); at != std::string::npos; at = zip.find(h.signature, at + 4)) {
            if (at + h.name > zip.size() || zip.compare(at + h.name, le16_at(at + h.name_len), name) != 0)
                continue;
            zip[at + h.method] = static_cast<char>(method & 0xFF);
            zip[at + h.method + 1] = static_cast<char>(method >> 8);
        }
    }
    return zip;
}

bool write_file(const std::string& path, const std::string& bytes)
{
    std::ofstream f(path, std::ios::binary | std::ios::trunc);
    f.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return static_cast<bool>(f);
}

std::string read_file(const std::string& path)
{
    std::ifstream f(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(f), std::istreambuf_iterator<char>());
}

std::string temp_path(const std::string& tag)
{
    static std::atomic<int> counter{0};
    const std::filesystem::path dir = std::filesystem::temp_directory_path();
    return (dir / ("vlm_" + std::to_string(::getpid()) + "_" + std::to_string(counter++) + "_" + tag)).string();
}

} // namespace vlm
