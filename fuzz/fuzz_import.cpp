// libFuzzer target: a whole archive imported as a host imports it: the
// options set in the host's resource table, read_input on the plug-in's
// instance, then the walk of every translator it handed over into an output
// sink that reads all it is handed. The first byte chooses the options (bits
// 0 to 2: scan, image and orthotic data); the rest is the archive, which the
// unzip service reads from memory under a name of this process.
#include <cstdint>
#include <string>
#include <unistd.h>

#include "WalkSink.h"
#include "archive/vmiFile.h"
#include "entry/vmiVelmora2rnx.h"
#include "host/qorResourceTable.h"
#include "host/qorabsAppInfo.h"
#include "host/qorabsContext.h"
#include "host/qorabsIfStream.h"
#include "host/qozUnZip.h"
#include "host/utBoolcoResourceKey.h"

namespace {

void set_options(unsigned choice)
{
    qorResourceTable* table = qor_resource_table_inquire();
    if (!table)
        return;
    table->reset();
    table->set_bool(utBoolcoResourceKey(utString(vmiFile::opt_process_scan_data)), (choice & 1u) != 0);
    table->set_bool(utBoolcoResourceKey(utString(vmiFile::opt_process_image_data)), (choice & 2u) != 0);
    table->set_bool(utBoolcoResourceKey(utString(vmiFile::opt_process_orthotic_data)), (choice & 4u) != 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 1)
        return 0;
    static const utString name(std::string("velmora_fuzz_import_") + std::to_string(getpid()) + ".vlm");
    static const qorabsAppInfo app(utString("velmora-fuzz"), utString("0"));
    const unsigned choice = data[0];
    set_options(choice);
    qozMemoryArchive held(name, data + 1, size - 1);
    const qorabsContext context(&app);
    vmiVelmora2rnx input(&app);
    qorabsIfStream stream{name};
    if (!input.read_input(context, stream))
        return 0;
    WalkSink sink;
    for (int i = 0; i < input.num_objects(); ++i, ++input)
        input.send_to(sink);
    sink.finish();
    return 0;
}
