// Runs one work once and prints the bytes that its result holds, and the most that were held on the way there,
// for each segment or variant.
//
//   velhls_memory NAME [floor]
#include <iostream>

#include "Works.h"
#include "tests/heap/Heap.h"

int main(int argc, char** argv) {
    const Measurement measurement = makeMeasurement(argc > 1 ? argv[1] : "");
    Work& work = argc > 2 ? *measurement.floor : *measurement.work;
    work.prepare();
    const std::size_t before = heap::bytesInUse();
    heap::forgetTheMost();
    work.run();
    const auto items = static_cast<double>(measurement.items);
    std::cout << static_cast<double>(heap::bytesInUse() - before) / items << " "
              << static_cast<double>(heap::mostBytesInUse() - before) / items << "\n";
    work.drop();
    return 0;
}
