#include "entry/vmiVelmora2rnx.h"

#include <new>

#include "host/qorResourceTable.h"
#include "host/qorabsIfStream.h"
#include "host/qouFileType.h"
#include "host/utBoolcoResource.h"
#include "host/utBoolcoResourceKey.h"

namespace {

// The three options enter the host's resource table when the library is
// loaded, each on by default; the reader looks them up at every import.
struct option_registration {
    option_registration() noexcept
    {
        try {
            qorResourceTable* table = qor_resource_table_inquire();
            if (!table)
                return;
            for (const char* key : {vmiFile::opt_process_scan_data, vmiFile::opt_process_image_data,
                                    vmiFile::opt_process_orthotic_data})
                table->enter(utBoolcoResourceKey(utString(key)), utBoolcoResource(1));
        } catch (...) {
            // Without the entries the reader takes every option as on.
        }
    }
};

const option_registration registered_options;

} // namespace

vmiVelmora2rnx::vmiVelmora2rnx(const qorabsAppInfo* app) : qorabsLibInputEx(app)
{
    translator_category_ = std::make_shared<qorabsTranslatorCategory>(utString(name_of_category));
}

vmiVelmora2rnx::~vmiVelmora2rnx() = default;

const char* vmiVelmora2rnx::library_name() const
{
    return name_of_library;
}

const char* vmiVelmora2rnx::option() const
{
    return name_of_option;
}

int vmiVelmora2rnx::database_number() const
{
    return number_of_database;
}

void vmiVelmora2rnx::add_file_types(intcoSet& types) const
{
    types.add(int(qouFileType(qouVELMORA)));
}

void vmiVelmora2rnx::add_extensions(utStringcoSet&) const
{
}

const char* vmiVelmora2rnx::file_filter() const
{
    return filter;
}

const char* vmiVelmora2rnx::format_name() const
{
    return name_of_format;
}

int vmiVelmora2rnx::read_input(const qorabsContext& context, qorabsIfStream& stream)
{
    try {
        // The archive is opened again by its name; the stream is not read.
        if (!file_.read(stream.file_name()))
            return 0;
        for (int i = 0; i != file_.num_objects(); ++i) {
            qorabsTranslatorcoPrf translator = file_.make_translator(context, i);
            if (translator)
                add_translator(translator);
        }
        return 1;
    } catch (...) {
        // Out of memory: the import fails, silently.
        return 0;
    }
}

extern "C" qorabsLibInputEx* get_instance(const qorabsAppInfo* app)
{
    try {
        return new (std::nothrow) vmiVelmora2rnx(app);
    } catch (...) {
        return nullptr;
    }
}

extern "C" void convert_from()
{
}
