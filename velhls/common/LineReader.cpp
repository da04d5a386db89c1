#include "velhls/common/LineReader.h"

#include <algorithm>

namespace velhls {

void readRawLine(std::istream& input, std::string& line) {
    // std::getline leaves the string alone when the stream is not good on entry.
    line.clear();
    std::getline(input, line);
}

void readLine(std::istream& input, std::string& line) {
    readRawLine(input, line);
    line.erase(std::remove(line.begin(), line.end(), '\r'), line.end());
}

}  // namespace velhls
