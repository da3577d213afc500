// The pages of the settings dialog.
#pragma once

#include <QWidget>

#include "shell/desktop/toolkit/form_inputs.h"
#include "shell/options/options_fields.h"

class QGroupBox;
class QPushButton;
class QRadioButton;

namespace korvane {

using OptionsInputs = FormInputs<OptionsFields>;

class OptionsMonitoringPage : public QWidget {
public:
    OptionsMonitoringPage(OptionsInputs& inputs, QWidget* parent);
    QLineEdit* txtBegin;
    QLineEdit* txtGlobalRetryDuration;
    QLabel* lblInterval;
};

class OptionsMailPage : public QWidget {
public:
    OptionsMailPage(OptionsInputs& inputs, QWidget* parent);
    QLineEdit* txtServer;
    QPushButton* cmdTestEmail;
    QPushButton* cmdGlobalEmail;
};

class OptionsReportsPage : public QWidget {
public:
    OptionsReportsPage(OptionsInputs& inputs, QWidget* parent);
    QLineEdit* txtReportPath;
    QPushButton* cmdReportPath;
    QLineEdit* txtYellowAlertWav;
    QPushButton* cmdYellowAlertWav;
    QPushButton* cmdTestYellowAlert;
    QLineEdit* txtRedAlertWav;
    QPushButton* cmdRedAlertWav;
    QPushButton* cmdTestRedAlert;
};

class OptionsRestartPage : public QWidget {
public:
    OptionsRestartPage(OptionsInputs& inputs, QWidget* parent);
    QCheckBox* ckReboot;
    QRadioButton* optRebootAny;
    QRadioButton* optRebootAll;
    QPushButton* cmdTestShutDown;
    QPushButton* cmdHelpShutDown;
};

class OptionsProxyPage : public QWidget {
public:
    OptionsProxyPage(OptionsInputs& inputs, QWidget* parent);
    QLineEdit* txtProxyName;
    QLineEdit* txtProxyPort;
    QPushButton* cmdSetProxy;
    QLabel* lblProxy;
};

class OptionsServicePage : public QWidget {
public:
    OptionsServicePage(OptionsInputs& inputs, QWidget* parent);
    QCheckBox* chkService;
    QCheckBox* chkStartup;
    QLabel* lblServiceName;
    QPushButton* cmdHelpService;
};

class OptionsResetsPage : public QWidget {
public:
    explicit OptionsResetsPage(QWidget* parent);
    QPushButton* cmdResetSummary;
    QPushButton* cmdDeleteResponse;
    QPushButton* cmdDeleteAll;
};

}  // namespace korvane
