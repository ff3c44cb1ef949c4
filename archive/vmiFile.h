#pragma once
// vmiFile: the reader of a ".vlm" archive. It walks the ZIP's entries in
// archive order, joins the compressed chunks of every data entry (".dat") into
// one buffer kept in the archive directory, and parses every catalogue entry
// (".vlk") at once against the data entries read before it. It also holds the
// cursor over one data buffer that the record readers share.
//
// Split by concern: vmiFile.cpp (reading the archive, entry names, numbers
// from text), vmiFile_zip.cpp (the chunk chain of a data entry),
// vmiFile_dat.cpp (the cursor readers and the height-grid record),
// vmiFile_vlk.cpp (the catalogue parser), vmiFile_node.cpp (the node tree
// built from the catalogue), vmiFile_scan.cpp (scan models and scan images).
#include <cstdint>
#include <istream>

#include "archive/vmiArchiveDir.h"
#include "archive/vmiReadReason.h"
#include "archive/vmiVlk.h"
#include "grid/vmiWorkBudget.h"
#include "host/apByteOrderHandler.h"
#include "host/qorabsTranslatorcoPrf.h"
#include "host/utString.h"

class qorabsContext;
class vmiBaseGrid;
class vmiDesignAhead;
class vmiNode;
class vmiObject;
class vmiReadObserver;
class vmiVelmcontur;
class vmiVlkElement;

class vmiFile {
public:
    // A data entry's chain ends after this many chunks; the chunks read so
    // far are kept. Real entries hold a handful.
    static constexpr int max_chunks = 512;
    // zlib cannot inflate one compressed byte into more than about 1032 bytes
    // (a 258-byte match per two bits), so a chunk never gets more output room
    // than its compressed bytes times this, plus inflate_slack for the stream's
    // first bytes; a header that declares more is not believed.
    static constexpr std::int64_t max_inflate_ratio = 1032;
    static constexpr std::int64_t inflate_slack = 1024;
    // The most bytes one data entry may produce. The largest record, a scan
    // grid of vmiBaseGrid::max_nodes codes, needs 16 MiB; the chain ends once
    // its chunks have produced this much.
    static constexpr std::int64_t max_entry_bytes = std::int64_t(256) << 20;
    // Compressed input is read in pieces of this size, so a header that
    // declares more than the entry holds never allocates what is not there.
    static constexpr std::int64_t input_piece = std::int64_t(1) << 20;
    // The catalogue is read into a buffer of this size; a longer one is cut.
    static constexpr int catalogue_buffer = 10000;
    // A scan image of more pixels than this (each size on its own too) is not
    // read: the points and colours the host gets of it take some 28 bytes a
    // pixel. A foot's picture of 320 x 160 mm at 0.12 mm (3.6 million pixels)
    // fits; at 0.1 mm (5.1 million) it does not. The bound keeps a whole import within a
    // second and a few hundred megabytes.
    static constexpr long long max_image_pixels = 1LL << 22;
    // True when both sizes lie in 0 ... max_image_pixels and width * height
    // pixels stay within it.
    static constexpr bool image_size_allowed(long long width, long long height)
    {
        return width >= 0 && height >= 0 && width <= max_image_pixels && height <= max_image_pixels &&
               width * height <= max_image_pixels;
    }
    // The most grid nodes and image pixels the tree of one file may hold,
    // scans, images and the grids of the orthotic models together. A
    // catalogue may name the same large entry again and again; a record whose
    // points would pass the budget is skipped. The costliest import, one scan
    // of 2^20 nodes named seven times, takes some 0.75 s of processor time and
    // 230 MB; a patient's archive of a dozen scans, pictures and designs at a
    // quarter of a millimetre (6.9 million points) fits. No smaller than the
    // largest image, which would otherwise never be read.
    static constexpr long long max_tree_points = 7LL << 20;

    // The three options in the host's resource table (default 1), read each
    // time a catalogue is turned into nodes.
    static constexpr const char* opt_process_scan_data = "vmiOptProcessScanData";
    static constexpr const char* opt_process_image_data = "vmiOptProcessImageData";
    static constexpr const char* opt_process_orthotic_data = "vmiOptProcessOrthoticData";

    vmiFile();
    ~vmiFile();
    vmiFile(const vmiFile&) = delete;
    vmiFile& operator=(const vmiFile&) = delete;

    // Reads the archive; 1 when a root node exists afterwards, else 0.
    int read(utString file_name);
    // 1 when a root node exists, else 0.
    int num_objects() const;
    // A listener told of every entry and every catalogue while read walks the
    // archive (the inspect tool); null (the default) for none. Not owned.
    void set_observer(vmiReadObserver* observer) { observer_ = observer; }

