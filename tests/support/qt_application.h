// Qt's plug-ins, timers and sockets need an application object; a GoogleTest program has none of its own.
#pragma once

namespace korvane {

/// Makes the one QCoreApplication of this program, if nobody has. It lives until the program ends.
void NeedQtApplication();

}  // namespace korvane
