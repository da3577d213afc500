// The About box: the program's version, the machine it runs on, and the link to the website.
#pragma once

#include <QDialog>

#include "shell/run/desk.h"

namespace korvane {

/// Shown with open(); deleted when it is closed.
class frmAbout : public QDialog {
public:
    frmAbout(const Desk& desk, QWidget* parent);
};

}  // namespace korvane
