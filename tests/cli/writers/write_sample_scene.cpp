// Writes the hand-built sample scene in every format of `velmora convert`
// (sample.glb, sample.gltf, sample.obj, sample.ply, sample.stl, sample.3mf) into the
// folder given, for the external readers and validators to check.
#include <fstream>
#include <iostream>
#include <string>

#include "cli/writers/GltfWriter.h"
#include "cli/writers/ObjWriter.h"
#include "cli/writers/PlyWriter.h"
#include "cli/writers/StlWriter.h"
#include "cli/writers/ThreeMfWriter.h"
#include "tests/cli/writers/SampleScene.h"

namespace {

template <class Write>
bool write_file(const std::string& path, Write write)
{
    std::ofstream out(path, std::ios::binary);
    const std::string reason = out ? write(out) : "cannot open";
    if (!reason.empty() || !out.flush()) {
        std::cerr << "write_sample_scene: " << path << ": " << (reason.empty() ? "cannot write" : reason) << '\n';
        return false;
    }
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "usage: write_sample_scene FOLDER\n";
        return 2;
    }
    const std::string dir = argv[1];
    const Scene s = sample_scene::scene();
    const double mm = GltfWriter::millimetres_to_metres;
    bool ok = write_file(dir + "/sample.glb", [&](std::ostream& o) { return GltfWriter::write(s, mm, true, o); });
    ok &= write_file(dir + "/sample.gltf", [&](std::ostream& o) { return GltfWriter::write(s, mm, false, o); });
    ok &= write_file(dir + "/sample.obj", [&](std::ostream& o) { return ObjWriter::write(s, 1.0, o); });
    ok &= write_file(dir + "/sample.ply", [&](std::ostream& o) { return PlyWriter::write(s, 1.0, o); });
    ok &= write_file(dir + "/sample.stl", [&](std::ostream& o) { return StlWriter::write(s, 1.0, o); });
    ok &= write_file(dir + "/sample.3mf", [&](std::ostream& o) { return ThreeMfWriter::write(s, 1.0, o); });
    return ok ? 0 : 3;
}
