#include "Attacks.h"

#include <sys/stat.h>

#include <cstdint>

namespace
{

std::vector<std::string> shown(const std::string& mesh)
{
    return {"krview", "--material", "m.krs", "--mesh", mesh, "--frames", "1", "--size", "64x64"};
}

std::string plyHeader(const char* format, const char* vertices, const char* faces)
{
    return std::string("ply\nformat ") + format + " 1.0\nelement vertex " + vertices +
           "\nproperty float x\nproperty float y\nproperty float z\nelement face " + faces +
           "\nproperty list uchar int vertex_indices\nend_header\n";
}

void writeMesh(const Workplace& place, const std::string& name, const std::string& bytes)
{
    writeMaterial(place, "");
    std::filesystem::create_directories((place.path() / name).parent_path());
    place.write(name, bytes);
}

/// A glTF file of three corners from a buffer, and some nodes.
void writeGltf(const Workplace& place, const std::string& buffer, const std::string& nodes)
{
    writeMesh(place, "folder/m.gltf",
              R"({"asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [0]}],
        "nodes": [)" +
                  nodes + R"(], "meshes": [{"primitives": [{"attributes": {"POSITION": 0}}]}],
        "accessors": [{"bufferView": 0, "componentType": 5126, "count": 3, "type": "VEC3"}],
        "bufferViews": [{"buffer": 0, "byteLength": 36}], "buffers": [{"byteLength": 36, "uri": ")" +
                  buffer + "\"}]}");
    std::string corners;
    for (const char* number : {"\0\0\0\0", "\0\0\0\0", "\0\0\0\0", "\0\0\x80\x3f", "\0\0\0\0", "\0\0\0\0", "\0\0\0\0",
                               "\0\0\x80\x3f", "\0\0\0\0"})
        corners.append(number, 4);
    place.write("outside.bin", corners);
    place.write("folder/inside.bin", corners);
}

/// Many nodes that share a mesh of two hundred thousand triangles.
void writeInstances(const Workplace& place)
{
    writeMesh(place, "m.gltf",
              R"({"asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [0]}], "nodes": [{"children": [1)" +
                  pieces(999, ", 1@") + "]}, " + pieces(2000, R"({"mesh": 0}, )") + R"({"mesh": 0}],
        "meshes": [{"primitives": [{"attributes": {"POSITION": 0}, "indices": 1}]}],
        "accessors": [{"bufferView": 0, "componentType": 5126, "count": 3, "type": "VEC3"},
            {"bufferView": 1, "componentType": 5121, "count": 600000, "type": "SCALAR"}],
        "bufferViews": [{"buffer": 0, "byteLength": 36}, {"buffer": 0, "byteOffset": 36, "byteLength": 600000}],
        "buffers": [{"byteLength": 600036, "uri": "m.bin"}]})");
    place.write("m.bin", std::string(600036, '\0'));
}

/// Sanitizers want so many addresses that they cannot be bounded, and something else ends the reader.
constexpr const char* kTooMuchMemory =
    kIsSanitized ? "': it" : "': it takes far more memory than a file of its size should";

constexpr const char* kOneNode = R"({"mesh": 0})";

} // namespace

