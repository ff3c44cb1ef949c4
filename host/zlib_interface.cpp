#include "host/zlib_interface.h"

#include <zlib.h>

namespace zlib_interface {

int ziUncompress(char* dst, int* dst_len, const char* src, int src_len)
{
    if (!dst_len)
        return Z_STREAM_ERROR;
    if (!dst || !src || *dst_len <= 0 || src_len <= 0) {
        *dst_len = 0;
        return Z_BUF_ERROR;
    }
    uLongf out = static_cast<uLongf>(*dst_len);
    // uncompress reports the bytes it produced in `out` whatever its result.
    int rc = uncompress(reinterpret_cast<Bytef*>(dst), &out, reinterpret_cast<const Bytef*>(src),
                        static_cast<uLong>(src_len));
    *dst_len = static_cast<int>(out);
    return rc;
}

} // namespace zlib_interface
