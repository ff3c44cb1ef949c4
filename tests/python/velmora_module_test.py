"""The velmora Python module against `velmora dump`: the same tree, the same
numbers, the same reasons, with numpy views instead of copies.

ctest sets VELMORA (the command), VELMORA_MAKE_DEMO, VELMORA_WRITE_ARCHIVES
(the archive writers) and VELMORA_TEST_DIR (where they write), and puts the
built module on PYTHONPATH.
"""
import gc
import json
import os
import pathlib
import subprocess
import warnings

import numpy as np
import pytest

import velmora

VELMORA = os.environ["VELMORA"]
OPTION_OF = {
    "scans": "vmiOptProcessScanData",
    "images": "vmiOptProcessImageData",
    "models": "vmiOptProcessOrthoticData",
}


@pytest.fixture(scope="session")
def archives():
    folder = pathlib.Path(os.environ["VELMORA_TEST_DIR"])
    folder.mkdir(parents=True, exist_ok=True)
    subprocess.run([os.environ["VELMORA_MAKE_DEMO"], str(folder / "demo.vlm")], check=True)
    subprocess.run([os.environ["VELMORA_WRITE_ARCHIVES"], str(folder)], check=True)
    return folder


def run_dump(path, *options):
    args = [VELMORA, "dump"]
    for o in options:
        args += ["--option", o]
    r = subprocess.run(args + [str(path)], capture_output=True, text=True)
    doc = json.loads(r.stdout) if r.stdout else None
    return doc, r.stderr, r.returncode


def dump_root(path, *options):
    doc, _, rc = run_dump(path, *options)
    assert rc == 0
    return doc["root"]


def numbers(values, dtype, columns=None):
    a = np.array(values, dtype=dtype)
    if columns is not None:
        a = a.reshape(-1, columns)
    return a


def same(array, values, dtype, columns=None):
    expected = numbers(values, dtype, columns)
    assert array.dtype == expected.dtype
    assert array.shape == expected.shape
    return np.array_equal(array, expected, equal_nan=dtype is float)


def assert_matches(item, d, path="root"):
    """item (from velmora.load) holds exactly what the dump's d holds."""
    kinds = {"group": velmora.Group, "triblock": velmora.TriBlock, "curve": velmora.Curve,
             "pointcloud": velmora.PointCloud}
    assert type(item) is kinds[d["type"]], path
    assert item.name == d["name"], path
    assert item.mangled == d["mangled"], path
    if "layer" in d:
        assert (item.layer, item.level) == (d["layer"]["name"], d["layer"]["level"]), path
    else:
        assert (item.layer, item.level) == (None, None), path
    assert item.colour == d.get("colour"), path
    if d["type"] == "group":
        assert same(item.placement, d["xform"], float, 4), path
        assert len(item) == len(d["children"]), path
        for k, (child, dc) in enumerate(zip(item.children, d["children"])):
            assert_matches(child, dc, f"{path}/{k}")
    elif d["type"] == "triblock":
        assert item.status == d["status"], path
        assert same(item.vertices, d["vertices"], float, 3), path
        assert same(item.triangles, d["triangles"], np.int32, 3), path
    elif d["type"] == "curve":
        assert item.status == d["status"], path
        assert item.order == d["order"], path
        assert same(item.points, d["points"], float, 3), path
        assert same(item.knots, d["knots"], float), path
        if d["weights"] is None:
            assert item.weights is None, path
        else:
            assert same(item.weights, d["weights"], float), path
    else:
        assert same(item.points, d["points"], float, 3), path
        assert same(item.colours, d["colours"], np.uint8, 3), path


def count_kinds(tree):
    kinds = {}
    for item in tree.walk():
        kinds[type(item).__name__] = kinds.get(type(item).__name__, 0) + 1
    return kinds


def test_Load_DemoHoldsEveryItemAndArrayOfTheDump(archives):
    tree = velmora.load(archives / "demo.vlm")
    assert_matches(tree, dump_root(archives / "demo.vlm"))
    kinds = count_kinds(tree)
    # The demo holds scans, pictures and insole models with their outlines.
    assert kinds["TriBlock"] > 0 and kinds["Curve"] > 0 and kinds["PointCloud"] > 0


@pytest.mark.parametrize("option", sorted(OPTION_OF))
def test_Load_OptionOffMatchesTheDumpWithThatOptionOff(archives, option):
    tree = velmora.load(str(archives / "demo.vlm"), **{option: False})
    assert_matches(tree, dump_root(archives / "demo.vlm", OPTION_OF[option] + "=0"))
    assert count_kinds(tree) != count_kinds(velmora.load(archives / "demo.vlm"))