    // Entry kind from the name's extension (".dat", ".vlk", other) into
    // type; returns the entry's number from the five characters before it.
    int check_arhive_file_name(utString& name, vmiEntryKind& type);
    // Decimal digits among count characters; every other character is skipped.
    int get_text_int(char* text, const int& count);
    // Hexadecimal digits (0-9, upper-case A-F) among exactly 8 characters,
    // as a 32-bit signed value; every other character is skipped.
    int get_text8_int(char* text);

    // The chunks of a data entry joined into a new buffer (new char[]), or
    // null when no chunk produced a byte; its length in len.
    char* extract_all_ZIP(std::istream& in, int& len);
    // The same, also giving the number of chunks joined and, when end is
    // given, why the chain ended.
    char* extract_all_ZIP(std::istream& in, int& len, int& chunks, vmiChainEnd* end = nullptr);
    // As above with the bound on produced bytes given (tests use small ones).
    char* join_chunks(std::istream& in, int& len, int& chunks, std::int64_t max_total,
                      vmiChainEnd* end = nullptr);
    // Output room for a chunk that declares decompressed size d and has c
    // compressed bytes, with budget bytes left for the entry.
    static std::int64_t chunk_capacity(std::int64_t c, std::int64_t d, std::int64_t budget);
    // The most compressed bytes worth reading for a chunk when budget output
    // bytes are left: the largest zlib stream of that many bytes (zlib's
    // compressBound) plus inflate_slack. A chunk declaring more is read that
    // far only, and the chain ends behind it.
    static std::int64_t input_limit(std::int64_t budget);
    // zlib_interface::ziUncompress; dst_len becomes the bytes produced.
    int un_compress(char* src, int& src_len, char* dst, int& dst_len);

    // The cursor over the current data buffer: readers never pass its end,
    // yield 0 when the bytes are not there and then do not move.
    void init_dat(char* buf, const int& len);
    int byte();
    int int16();
    int int32();
    float real32();
    void pass(const int& n);
    int is_end(const int& n);
    // How far the cursor stands from the buffer's start.
    int dat_offset() const { return static_cast<int>(pos_ - start_); }

    // A height-grid record at the cursor (right behind its magic), or null.
    vmiBaseGrid* create_base_grid();
    // The height grid of data entry indx (behind its 4-byte magic), or null.
    vmiBaseGrid* get_base_grid(const int& indx);

    // The catalogue parser over the catalogue entry numbered 0.
    void proc_vlk();
    // Points the catalogue cursor at len bytes of text.
    void init_vlk(char* buf, const int& len);
    vmiVlkElement* proc_vlk_level1_2(const int& level);
    vmiVlkElement* proc_vlk_level3();
    char* get_vlk_el(int& len);
    int get_vlk_int();
    utString get_vlk_str();
    void pass_vlk(const int& n);
    void pass_vlk_str();
    int is_vlk_char(const char& c);
    int is_vlk_end();

    // The entries read since the last catalogue, and the records of the
    // catalogue being processed.
    vmiArchiveDir& archive() { return archive_; }
    vmiVlk& catalogue() { return catalogue_; }

