// Opens a file of this program in the operator's text editor.
#pragma once

#include <string>

#include "platform/operator.h"
#include "platform/processes.h"
#include "shell/run/message_title.h"

namespace korvane {

/// Shows a message, at once or a little later, when no program opens the file. `person` must outlive `processes`.
inline void OpenInEditor(Processes& processes, Operator& person, const std::string& path) {
    processes.OpenText(path, [&person, path](const std::string& why) {
        person.ShowError(kMessageTitle, "The file " + path + " could not be opened in a text editor: " + why);
    });
}

}  // namespace korvane
