#pragma once
// vmiVelmora2rnx: the import library the host loads. The host gets one
// instance through get_instance, asks it for its identity and calls
// read_input with the file: the archive is read into the node tree, and the
// root group's translator is handed over, through which the host pulls every
// group and piece of geometry. The instance owns the file and with it
// everything the translators point to, so it must outlive them.
//
// The virtual operations keep the host's slots: 1 set_output, 2 set_error
// (base), 3 library_name, 4 option, 5 database_number, 6 add_file_types,
// 7 add_extensions, 8 file_filter, 9 format_name, 10 translator_category
// (base), 11 destructor, 12 operator++, 13 num_objects, 14 attributes,
// 15 send_to (base), 16 read_input, 17 check_file_size (base).
#include "archive/vmiFile.h"
#include "host/qorabsLibInputEx.h"

class qorabsAppInfo;

class vmiVelmora2rnx : public qorabsLibInputEx {
public:
    static constexpr const char* name_of_library = "velmora2rnx";
    static constexpr const char* name_of_option = "VELMORA";
    static constexpr int number_of_database = 145;
    static constexpr const char* filter = "Velmora Files (*.vlm)|*.vlm";
    static constexpr const char* name_of_format = "Velmora";
    static constexpr const char* name_of_category = "FOOTWEAR";

    explicit vmiVelmora2rnx(const qorabsAppInfo* app);

    // 3 to 9.
    const char* library_name() const override;
    const char* option() const override;
    int database_number() const override;
    void add_file_types(intcoSet& types) const override;
    // The library claims no extension: the set is left as it is.
    void add_extensions(utStringcoSet& extensions) const override;
    const char* file_filter() const override;
    const char* format_name() const override;
    // 11. The file, and with it the node tree, goes first.
    ~vmiVelmora2rnx() override;
    // 16. Reads the stream's file by its name; 1 when a root group was built
    // (its translator handed over), else 0. Never throws.
    int read_input(const qorabsContext& context, qorabsIfStream& stream) override;

    vmiFile& file() { return file_; }

private:
    vmiFile file_;
};

// The library's exported entry points, unmangled.
extern "C" {
// A new instance (the host owns it and deletes it through its virtual
// destructor); null when it cannot be allocated.
qorabsLibInputEx* get_instance(const qorabsAppInfo* app);
// An entry point the host may look for; it does nothing.
void convert_from();
}
