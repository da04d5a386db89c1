#include "tool/InputOptions.h"

#include <CLI/CLI.hpp>

#include "tool/InputNames.h"
#include "tool/Presentation.h"

namespace tool {

void addInputOptions(CLI::App& command, InputNames& inputs) {
    command
        .add_option("FILE", inputs.paths,
                    "The playlists, and folders for all *.m3u8 and *.m3u below them; - for standard input, "
                    "the default")
        ->configurable(false);
    CLI::Option* const list =
        command
            .add_option(
                "--files-from", inputs.list,
                "Take also the files and folders that this file names, one a line; - for standard input")
            ->configurable(false);
    command
        .add_flag("--null", inputs.isNulSeparated,
                  "The names of that file end in NUL bytes, not in line feeds")
        ->needs(list)
        ->configurable(false);
}

void addFollowOptions(CLI::App& command, FollowRequest& follow, const std::string& what) {
    CLI::Option* const asked = command.add_flag("--follow", follow.isAsked, what);
    command
        .add_option(
            "--root", follow.root,
            "The folder below which --follow may read, that of the master playlist unless told otherwise")
        ->needs(asked)
        ->configurable(false);
}

}  // namespace tool
