// The pages of the entry editor after the first: mail, daily pauses, log-in, texts that mean failure, and commands.
#pragma once

#include <QWidget>

#include "shell/desktop/editor/frm_url_data_inputs.h"

class QPushButton;

namespace korvane {

class EMailPage : public QWidget {
public:
    EMailPage(EntryInputs& inputs, QWidget* parent);
    QLineEdit* txtEmailList1;
    QLineEdit* txtEmailList2;
    QPushButton* cmdTestEmail;
};

class DownTimesPage : public QWidget {
public:
    DownTimesPage(EntryInputs& inputs, QWidget* parent);
};

class AuthenticationPage : public QWidget {
public:
    AuthenticationPage(EntryInputs& inputs, QWidget* parent);
};

class ScanTextPage : public QWidget {
public:
    explicit ScanTextPage(QWidget* parent);
    QPushButton* cmdCommands;
    QPushButton* cmdHelpRules;
};

class CommandsPage : public QWidget {
public:
    CommandsPage(EntryInputs& inputs, QWidget* parent);
    QLineEdit* txtCMD;
    QPushButton* cmdChooseCMD;
    QPushButton* cmdTestCMD;
    QCheckBox* ckRestart;
    QLineEdit* txtCMDUP;
    QPushButton* cmdChooseCMDUP;
    QPushButton* cmdTestCMDUP;
};

}  // namespace korvane