def test_Load_ScanAndImageFromTheFixtureWriterMatchTheDump(archives):
    path = archives / "scan_and_image.vlm"
    tree = velmora.load(path)
    assert_matches(tree, dump_root(path))
    # The root, the patient, the visit, the scans' group and one group each.
    assert count_kinds(tree) == {"Group": 5, "TriBlock": 1, "PointCloud": 1}


def test_Load_NameByteOutsideUtf8ReadsAsTheDumpWritesIt(archives):
    tree = velmora.load(archives / "scan_and_image.vlm")
    names = [g.name for g in [tree] + tree.walk() if isinstance(g, velmora.Group)]
    # 0xFC is no UTF-8 on its own: the character of its own value, U+00FC.
    assert any("M\u00fcller" in n for n in names), names


def test_Arrays_AreReadOnlyViewsOfTheImportNotCopies(archives):
    tree = velmora.load(archives / "scan_and_image.vlm")
    block = next(i for i in tree.walk() if isinstance(i, velmora.TriBlock))
    cloud = next(i for i in tree.walk() if isinstance(i, velmora.PointCloud))
    for array in (block.vertices, block.triangles, cloud.points, cloud.colours, tree.placement):
        assert not array.flags.owndata
        assert not array.flags.writeable
        assert type(array.base).__name__ == "PyCapsule"
    # Two reads of one array are the same memory, not two copies.
    assert np.shares_memory(block.vertices, block.vertices)
    assert block.vertices.__array_interface__["data"][0] == block.vertices.__array_interface__["data"][0]
    # Colours are the RGB of the host's RGBA colours, read in place.
    assert cloud.colours.strides == (4, 1)
    with pytest.raises(ValueError):
        block.vertices[0, 0] = 1.0


def test_Arrays_OutliveTheTreeTheyCameFrom(archives):
    path = archives / "demo.vlm"
    tree = velmora.load(path)
    curve = next(i for i in tree.walk() if isinstance(i, velmora.Curve))
    knots, points = curve.knots, curve.points
    name = curve.mangled
    del tree, curve
    gc.collect()
    velmora.load(path)  # new storage over the old, were it freed
    d = next(c for c in walk_dump(dump_root(path)) if c["mangled"] == name)
    assert same(knots, d["knots"], float)
    assert same(points, d["points"], float, 3)


def walk_dump(d):
    for c in d.get("children", []):
        yield c
        yield from walk_dump(c)


def velmora_message(path, *env):
    """velmora dump's one line of diagnosis for path, without "velmora dump: "."""
    _, err, rc = run_dump(path)
    assert err.startswith("velmora dump: ")
    return err.strip()[len("velmora dump: "):], rc


def test_Load_MissingFileRaisesFileErrorWithVelmorasReason(archives):
    path = str(archives / "no-such.vlm")
    with pytest.raises(velmora.FileError) as e:
        velmora.load(path)
    message, rc = velmora_message(path)
    assert str(e.value) == message
    assert (e.value.path, e.value.reason) == (path, "no such file")
    assert rc == 3
    assert isinstance(e.value, OSError) and isinstance(e.value, velmora.Error)


def test_Load_DirectoryRaisesFileError(archives):
    with pytest.raises(velmora.FileError) as e:
        velmora.load(archives)
    assert str(e.value) == velmora_message(archives)[0]
    assert e.value.reason == "is a directory"


def test_Load_NothingImportedRaisesWithTheReaderssReason(archives):
    path = str(archives / "no_catalogue.vlm")
    with pytest.raises(velmora.NothingImportedError) as e:
        velmora.load(path)
    message, rc = velmora_message(path)
    assert rc == 1
    assert str(e.value) == message
    assert e.value.reason == "nothing imported: the archive holds no catalogue entry (.vlk)"


def test_Load_GroupsWithoutGeometryWarnWithTheReadersReason(archives):
    path = str(archives / "wrong_magic.vlm")
    with warnings.catch_warnings(record=True) as caught:
        warnings.simplefilter("always")
        tree = velmora.load(path)
    message, rc = velmora_message(path)
    assert rc == 0
    assert [str(w.message) for w in caught if w.category is velmora.NoGeometryWarning] == [message]
    assert "starts with \"PCXX\"" in message
    assert count_kinds(tree) == {"Group": 3}


def test_Load_MissingPluginRaisesPluginErrorLikeVelmora(archives, monkeypatch):
    missing = str(archives / "no-plugin.so")
    monkeypatch.setenv("VELMORA_PLUGIN", missing)
    with pytest.raises(velmora.PluginError) as e:
        velmora.load(archives / "demo.vlm")
    message, rc = velmora_message(archives / "demo.vlm")
    assert rc == 3
    assert str(e.value) == message
    assert e.value.path == missing
    assert e.value.reason.startswith("cannot load the plug-in: ")


