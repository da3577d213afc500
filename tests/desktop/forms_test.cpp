// What holds for every form: its controls have names and keys of their own, Return presses its default button, Escape writes nothing,
// and it may go at each point where something that it began still waits. And what needs more than a script.
#include "desktop/desktop_test.h"
#include "shell/desktop/glance/detail_strip.h"

namespace korvane::forms_test {

struct AllForms : DesktopTest {
    AllForms() {
        world->rows.Add({.strDesc = "shop", .strAddress_IP = "shop.example", .strType = "HTTP", .strPort = "80"});
        world->net.Page("http://shop.example").Answer("Welcome", 3ms);
        window->RefreshURLList();
        const auto page = [this] { (new frmWizard({.title = "page", .prompt = ""}, window.get()))->open(); };
        window->addAction("page", page)->setObjectName("page");
    }

    /// Controls without a name, and keys that two of a page have.
    std::string Faults() {
        std::string faults;
        QStringList keys;
        for (const auto* bar : form->findChildren<QMenuBar*>())
            for (const QAction* menu : bar->actions())
                keys += QKeySequence::mnemonic(menu->text()).toString();
        for (QWidget* each : form->findChildren<QWidget*>()) {
            if (each->window() != form || !each->isVisibleTo(form) || each->objectName().startsWith("qt_")) continue;
            const auto* const label = qobject_cast<QLabel*>(each);
            if (label != nullptr && label->buddy() != nullptr && label->text().contains('&'))
                keys += QKeySequence::mnemonic(label->text()).toString();
            if (const auto* const button = qobject_cast<QAbstractButton*>(each)) keys += button->shortcut().toString();
            const bool isNamed = !QAccessible::queryAccessibleInterface(each)->text(QAccessible::Name).isEmpty();
            if (each->focusPolicy() != Qt::NoFocus && (each->objectName().isEmpty() || !isNamed))
                faults += S(each->objectName()) + each->metaObject()->className() + " has no name, ";
        }
        return faults + (keys.contains("") || keys.removeDuplicates() > 0 ? "keys" : "");
    }
};

TEST_F(AllForms, HaveNamesAndKeysAndADefaultButtonAndEscapeWritesNothing) {
    EXPECT_EQ(Faults(), "");
    for (const QMenu* menu : window->menuBar()->findChildren<QMenu*>()) {
        QStringList keys;
        for (const QAction* each : menu->actions())
            if (each->text().contains('&')) keys += QKeySequence::mnemonic(each->text()).toString();
        EXPECT_EQ(keys.removeDuplicates(), 0) << S(menu->title());
    }
    const auto settings = [&] { return world->run.SaveOnExit(), world->Text("kvurlwatchn.ini"); };
    for (const Opening& each : Forms()) {
        SCOPED_TRACE(each.command);
        Open(each);
        const auto before = settings();
        world->files.faults.Add({.operation = FilesOperation::Replace, .forever = true});
        world->store.faults.Add({.operation = StoreOperation::Update, .forever = true});
        auto* const pages = form->findChild<QTabWidget*>("tabPages");
        for (int page = pages == nullptr ? 0 : pages->count() - 1; page >= 0; --page) {
            if (pages != nullptr) pages->setCurrentIndex(page);
            EXPECT_EQ(Faults(), "") << page;
        }
        for (QLineEdit* box : form->findChildren<QLineEdit*>())
            QTest::keyClicks(box, "7");
        QTest::keyClick(form, Qt::Key_Escape);
        EXPECT_TRUE(IsGone());
        EXPECT_EQ(world->files.faults.Failures() + world->store.faults.Failures(), 0u);
        world->files.faults.Heal();
        world->store.faults.Heal();
        EXPECT_EQ(settings(), before);
        CloseAll();
        std::string pressed = "-";
        for (const QPushButton* button : Open(each).findChildren<QPushButton*>())
            QObject::connect(button, &QPushButton::clicked, form, [&, name = S(button->objectName())] { pressed = name; });
        QTest::keyClick(form, Qt::Key_Return);
        EXPECT_EQ(pressed, each.onReturn);
        CloseAll();
    }
}

// By each command of each form: gone with the message or question open that it leads to, as something is said, and a little later.
TEST_F(AllForms, MayGoAtEachPointWhereTheyWait) {
    world->run.cmdStopStart();
    window->yes = true;
    for (const Opening& each : Forms()) {
        QStringList names;
        for (const auto* button : Open(each).findChildren<QAbstractButton*>(QRegularExpression("^(cmd|chk)")))
            names += button->objectName();
        for (int run = 0, points = getenv("KORVANE_LONG") == nullptr ? 4 : 12; run < names.size() * points; ++run) {
            const int point = run % points;
            SCOPED_TRACE(each.form + " " + S(names[run / points]) + " " + std::to_string(point));
            CloseAll();
            Open(each);
            for (QLineEdit* box : form->findChildren<QLineEdit*>(QRegularExpression("Email|Input")))
                QTest::keyClicks(box, "a@b.de");
            if (auto* const message = form->findChild<QPlainTextEdit*>("txtMessage")) message->setPlainText(QString(1000, 'a'));
            window->boxes |= point == 0;
            int left = point;
            window->onSaid = [&] { --left == 0 ? CloseAll() : void(); };
            for (const auto later : {1ms, 2ms, 5ms, 10ms})
                world->world.After(later, [&] { window->onSaid(), Settle(); });
            Get<QAbstractButton>(S(names[run / points])).click();
            Settle();
            if (point == 0) CloseAll();
            world->RunFor(5s);
            window->onSaid = [] {};
        }
    }
}

TEST_F(AllForms, TheSettingsAreAsHighAsTheirOtherPagesNeedAndFitIntoALowScreen) {
    Open("frmOptions");
    const QSize wanted = form->sizeHint();
    EXPECT_LE(form->minimumSizeHint().height(), 400);
    auto& pages = *form->findChild<QTabWidget*>("tabPages");
    pages.removeTab(pages.count() - 1);
    Settle();
    EXPECT_EQ(form->sizeHint().height(), wanted.height());
}

TEST_F(AllForms, TracesStayWhereTheirReaderIsAndKeepAWholeSession) {
    Open("frmReqRes");
    QScrollBar& bar = *Get<QPlainTextEdit>("txtTrace").verticalScrollBar();
    const auto write = [&](int count, const std::string& text) {
        for (int i = 0; i < count; ++i)
            window->Conversation().setResponse(text);
        Settle();
        return S(Get<QPlainTextEdit>("txtTrace").toPlainText());
    };
    write(200, "answer");
    EXPECT_EQ(bar.value(), bar.maximum());
    bar.setValue(100);
    write(10, "answer");
    EXPECT_EQ(bar.value(), 100);
    const std::string text = write(7, std::string(1'500'000, 'W') + "the end");
    EXPECT_TRUE(text.size() <= kMostOfATrace && text.size() >= kMostOfATrace / 2 && Holds(text, "the end\n"));
    EXPECT_TRUE(text.starts_with("[The oldest lines of this window have gone: it keeps the newest 10,000,000 characters.]\n"));
}

TEST_F(AllForms, CellsShowTextsAsTheyAreAndTipsThoseThatAreCut) {
    for (int i = 0; i < 100; ++i)
        world->rows.Add(
            {.id = 112126150405 + i, .strGroup = "a group", .strDesc = "a rather long name", .strAddress_IP = "www/path"});
    world->rows.Change("Servers", 112126150405, {{"strLastResponse", "<img src='/etc/x'>\r\n  two"}});
    window->resize(1240, 640);  // the room at a width of 1280 pixels, with a frame
    window->RefreshURLList();
    Settle();
    QTreeView& list = *window->ListView1;
    const QModelIndex cell = list.model()->index(1, column::LastResponse);
    EXPECT_EQ(cell.data(), "<img src='/etc/x'>   two");
    EXPECT_EQ(cell.data(Qt::ToolTipRole), "<p style='white-space:pre-wrap'>&lt;img src='/etc/x'&gt;\n  two</p>");
    for (const bool cut : {false, true}) {
        list.setColumnWidth(column::Group, cut ? 30 : 300);
        const QPoint at = list.visualRect(cell.siblingAtColumn(column::Group)).center();
        QHelpEvent pointed(QEvent::ToolTip, at, list.viewport()->mapToGlobal(at));
        QApplication::sendEvent(list.viewport(), &pointed);
        EXPECT_EQ(Holds(S(QToolTip::text()), "a group"), cut);
    }
}

TEST_F(AllForms, TheDetailsAreReadOnlyWhenTheyMayHaveChanged) {
    int read = 0;
    EntryDetail detail;
    detail.isThere = true;
    DetailStrip strip([] {}, window.get());
    strip.Attach(world->world.clock, [&](const std::string&) { return ++read, detail; });
    ServerRow row, other;
    row.strCurStatus = "UP";
    row.cells[column::ServerID] = "1", other.cells[column::ServerID] = "2", other.strCurStatus = "DOWN";
    const auto reads = [&](const std::vector<ServerRow>& rows) {
        strip.SetSelected(rows), Settle();
        return std::exchange(read, 0);
    };
    strip.SetWindowHeight(559);
    EXPECT_EQ(reads({row}), 0) << "it is hidden";
    strip.SetWindowHeight(560), Settle();
    EXPECT_EQ(std::exchange(read, 0), 1);
    row.icon = RowIcon::Cur, row.cells[column::Status] = "Requesting...", row.cells[column::NextTry] = "Now...";
    EXPECT_EQ(reads({row}), 0);
    row.dtNextCheck = DateTime();
    EXPECT_EQ(reads({row}), 1) << "it was checked";
    row.cells[column::ShortName] = "renamed";
    EXPECT_EQ(reads({row}), 1);
    world->RunFor(59s);
    EXPECT_EQ(reads({row}), 0);
    world->RunFor(1s);
    EXPECT_EQ(reads({row}), 1) << "a mail or an hour may have ended";
    EXPECT_EQ(reads({row, other, row}), 0);
    EXPECT_EQ(S(strip.findChild<QTextEdit*>()->toPlainText()), "3 servers selected\nDOWN: 1\nUP: 2");
    EXPECT_EQ(reads({other}), 1);
}

}  // namespace korvane::forms_test
