#include "shell/desktop/small/frm_manual.h"

#include <QFile>
#include <QHash>
#include <QListWidget>
#include <QResizeEvent>
#include <QScreen>
#include <QScrollBar>
#include <QSplitter>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTextDocumentFragment>
#include <QTextTable>
#include <QUrl>
#include <QVBoxLayout>
#include <algorithm>

#include "shell/desktop/small/dialog_parts.h"
#include "shell/desktop/toolkit/qt_text.h"

namespace korvane {
namespace {

constexpr int kFirstWidth = 150;  // characters
constexpr int kFirstHeight = 40;  // lines
constexpr double kShareOfScreen = 0.9;
constexpr int kChapterSpacing = 2;
constexpr int kChapterLevel = 2;
constexpr int kMargin = 16;
constexpr int kLeastPicture = 200;
constexpr int kPosition = Qt::UserRole;

/// Shows a picture no wider than the text, whatever the width of the window.
class ManualBrowser : public QTextBrowser {
public:
    using QTextBrowser::QTextBrowser;

protected:
    QVariant loadResource(int type, const QUrl& name) override {
        const QVariant loaded = QTextBrowser::loadResource(type, name);
        if (type != QTextDocument::ImageResource) return loaded;
        QImage picture;
        if (loaded.canConvert<QByteArray>()) picture.loadFromData(loaded.toByteArray());
        pictures_.insert(name, picture);
        return Fitted(picture);
    }

    void resizeEvent(QResizeEvent* event) override {
        if (event->size().width() != event->oldSize().width())
            for (auto each = pictures_.constKeyValueBegin(); each != pictures_.constKeyValueEnd(); ++each)
                document()->addResource(QTextDocument::ImageResource, each->first, Fitted(each->second));
        QTextBrowser::resizeEvent(event);
    }

private:
    QImage Fitted(const QImage& picture) const {
        const int most = std::max(kLeastPicture, viewport()->width() - 2 * kMargin);
        if (picture.width() <= most) return picture;
        const auto sharp = static_cast<int>(most * devicePixelRatioF());
        QImage fitted = picture.convertToFormat(QImage::Format_RGB32);
        if (sharp < picture.width()) fitted = fitted.scaledToWidth(sharp, Qt::SmoothTransformation);
        fitted.setDevicePixelRatio(static_cast<double>(fitted.width()) / most);
        return fitted;
    }

    QHash<QUrl, QImage> pictures_;  ///< as they are in their files
};

/// The name by which links call a chapter: in lower case, with "-" for blanks, without other signs.
QString AnchorOf(const QString& heading) {
    QString anchor;
    for (const QChar sign : heading.toLower()) {
        if (sign == ' ' || sign == '-') anchor += '-';
        if (sign.isLetterOrNumber()) anchor += sign;
    }
    return anchor;
}

/// Lines of code are long; the window may be narrow.
void WrapCode(QTextDocument& document) {
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        if (!block.blockFormat().nonBreakableLines()) continue;
        QTextBlockFormat wrapped;
        wrapped.setNonBreakableLines(false);
        QTextCursor(block).mergeBlockFormat(wrapped);
    }
}

void FrameTables(QTextDocument& document, const QColor& line) {
    for (QTextFrame* frame : document.rootFrame()->childFrames()) {
        auto* const table = qobject_cast<QTextTable*>(frame);
        if (table == nullptr) continue;
        QTextTableFormat format = table->format();
        format.setBorder(1);
        format.setBorderBrush(line);
        format.setBorderStyle(QTextFrameFormat::BorderStyle_Solid);
        format.setBorderCollapse(true);
        format.setCellSpacing(0);
        format.setCellPadding(4);
        table->setFormat(format);
    }
}

}  // namespace

