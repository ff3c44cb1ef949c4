// libFuzzer target: one data entry's record, magic included, read as the
// reader reads a scan: "PCIM" as a scan image (a point cloud), any other
// magic as a height grid ("PCSC", or an orthotic model's grid), turned into a
// triangle block. The object is then handed to the host through its
// translator, so that every node and pixel read is also walked.
#include <cstdint>
#include <cstring>
#include <memory>

#include "WalkSink.h"
#include "archive/vmiFile.h"
#include "archive/vmiObject.h"
#include "host/qorabsContext.h"
#include "host/qorabsTranslator.h"
#include "translate/vmiObjectTranslator.h"

namespace {

constexpr int magic_length = 4;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size > static_cast<std::size_t>(INT32_MAX))
        return 0;
    const int len = static_cast<int>(size);
    // Exactly len bytes, so that a read past the record's end shows.
    std::unique_ptr<char[]> buf(new char[size + (size == 0)]);
    std::memcpy(buf.get(), data, size);
    vmiFile reader;
    reader.init_dat(buf.get(), len);
    const bool image = len >= magic_length && std::memcmp(buf.get(), "PCIM", magic_length) == 0;
    reader.pass(magic_length);
    std::unique_ptr<vmiObject> object(image ? reader.create_cloud_from_pcim()
                                            : reader.create_triblock_from_pscs());
    if (!object)
        return 0;
    const qorabsContext context;
    WalkSink sink;
    qorabsTranslatorcoPrf t = vmi_object_translator(object.get(), context);
    if (t)
        t->process(sink, nullptr);
    sink.finish();
    return 0;
}
