#include "tool/SelfDescription.h"

#include <string>

#include <CLI/CLI.hpp>

#include "velhls/VELHLS.h"

#include "tool/CommandOutline.h"
#include "tool/Completions.h"
#include "tool/ManualPage.h"
#include "tool/OutputFile.h"

namespace tool {

namespace {

/// "velhls 1.0.0" of "velhls 1.0.0 (GNU 12.2.0, Release)": the manual is the same for all builds.
std::string versionWithoutBuild() {
    const std::string text = ZORHLSManifestLibVersionString;
    return text.substr(0, text.find(" ("));
}

std::string described(const CommandOutline& command, const std::string& form) {
    if (form == "man") return manualPage(command, versionWithoutBuild());
    if (form == "bash") return bashCompletion(command);
    if (form == "zsh") return zshCompletion(command);
    return fishCompletion(command);
}

}  // namespace

void addSelfDescription(CLI::App& app) {
    const auto write = [&app](const std::string& form) {
        writeToStandardOutput(described(outlineOf(app), form));
        throw CLI::Success();
    };
    app.add_option_function<std::string>("--self-description", write, "Write the manual page or completions")
        ->check(CLI::IsMember({"man", "bash", "zsh", "fish"}))
        ->group("");
}

}  // namespace tool