std::vector<Attack> meshAttacks()
{
    return {
        {"MeshWithoutEnd", [](const Workplace& p) { writeMaterial(p, ""); }, shown("/dev/zero"), 2,
         "cannot read '/dev/zero': it is no file with contents of its own"},
        {"MeshFromAPipe",
         [](const Workplace& p)
         {
             writeMaterial(p, "");
             ::mkfifo((p.path() / "m.obj").c_str(), 0600);
         },
         shown("m.obj"), 2, "cannot read 'm.obj': it is no file with contents of its own"},
        {"FolderForAMesh",
         [](const Workplace& p)
         {
             writeMaterial(p, "");
             std::filesystem::create_directory(p.path() / "m.obj");
         },
         shown("m.obj"), 2, "cannot read 'm.obj': it is no file with contents of its own"},
        {"HugeMesh",
         [](const Workplace& p)
         {
             writeMesh(p, "m.stl", "");
             std::filesystem::resize_file(p.path() / "m.stl", std::uintmax_t{1} << 40);
         },
         shown("m.stl"), 2, "cannot read 'm.stl': it has more than 256 MB"},
        {"NoMesh", [](const Workplace& p) { writeMesh(p, "m.txt", "no mesh\n"); }, shown("m.txt"), 2,
         "cannot read 'm.txt': No suitable reader found"},
        {"MeshOfPoints", [](const Workplace& p) { writeMesh(p, "m.ply", plyHeader("ascii", "1", "0") + "0 0 0\n"); },
         shown("m.ply"), 2, "cannot read 'm.ply': "},
        {"CutOffMesh",
         [](const Workplace& p)
         { writeMesh(p, "m.glb", std::string("glTF\2\0\0\0\xff\xff\xff\xff\xff\0\0\0JSON{", 21)); },
         shown("m.glb"), 2, "cannot read 'm.glb': "},
        {"CornerPastTheVertices",
         [](const Workplace& p)
         { writeMesh(p, "m.ply", plyHeader("ascii", "3", "1") + "0 0 0\n1 0 0\n0 1 0\n3 0 1 2000000000\n"); },
         shown("m.ply"), 2, "cannot read 'm.ply': a corner is vertex 2000000000, counted from 0, of 3"},
        {"CornerThatIsNoNumber",
         [](const Workplace& p)
         { writeMesh(p, "m.ply", plyHeader("ascii", "3", "1") + "0 0 0\n1 0 0\n0 nan 0\n3 0 1 2\n"); },
         shown("m.ply"), 2,
         "cannot read 'm.ply': in its part \"part\" vertex 2, counted from 0, has the coordinate nan"},
        {"CornerTooFarAway",
         [](const Workplace& p) { writeMesh(p, "m.obj", "v 0 0 0\nv 1e30 0 0\nv 0 1 0\nf 1 2 3\n"); }, shown("m.obj"),
         2, "has the coordinate 1e+30"},
        {"MeshWithoutAnArea", [](const Workplace& p) { writeMesh(p, "m.obj", "v 0 0 0\nv 1 0 0\nv 2 0 0\nf 1 2 3\n"); },
         shown("m.obj"), 2, "cannot read 'm.obj': it has no triangles"},
        // What takes Assimp down
        {"MeshOfBillions",
         [](const Workplace& p) { writeMesh(p, "m.ply", plyHeader("ascii", "2147483648", "1") + "0 0 0\n"); },
         shown("m.ply"), 2, kTooMuchMemory},
        {"MeshOfBillionsOfFaces",
         [](const Workplace& p)
         { writeMesh(p, "m.ply", plyHeader("binary_little_endian", "3", "999999999") + std::string(36, '\1')); },
         shown("m.ply"), 2, kTooMuchMemory},
        {"MeshCutOffInItsHeader",
         [](const Workplace& p) { writeMesh(p, "m.ply", plyHeader("ascii", "5", "4").substr(0, 40)); }, shown("m.ply"),
         2, "cannot read 'm.ply': it takes far more time than a file of its size should"},
        {"DeepNodes",
         [](const Workplace& p) { writeGltf(p, "inside.bin", pieces(100000, R"({"children": [@]},)") + kOneNode); },
         shown("folder/m.gltf"), 2, "cannot read 'folder/m.gltf': "},
        {"NodesThatDouble",
         [](const Workplace& p)
         {
             std::string nodes;
             for (unsigned i = 1; i <= 40; ++i)
                 nodes += "{\"children\": [" + std::to_string(i) + ", " + std::to_string(i) + "]},";
             writeGltf(p, "inside.bin", nodes + kOneNode);
         },
         shown("folder/m.gltf"), 2, kTooMuchMemory, 600},
        {"InstancesOfMillions", writeInstances, shown("m.gltf"), 2,
         "cannot read 'm.gltf': it has more than 20000000 triangles", 400},
        // Assimp opens it once for each of its formats.
        {"LargeFileOfNoKind",
         [](const Workplace& p)
         {
             writeMesh(p, "m.txt", "");
             std::filesystem::resize_file(p.path() / "m.txt", 250 << 20);
         },
         shown("m.txt"), 2, "cannot read 'm.txt': No suitable reader found", 600, 3},
        // Files beside it
        {"BufferInTheFolder", [](const Workplace& p) { writeGltf(p, "inside.bin", kOneNode); }, shown("folder/m.gltf"),
         0, ""},
        {"BufferOutsideTheFolder", [](const Workplace& p) { writeGltf(p, "../outside.bin", kOneNode); },
         shown("folder/m.gltf"), 2, "could not open referenced file"},
        {"BufferNamedByAUri",
         [](const Workplace& p)
         {
             writeGltf(p, "an%20in%73ide%.bin", kOneNode);
             std::filesystem::rename(p.path() / "folder/inside.bin", p.path() / "folder/an inside%.bin");
         },
         shown("folder/m.gltf"), 0, ""},
        {"BufferOutsideByAUri", [](const Workplace& p) { writeGltf(p, "%2e%2e%2foutside.bin", kOneNode); },
         shown("folder/m.gltf"), 2, "could not open referenced file"},
        {"BufferByALink",
         [](const Workplace& p)
         {
             writeGltf(p, "link.bin", kOneNode);
             std::filesystem::create_symlink("../outside.bin", p.path() / "folder/link.bin");
         },
         shown("folder/m.gltf"), 2, "could not open referenced file"},
        {"BufferFromAPipe",
         [](const Workplace& p)
         {
             writeGltf(p, "pipe.bin", kOneNode);
             ::mkfifo((p.path() / "folder/pipe.bin").c_str(), 0600);
         },
         shown("folder/m.gltf"), 2, "could not open referenced file"},
    };
}