    // The node tree: the catalogue's records turned into groups and objects
    // (the options read from the resource table first). The root and the
    // current level-1 group carry over to the next catalogue.
    void fill_node();
    // The object of data entry indx: a scan model ("PCSC") or a scan image
    // ("PCIM") when its option is on; null otherwise. New, the caller's.
    vmiObject* extract_obj(const int& indx);
    // The contour record of data entry indx ("0001" text) over grid, with
    // counter as its identifier; null when the orthotic option is off or the
    // entry is missing or of another kind. Takes grid (may be null) in every
    // case: the record keeps it, or it is deleted.
    vmiVelmcontur* extract_velmcontur_data(const int& indx, const int& counter, vmiBaseGrid* grid);
    // The scan readers, with the cursor right behind the magic: a grid object
    // "PSCS_<num_objects()>", a cloud object "PCIM_<num_objects()>"; null on
    // negative sizes or spacings (and for an image beyond max_image_pixels).
    vmiObject* create_triblock_from_pscs();
    vmiObject* create_cloud_from_pcim();
    // Lays the tree out (check_shear from 0.0) and gives the root's group
    // translator; empty without a root. The index is not used.
    qorabsTranslatorcoPrf make_translator(const qorabsContext& context, int index);
    // Forwarded to the root; null / 0 without one.
    vmiNode* find_node(const utString& name);
    vmiObject* find_obj(const utString& name);
    int common_no_of_obj();
    int common_no_of_obj(const int& level);
    vmiNode* root() const { return root_; }
    // The options as the last fill_node read them (1 before any).
    bool scan_data_on() const { return scan_on_; }
    bool image_data_on() const { return image_on_; }
    bool orthotic_data_on() const { return orthotic_on_; }
    // The data offset of the last scan object, kept for image records.
    int scan_data_offset() const { return scan_data_offset_; }
    int contour_counter() const { return contour_counter_; }
    // The points the tree holds, and the budget for them (max_tree_points;
    // tests lower it).
    long long tree_points() const { return tree_points_; }
    void set_point_budget(long long budget) { point_budget_ = budget; }
    // The work budget of each design's height sections
    // (vmiWorkBudget::max_design_work; tests and the fuzz targets lower it).
    void set_design_work_limit(long long limit) { design_work_limit_ = limit; }
    // Whether the next model's design is built on a second thread while a
    // model record builds its own (on by default; the tree is the same).
    void set_designs_ahead(bool on) { designs_ahead_ = on; }

private:
    struct vlk_outcome {
        bool found = false;      // the catalogue element numbered 0 exists
        bool separator = false;  // its "-" line was met, so records were read
    };
    vlk_outcome parse_vlk();
    void read_catalogue_entry(std::istream& in, const utString& name, const int& indx,
                              std::int64_t stored_size);
    void read_data_entry(std::istream& in, const utString& name, const int& indx,
                         std::int64_t stored_size);
    void read_entries(const utString& file_name);
    struct fill_state;
    void read_options();
    void fill_level1(const vmiVlkElement& e, fill_state& s);
    void fill_level2(const vmiVlkElement& e, fill_state& s);
    void fill_scan(const vmiVlkElement& e, fill_state& s);
    void fill_model(const vmiVlkElement& e, fill_state& s);
    // A new base grid for model record e (null without one). Moves the cursor.
    vmiBaseGrid* model_base_grid(const vmiVlkElement& e);
    // Hands the design of model record m, with the identifier it gets if
    // the models before it are kept, to ahead when it is free. Moves the
    // cursor.
    void hand_over(const vmiVlkElement& m, int identifier, vmiDesignAhead& ahead);
    // The design built for model record e before its turn (here or on the
    // second thread) with the identifier e gets now, or null; a design built
    // with another identifier is dropped. While the thread finishes e's
    // design, the next model's is built here, and the thread is then handed
    // the model after. Moves the cursor.
    vmiVelmcontur* take_early(const vmiVlkElement& e, fill_state& s);
    // The data buffer of entry indx under the cursor when it starts with
    // magic; false (cursor left) otherwise.
    bool select_dat(const int& indx, const char* magic);
    // The points a scan record at the cursor declares (its two sizes behind
    // the magic), 0 for a negative size; the cursor does not move.
    long long declared_points();
    // Whether n more points fit the budget; if so they are counted.
    bool take_points(const long long& n);
    // Tells the observer, if any, of a refusal.
    void skip(vmiReadSkip why) const;
    // A refusal of the level-3 record e of the catalogue being processed.
    vmiReadSkip record_skip(const vmiVlkElement& e, vmiSkipReason reason) const;
    // Why the data entry of record e gave no object: looked for only once the
    // reader has refused it, so that reading takes the same path with or
    // without an observer. Moves the cursor.
    vmiReadSkip data_refusal(const vmiVlkElement& e, const char* magic);
    vmiReadSkip object_refusal(const vmiVlkElement& e);

    // The contour records the tree builds are owned by their model nodes,
    // so the file keeps no array of them beside the tree.
    [[maybe_unused]] int unused_ = 0;
    int scan_data_offset_ = 0;
    int contour_counter_ = 0;
    apByteOrderHandler byte_order_{0, 0};
    char* pos_ = nullptr;
    char* start_ = nullptr;
    char* end_ = nullptr;
    int len_ = 0;
    vmiArchiveDir archive_;
    vmiVlk catalogue_;
    char* vlk_pos_ = nullptr;
    char* vlk_end_ = nullptr;
    // Root of the node tree (owned) and the current level-1 group: null
    // until a level-1 record is met.
    vmiNode* root_ = nullptr;
    vmiNode* current_level1_ = nullptr;
    long long tree_points_ = 0;
    long long point_budget_ = max_tree_points;
    long long design_work_limit_ = vmiWorkBudget::max_design_work;
    bool designs_ahead_ = true;
    bool scan_on_ = true;
    bool image_on_ = true;
    bool orthotic_on_ = true;
    vmiReadObserver* observer_ = nullptr;
    // The catalogue entry being processed, for the observer.
    utString vlk_name_;
    int vlk_indx_ = 0;
    int vlk_size_ = 0;
};
