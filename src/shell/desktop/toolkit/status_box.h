// The status log of the main window: the newest line at the top, and a limited length.
#pragma once

#include <QPlainTextEdit>
#include <QString>

namespace korvane {

class StatusBox : public QPlainTextEdit {
public:
    StatusBox();

    /// Adds the line at the top and keeps 15000 characters in all. The view does not move while the operator reads older lines.
    void AddLine(const QString& line);
};

}  // namespace korvane
