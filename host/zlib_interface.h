#pragma once
// zlib_interface: the host's wrapper of zlib's whole-buffer inflate.
//
// Contract for a host's vendor (what the plug-in relies on):
// - ziUncompress inflates one zlib stream (header, deflate data, Adler-32
//   trailer) from src[0 .. src_len) into dst, which has room for *dst_len
//   bytes. It never writes past dst[*dst_len - 1] and never reads past
//   src[src_len - 1].
// - On return *dst_len holds the number of bytes produced, whatever the
//   result: a short (truncated) stream, a corrupt one or one that inflates to
//   more than dst holds reports the bytes written before it stopped (all of
//   dst for the last). The plug-in uses those bytes either way.
// - The result is zlib's code: Z_OK (0) when the whole stream was inflated and
//   checked, Z_BUF_ERROR when dst was too small or the stream ended early,
//   Z_DATA_ERROR for corrupt data, Z_MEM_ERROR when memory ran out.
// - Null pointers or a non-positive length produce nothing: *dst_len becomes
//   0 and the result is Z_BUF_ERROR (Z_STREAM_ERROR, with nothing written,
//   when dst_len itself is null).

namespace zlib_interface {

int ziUncompress(char* dst, int* dst_len, const char* src, int src_len);

} // namespace zlib_interface
