#pragma once
// zlib_interface: the host's wrapper of zlib's whole-buffer inflate.

namespace zlib_interface {

// Inflates the zlib stream src[0 .. src_len) into dst, which has room for
// *dst_len bytes. On return *dst_len holds the number of bytes produced, also
// when the stream was short, corrupt or larger than dst. Returns zlib's result
// code (Z_OK = 0 on success).
int ziUncompress(char* dst, int* dst_len, const char* src, int src_len);

} // namespace zlib_interface
