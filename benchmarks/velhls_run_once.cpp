// Runs one work once in a fresh process and prints its nanoseconds (COLD). Callgrind counts what happens in
// measuredRun: --toggle-collect=measuredRun
//
//   velhls_run_once NAME [floor]
//   velhls_run_once                  prints all names
#include <chrono>
#include <iostream>

#include "Works.h"

extern "C" __attribute__((noinline)) void measuredRun(Work* work) {
    work->run();
}

int main(int argc, char** argv) {
    if (argc < 2) {
        for (const std::string& name : measurementNames())
            std::cout << name << "\n";
        return 0;
    }
    const Measurement measurement = makeMeasurement(argv[1]);
    Work& work = argc > 2 ? *measurement.floor : *measurement.work;
    work.prepare();
    const auto start = std::chrono::steady_clock::now();
    measuredRun(&work);
    const auto duration = std::chrono::steady_clock::now() - start;
    std::cout << std::chrono::duration_cast<std::chrono::nanoseconds>(duration).count() << "\n";
    work.drop();
    return 0;
}
