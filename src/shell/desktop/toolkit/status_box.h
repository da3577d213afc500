// The status log of the main window: the newest line on top, and an end.
#pragma once

#include <QPlainTextEdit>
#include <QString>

namespace korvane {

class StatusBox : public QPlainTextEdit {
public:
    StatusBox();

    /// Puts the line on top. Of all of them 15000 characters stay. Somebody who has scrolled to older lines goes on reading them.
    void AddLine(const QString& line);
};

}  // namespace korvane
