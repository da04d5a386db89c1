#include "tool/Process.h"

#include <cstdio>
#include <fcntl.h>
#include <io.h>

#include "tool/Path.h"
#include "tool/windows/Wide.h"

namespace tool {

/// The arguments of main are in the code page, which does not hold every name.
std::vector<std::string> startProcess(int /*argumentCount*/, char** /*arguments*/) {
    for (std::FILE* const stream : {stdin, stdout, stderr})
        static_cast<void>(::_setmode(::_fileno(stream), _O_BINARY));
    ::SetConsoleOutputCP(CP_UTF8);

    int count = 0;
    wchar_t** const wide = ::CommandLineToArgvW(::GetCommandLineW(), &count);
    std::vector<std::string> arguments;
    for (int index = 0; index < count; ++index)
        arguments.push_back(std::filesystem::path(wide[index]).u8string());
    ::LocalFree(wide);
    return arguments;
}

bool isOutputATerminal() {
    return ::_isatty(::_fileno(stdout)) != 0;
}

}  // namespace tool
