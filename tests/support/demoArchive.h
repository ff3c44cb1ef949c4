#pragma once
// demoArchive: the demo archive that examples/make_demo_archive writes, the
// demo's test checks and the import benchmark reads. One patient seen twice
// (a first fitting and a check-up half a year later); each visit holds a scan
// of the left and of the right foot with the grey picture taken with it, and a
// left and a right insole design over the scan of the same foot.
#include <string>

namespace vlm::demo {

enum class side { left, right };

// Writes the demo archive to path; false when the file cannot be written.
bool write_archive(const std::string& path);

}  // namespace vlm::demo