frmManual::frmManual(QWidget* parent)
    : QDialog(parent), lstChapters_(new QListWidget(this)), txtManual_(new ManualBrowser(this)) {
    setObjectName("frmManual");
    setWindowTitle("Korvane Manual");
    setAttribute(Qt::WA_DeleteOnClose);
    setSizeGripEnabled(true);
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    lstChapters_->setObjectName("lstChapters");
    lstChapters_->setAccessibleName("Chapters of the manual");
    lstChapters_->setSpacing(kChapterSpacing);
    txtManual_->setObjectName("txtManual");
    txtManual_->setAccessibleName("Text of the manual");
    txtManual_->setOpenLinks(false);
    txtManual_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);  // all of it fits, but for a pixel beside the text
    txtManual_->document()->setDocumentMargin(kMargin);
    auto* halves = new QSplitter(this);
    halves->addWidget(lstChapters_);
    halves->addWidget(txtManual_);
    halves->setChildrenCollapsible(false);
    halves->setStretchFactor(0, 0);
    halves->setStretchFactor(1, 1);
    lstChapters_->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(halves, 1);
    layout->addWidget(NewButtons(this, {{"cmdClose", "C&lose", QDialogButtonBox::RejectRole}}, "cmdClose"));
    const QSize wanted(fontMetrics().averageCharWidth() * kFirstWidth, fontMetrics().height() * kFirstHeight);
    resize(wanted.boundedTo(screen()->availableGeometry().size() * kShareOfScreen));
    connect(lstChapters_, &QListWidget::currentItemChanged, this, [this](const QListWidgetItem* chapter) {
        if (chapter != nullptr) ShowPlace(chapter->data(kPosition).toInt());
    });
}

void frmManual::Form_Load(WebPages& pages, const std::string& dataDir) {
    if (std::exchange(loaded_, true)) return;
    connect(txtManual_, &QTextBrowser::anchorClicked, this, [this, &pages](const QUrl& link) { Follow(pages, link); });
    const QString path = Q(dataDir + "/manual/manual.md");
    if (!QFile::exists(path))
        return txtManual_->setPlainText("The manual is not installed: there is no " + path +
                                        ".\n\n"
                                        "Help on the Web, in the menu Help, opens the pages of the website.");
    txtManual_->setSource(QUrl::fromLocalFile(path), QTextDocument::MarkdownResource);
    WrapCode(*txtManual_->document());
    FrameTables(*txtManual_->document(), palette().color(QPalette::Mid));
    ListChapters();
}

void frmManual::ListChapters() {
    for (QTextBlock block = txtManual_->document()->begin(); block.isValid(); block = block.next()) {
        if (block.blockFormat().headingLevel() != kChapterLevel) continue;
        auto* chapter = new QListWidgetItem(block.text(), lstChapters_);
        chapter->setData(kPosition, block.position());
    }
    lstChapters_->setMinimumWidth(lstChapters_->sizeHintForColumn(0) + 2 * lstChapters_->frameWidth() +
                                  lstChapters_->verticalScrollBar()->sizeHint().width());
}

// From the end upwards, so that the place comes to the top.
void frmManual::ShowPlace(int position) {
    QTextCursor cursor(txtManual_->document());
    cursor.setPosition(position);
    txtManual_->moveCursor(QTextCursor::End);
    txtManual_->setTextCursor(cursor);
    QScrollBar& bar = *txtManual_->verticalScrollBar();
    bar.setValue(bar.value() + txtManual_->cursorRect().top() - kMargin);
}

void frmManual::Follow(WebPages& pages, const QUrl& link) {
    if (!link.isRelative() && !link.isLocalFile()) {
        pages.OpenAddress(S(link.toString()));
        return;
    }
    for (int row = 0; row < lstChapters_->count(); ++row) {
        if (AnchorOf(lstChapters_->item(row)->text()) != link.fragment()) continue;
        lstChapters_->setCurrentRow(row);
        ShowPlace(lstChapters_->item(row)->data(kPosition).toInt());
    }
}

void ManualViewer::Show() {
    ModelessForm::Show();
    TheForm()->Form_Load(pages_, dataDir_);
}

}  // namespace korvane
