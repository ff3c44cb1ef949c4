#pragma once
// vlmWriter: builds ".vlm" archives for test fixtures, well-formed or not.
// Every piece is plain bytes (std::string) so that a test can cut, append or
// corrupt it before it goes into the archive:
// - data entries: chunk chains of any chunk size, single chunks with any
//   header, raw headers;
// - records: the height-grid record, "PCSC" scan models, "PCIM" scan images;
// - the catalogue text (LF or CR LF), with raw lines for malformed cases;
// - the ZIP itself, entries in any order, stored or deflated (through
//   libzip), or written by hand with data descriptors or zip64 fields.
// Contour texts and further record kinds are added beside these.
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace vlm {

// ---- chunk chains of data entries ----

// zlib stream of data (compress2 at the given level).
std::string zlib_compress(const std::string& data, int level = 6);
// A 25-byte chunk header: magic (3 bytes), 6 filler bytes, then C and D as 8
// hexadecimal characters (upper case unless lower_case).
std::string chunk_header(std::uint32_t compressed, std::uint32_t decompressed, bool lower_case = false,
                         const std::string& magic = "ZIP");
// One chunk: header and zlib stream of data, D = data.size().
std::string chunk(const std::string& data);
// data cut into pieces of chunk_size bytes (the last one shorter), one chunk each.
std::string chunk_chain(const std::string& data, std::size_t chunk_size);

// ---- records ----

struct height_grid {
    std::int32_t nx = 0;
    std::int32_t ny = 0;
    float dx = 1.0f;
    float dy = 1.0f;
    float dz = 1.0f;
    std::uint16_t nodata = 0;
    std::vector<std::uint16_t> codes;   // row by row; may be shorter than nx * ny
};
// The height-grid record as it stands behind a 4-byte magic (508-byte header,
// then the codes).
std::string height_grid_record(const height_grid& g);
// magic + the record: "PCSC" for a scan model; orthotic models use any magic.
std::string grid_entry(const height_grid& g, const std::string& magic = "PCSC");

struct scan_image {
    std::int32_t width = 0;
    std::int32_t height = 0;
    float sx = 1.0f;
    float sy = 1.0f;
    float sz = 1.0f;
    std::vector<std::uint8_t> pixels;   // row by row; may be shorter
};
// "PCIM" + the scan-image record (508-byte header, then one byte per pixel).
std::string pcim_entry(const scan_image& im);

// Little-endian pieces for hand-made records.
std::string le16(std::uint16_t v);
std::string le32(std::uint32_t v);
std::string lef32(float v);

// ---- the catalogue ----

class catalogue {
public:
    // Header lines before the "-" separator (none by default).
    catalogue& header(const std::string& line);
    catalogue& separator(const std::string& line = "----------");
    catalogue& level1(const std::string& name0, const std::string& name1);
    catalogue& level2(const std::string& name0, const std::string& name1);
    catalogue& level3(int type1, int indx, int ref_indx, int type2, const std::string& date,
                      const std::string& name1, const std::string& comment, int data_indx);
    // Any line, as given (without its line end).
    catalogue& raw(const std::string& line);
    // The lines joined, each ended by "\n" or "\r\n".
    std::string text(bool crlf = false) const;

private:
    std::vector<std::string> lines_;
};

// ---- the ZIP ----

enum class method { stored, deflated };

class archive {
public:
    archive& add(const std::string& name, const std::string& content, method m = method::deflated);
    // Writes the entries in the order added through libzip; true on success.
    bool write(const std::string& path) const;
    // The bytes write gives (through a temporary file); empty on failure.
    std::string bytes() const;
    // Writes the entries by hand, stored, each with its sizes in a data
    // descriptor behind the data (flag bit 3; the local header's sizes are 0).
    bool write_with_data_descriptors(const std::string& path) const;
    // Writes the entries by hand, stored, with zip64 extra fields in local and
    // central headers (sizes and offsets 0xFFFFFFFF in the 32-bit fields) and a
    // zip64 end-of-central-directory record and locator.
    bool write_zip64(const std::string& path) const;

private:
    std::vector<std::pair<std::string, std::pair<std::string, method>>> entries_;
};

// The ZIP bytes zip with the compression method of every entry named name
// set to method in its local and central header, as a writer of that method
// would have stored it (the data stays as it was: a reader that cannot decode
// the method must not try).
std::string with_method(std::string zip, const std::string& name, std::uint16_t method);
// A method this build's libzip cannot decode.
constexpr std::uint16_t zip_method_lzma = 14;

// Whole-file helpers.
bool write_file(const std::string& path, const std::string& bytes);
std::string read_file(const std::string& path);
// A fresh path in the temporary directory, named after tag.
std::string temp_path(const std::string& tag);

} // namespace vlm
