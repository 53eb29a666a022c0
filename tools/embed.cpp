// Turns a firmware image into a C++ source that holds it as an array, and lists what is free in it.
//
//   embed IMAGE SIZE HEADER NAME SOURCE [MAP ORIGIN]
//
// The image must have exactly SIZE bytes: an assembler that leaves a gap or runs over makes
// another size, and the build must stop there.

#include "files/whole_file.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr uint8_t UNUSED = 0xFF;
/// Shorter runs of the fill byte may be data, and hold no routine anyway.
constexpr size_t SHORTEST_GAP = 8;

int fail(const std::string& text) {
    std::fprintf(stderr, "embed: %s\n", text.c_str());
    return 0;
}

int read_image(const std::string& path, size_t size, std::vector<uint8_t>& image) {
    std::ifstream file(path, std::ios::binary);
    if (!file) return fail("cannot read " + path);
    image.assign(std::istreambuf_iterator<char>(file), {});
    if (image.size() == size) return 1;
    return fail(path + " has " + std::to_string(image.size()) + " bytes instead of " +
                std::to_string(size));
}

int write_source(const std::string& path, const std::string& header, const std::string& name,
                 const std::vector<uint8_t>& image) {
    std::ostringstream file;
    file << "#include \"" << header << "\"\n\nconst uint8_t " << name << "[" << image.size()
         << "] = {";
    for (size_t i = 0; i < image.size(); ++i)
        file << (i % 20 == 0 ? "\n    " : "") << unsigned(image[i]) << ',';
    file << "\n};\n";
    return replace_whole_file(path, file.str()) ? 1 : fail("cannot write " + path);
}

/// One line for each unused run: first and last address, length; then the sum.
int write_map(const std::string& path, size_t origin, const std::vector<uint8_t>& image) {
    std::ostringstream file;
    size_t sum = 0;
    for (size_t start = 0; start < image.size();) {
        size_t end = start;
        while (end < image.size() && image[end] == UNUSED) ++end;
        if (end - start >= SHORTEST_GAP) {
            char line[64];
            std::snprintf(line, sizeof line, "%04zX-%04zX %5zu\n", origin + start, origin + end - 1,
                          end - start);
            file << line;
            sum += end - start;
        }
        start = end + 1;
    }
    file << "free      " << sum << '\n';
    return replace_whole_file(path, file.str()) ? 1 : fail("cannot write " + path);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 6 && argc != 8) {
        fail("usage: embed IMAGE SIZE HEADER NAME SOURCE [MAP ORIGIN]");
        return 1;
    }
    std::vector<uint8_t> image;
    if (!read_image(argv[1], std::strtoul(argv[2], nullptr, 0), image)) return 1;
    if (!write_source(argv[5], argv[3], argv[4], image)) return 1;
    if (argc == 8 && !write_map(argv[6], std::strtoul(argv[7], nullptr, 0), image)) return 1;
    return 0;
}