def test_HeightGrid_FixtureScanHasItsSpacingAndItsMissingNodes(archives):
    tree = velmora.load(archives / "scan_and_image.vlm")
    block = next(i for i in tree.walk() if isinstance(i, velmora.TriBlock))
    g = block.height_grid()
    # The fixture's scan: 7 x 5 nodes, 2 by 2.5 mm, every sixth code missing.
    assert g.z.shape == (5, 7)
    assert g.spacing == (2.0, 2.5)
    missing = [k for k in range(35) if k % 6 == 5]
    assert [k for k in range(35) if np.isnan(g.z.flat[k])] == missing
    # Row by row, the present nodes are the vertices in their order.
    assert np.array_equal(g.z[~np.isnan(g.z)], block.vertices[:, 2])
    ox, oy = g.origin
    assert np.array_equal(block.vertices[0, :2], [ox, oy])
    assert repr(g) == "HeightGrid 7 x 5, spacing 2 x 2.5"


def test_HeightGrid_EveryDemoBlockIsItsVerticesOnTheDesignsGrid(archives):
    tree = velmora.load(archives / "demo.vlm")
    blocks = [i for i in tree.walk() if isinstance(i, velmora.TriBlock)]
    assert blocks
    for block in blocks:
        g = block.height_grid()
        (ox, oy), (dx, dy) = g.origin, g.spacing
        # The demo's scans and working grids are 1 mm grids.
        assert abs(dx - 1.0) < 1e-12 and abs(dy - 1.0) < 1e-12, block.name
        v = block.vertices
        i = np.rint((v[:, 0] - ox) / dx).astype(int)
        j = np.rint((v[:, 1] - oy) / dy).astype(int)
        assert np.allclose(ox + i * dx, v[:, 0], rtol=0, atol=1e-9), block.name
        assert np.allclose(oy + j * dy, v[:, 1], rtol=0, atol=1e-9), block.name
        # Each node holds the highest vertex standing on it, and only nodes
        # with a vertex hold a height.
        highest = np.full(g.z.shape, -np.inf)
        np.maximum.at(highest, (j, i), v[:, 2])
        assert np.array_equal(np.isnan(g.z), np.isinf(highest)), block.name
        assert np.array_equal(g.z[~np.isnan(g.z)], highest[~np.isinf(highest)]), block.name


def test_HeightGrid_ArrayIsTheCallersOwn(archives):
    tree = velmora.load(archives / "scan_and_image.vlm")
    block = next(i for i in tree.walk() if isinstance(i, velmora.TriBlock))
    g = block.height_grid()
    g.z[0, 0] = 123.0
    assert block.height_grid().z[0, 0] != 123.0


def test_ToMeshio_HoldsTheBlocksVerticesAndTriangles(archives):
    meshio = pytest.importorskip("meshio")
    tree = velmora.load(archives / "scan_and_image.vlm")
    block = next(i for i in tree.walk() if isinstance(i, velmora.TriBlock))
    mesh = block.to_meshio()
    assert isinstance(mesh, meshio.Mesh)
    assert np.array_equal(mesh.points, block.vertices)
    assert [c.type for c in mesh.cells] == ["triangle"]
    assert np.array_equal(mesh.cells[0].data, block.triangles)


def test_Repr_PrintsOneLinePerItemIndentedByDepth(archives):
    tree = velmora.load(archives / "scan_and_image.vlm")
    lines = repr(tree).splitlines()

    def expected(item, depth):
        yield "  " * depth + repr(item).splitlines()[0]
        for child in (item.children if isinstance(item, velmora.Group) else []):
            yield from expected(child, depth + 1)

    assert lines == list(expected(tree, 0))
    assert lines[1] == "  Group 'M\u00fcller,Anna': 1 member"
    block = next(i for i in tree.walk() if isinstance(i, velmora.TriBlock))
    assert repr(block) == (f"TriBlock {block.name!r}, layer {block.layer!r} ({block.level}): "
                           f"{len(block.vertices)} vertices, {len(block.triangles)} triangles")
    image_group = next(i for i in tree.walk() if isinstance(i, velmora.Group) and i.placement[0, 3] != 0)
    assert f"at ({image_group.placement[0, 3]:g}, 0, 0)" in repr(image_group).splitlines()[0]


def test_Group_IndexesIteratesAndCountsItsMembers(archives):
    tree = velmora.load(archives / "demo.vlm")
    members = list(tree)
    assert len(members) == len(tree) == len(tree.children)
    assert [m.mangled for m in members] == [tree[k].mangled for k in range(len(tree))]
    assert tree[-1].mangled == members[-1].mangled
    with pytest.raises(IndexError):
        tree[len(tree)]
