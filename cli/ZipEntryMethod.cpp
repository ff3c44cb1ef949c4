#include "cli/ZipEntryMethod.h"

#include <zip.h>

std::optional<ZipEntryMethod> ZipEntryMethod::of(const std::string& path, const std::string& name)
{
    int error = 0;
    zip_t* archive = zip_open(path.c_str(), ZIP_RDONLY, &error);
    if (!archive) return std::nullopt;
    std::optional<ZipEntryMethod> found;
    const zip_int64_t index = zip_name_locate(archive, name.c_str(), ZIP_FL_ENC_RAW);
    zip_stat_t st;
    zip_stat_init(&st);
    if (index >= 0 && zip_stat_index(archive, static_cast<zip_uint64_t>(index), ZIP_FL_ENC_RAW, &st) == 0 &&
        (st.valid & ZIP_STAT_COMP_METHOD)) {
        ZipEntryMethod m;
        m.method = static_cast<int>(st.comp_method);
        m.encrypted = (st.valid & ZIP_STAT_ENCRYPTION_METHOD) && st.encryption_method != ZIP_EM_NONE;
        m.supported = zip_compression_method_supported(st.comp_method, 0) != 0;
        found = m;
    }
    zip_discard(archive);
    return found;
}

std::string ZipEntryMethod::name_of(int method)
{
    switch (method) {
    case 0: return "stored";
    case 1: return "shrink";
    case 6: return "implode";
    case 8: return "deflate";
    case 9: return "deflate64";
    case 12: return "bzip2";
    case 14: return "LZMA";
    case 93: return "zstd";
    case 95: return "xz";
    case 98: return "PPMd";
    default: return "unknown";
    }
}
