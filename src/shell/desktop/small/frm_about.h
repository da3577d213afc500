// What this program is: its version, the machine it runs on, and the way to the website.
#pragma once

#include <QDialog>
#include <functional>
#include <string>

class QLabel;
class QLayout;

namespace korvane {

struct AboutKorvane {
    std::string version;             ///< "major.minor.revision"
    std::string systemInfo;          ///< two lines, as GetSysInfoString says them
    std::function<void()> showPage;  ///< the link was clicked
};

/// Made with open(); deleted when it is closed.
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
