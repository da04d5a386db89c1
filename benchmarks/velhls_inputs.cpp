// Writes playlists that are measured to files, for programs that are not part of this one.
//
//   velhls_inputs FOLDER
#include <fstream>
#include <iostream>
#include <string>

#include "Inputs.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: velhls_inputs FOLDER\n";
        return 2;
    }
    const auto write = [&](const std::string& name, const std::string& text) {
        const std::string path = std::string(argv[1]) + "/" + name + ".m3u8";
        std::ofstream output(path, std::ios::binary);
        output << text;
        output.close();
        if (!output) std::cerr << path << ": error: cannot be written\n";
        return !output.fail();
    };
    const bool written = write("vod", inputs::vod(100000)) && write("rich", inputs::rich(100000)) &&
                         write("live", inputs::live()) && write("master-small", inputs::smallMaster()) &&
                         write("master-large", inputs::largeMaster(10000));
    return written ? 0 : 1;
}
