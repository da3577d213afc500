// The About box: the program's version, the machine it runs on, and the link to the website.
#pragma once

#include <QDialog>
#include <functional>
#include <string>

class QLabel;
class QLayout;

namespace korvane {

struct AboutKorvane {
    std::string version;             ///< "major.minor.revision"
    std::string systemInfo;          ///< two lines, from GetSysInfoString
    std::function<void()> showPage;  ///< called when the link was clicked
};

/// Shown with open(); deleted when it is closed.
class frmAbout : public QDialog {
public:
    frmAbout(AboutKorvane about, QWidget* parent);

private:
    QLayout* Content();
    QLabel* Link();
    QWidget* SystemInfo();

    AboutKorvane about_;
};

}  // namespace korvane
