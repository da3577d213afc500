// What the main window shows around its list: readable in both themes, whole in small windows, and the same rows whatever is filtered.
#include <QAbstractItemModelTester>
#include <QRandomGenerator>

#include "desktop/desktop_test.h"
#include "shell/desktop/glance/state_colours.h"
#include "shell/desktop/look/theme.h"

namespace korvane::glance_test {

double Contrast(const QColor& a, const QColor& b) {
    const auto light = [](const QColor& colour) {
        const auto part = [](double x) { return x <= 0.03928 ? x / 12.92 : std::pow((x + 0.055) / 1.055, 2.4); };
        return 0.2126 * part(colour.redF()) + 0.7152 * part(colour.greenF()) + 0.0722 * part(colour.blueF()) + 0.05;
    };
    return std::max(light(a), light(b)) / std::min(light(a), light(b));
}

TEST(Glance, ColoursAreReadableInBothThemes) {
    NeedDesktop();
    for (const QPalette& palette : {QPalette(Qt::lightGray), DarkPalette()}) {
        const QColor base = palette.color(QPalette::Base), text = palette.color(QPalette::Text);
        EXPECT_GE(Contrast(QuietInk(palette), base), 4.5);
        for (int state = 0; state < 6; ++state) {
            const auto [ground, ink] = ColoursOf(static_cast<RowIcon>(state), palette);
            for (const auto& [on, of] : {std::pair(ground, ink), std::pair(base, ink), std::pair(ground, text)})
                EXPECT_GE(Contrast(on, of), 4.5) << state << S(of.name()) << S(on.name());
        }
        EXPECT_GE(Contrast(ColoursOf(RowIcon::Bad, palette).ink, ColoursOf(RowIcon::Warn, palette).ground), 4.5);
    }
}

TEST(Glance, LinesOfTheStatusLogThatReportAFailureStandOut) {
    for (const char* line : {"Failure: TCP Error: refused", "Ping failed 10.0.0.1 no answer", "PublishReports Error: disk",
                             "Failed!", "a@b.c Email failed because of it", "The list of servers could not be read: locked"})
        EXPECT_TRUE(StatusColours::IsFailure(line)) << line;
    for (const char* line :
         {"Success: Found 'error 5: failed' in the response...", "Timeout [15 sec.] - Port[80] getting 'x'. Please wait...",
          "Recent failure recorded for x. Updating Failure Report...", "Monitoring Stopped"})
        EXPECT_FALSE(StatusColours::IsFailure(line)) << line;
}

struct GlanceTest : DesktopTest {
    std::vector<std::string> states{"UP", "DOWN", "Failing", "Inactive", "Down-Time", "own network down", "?"};
    void Add(int count) {
        for (int i = 0; i < count; ++i)
            world->rows.Add(
                {.strDesc = "server " + std::to_string(i), .strCurStatus = states[static_cast<std::size_t>(i) % states.size()]});
        window->RefreshURLList();
    }
};

TEST_F(GlanceTest, TheStatusLogFollowsTheThemeAndKeepsItsText) {
    const std::string before = S(window->txtStatus->toPlainText());
    window->StatusLine("3:00:09 PM", "Ping failed");
    window->StatusLine("3:00:09 PM", "------------------------------------");
    for (const QPalette& palette : {DarkPalette(), QPalette()}) {
        QApplication::setPalette(palette);
        Settle();
        const auto ink = [&](int line) {
            return window->txtStatus->document()->findBlockByNumber(line).layout()->formats().last().format.foreground().color();
        };
        EXPECT_EQ(ink(1), ColoursOf(RowIcon::Bad, QApplication::palette()).ink);
        EXPECT_LT(Contrast(ink(0), QApplication::palette().color(QPalette::Base)), 4.5);
    }
    EXPECT_EQ(S(window->txtStatus->toPlainText()),
              "3:00:09 PM - ------------------------------------\n3:00:09 PM - Ping failed\n" + before);
}

TEST_F(GlanceTest, TheModelKeepsItsPromisesAndTheSelectionItsEntryThroughEveryFilterAndOrder) {
    const QAbstractItemModelTester tester(window->ListView1->model(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    Add(60);
    QRandomGenerator random(7);
    QItemSelectionModel& selection = *window->ListView1->selectionModel();
    for (int step = 0; step < 200; ++step) {
        const QString selected = selection.currentIndex().siblingAtColumn(column::ServerID).data().toString();
        const int what = random.bounded(8);
        if (what < 5)
            Get<QAbstractButton>(std::vector{"chipDown", "chipFailing", "chipUp", "chipDownTime", "chipInactive"}[what]).toggle();
        if (what == 5) Action("mnuViewProblemsFirst")->toggle();
        if (what == 6) Get<QLineEdit>("txtFind").setText(QString::number(random.bounded(70)));
        if (what == 7) Get<QAbstractButton>("cmdShowAll").click();
        if (random.bounded(5) == 0) window->ListView1->sortByColumn(random.bounded(13), Qt::AscendingOrder);
        if (random.bounded(5) == 0) {
            world->rows.Change("Servers", 1 + random.bounded(60),
                               {{"strCurStatus", states[random.bounded(quint32(states.size()))]}});
            window->RefreshURLList();
        }
        const auto* model = window->ListView1->model();
        const bool isShown =
            !model->match(model->index(0, column::ServerID), Qt::DisplayRole, selected, 1, Qt::MatchExactly).isEmpty();
        const QString now = selection.currentIndex().siblingAtColumn(column::ServerID).data().toString();
        EXPECT_TRUE(!isShown || now == selected) << step;
        EXPECT_EQ(selection.hasSelection(), model->rowCount() > 0) << step;
    }
}

TEST_F(GlanceTest, ColumnsFollowTheirContent) {
    window->resize(2000, 800);
    Add(3);
    for (const char* group : {"a_group_with_a_long_name", "short"}) {
        world->rows.Change("Servers", 2, {{"strGroup", group}});
        window->RefreshURLList();
        EXPECT_EQ(window->ListView1->columnWidth(column::Group) > window->fontMetrics().horizontalAdvance("a_group_with_a_long_"),
                  std::string(group) != "short");
    }
}

TEST_F(GlanceTest, NothingIsCutInASmallWindow) {
    Add(40);
    Get<QAbstractButton>("chipDown").toggle();
    Action("cmdStopStart")->trigger();
    for (const QSize& size : {QSize(1280, 800), QSize(799, 500), QSize(640, 400)}) {
        window->resize(size);
        Settle();
        EXPECT_EQ(window->size(), size);
        for (const QWidget* each : window->centralWidget()->findChildren<QWidget*>()) {
            const bool isPart =
                qobject_cast<const QAbstractButton*>(each) != nullptr || qobject_cast<const QLineEdit*>(each) != nullptr;
            if (!isPart || !each->isVisible()) continue;
            const QRect place(each->mapTo(window.get(), QPoint()), each->size());
            EXPECT_TRUE(window->rect().contains(place)) << S(each->objectName());
            EXPECT_GE(each->height(), each->minimumSizeHint().height()) << S(each->objectName());
        }
        EXPECT_GE(window->txtStatus->height(), 3 * window->fontMetrics().height());
        QTreeView& list = *window->ListView1;
        EXPECT_GE(list.viewport()->height(), 3 * list.sizeHintForRow(0));
        EXPECT_TRUE(list.viewport()->rect().contains(list.visualRect(list.currentIndex()))) << size.height();
        list.setCurrentIndex(list.model()->index(list.model()->rowCount() - 1, 0));
    }
}

TEST_F(GlanceTest, TheTabKeyComesToWhatIsNewLastAndNoTwoControlsHaveOneName) {
    QStringList order, names;
    for (const QWidget* each = window->ListView1->nextInFocusChain(); each != window->ListView1;
         each = each->nextInFocusChain()) {
        if (!(each->focusPolicy() & Qt::TabFocus) || each->objectName().startsWith("qt_")) continue;
        order += each->objectName();
        names += each->accessibleName();
    }
    EXPECT_TRUE(names.removeDuplicates() == 0 && !names.contains("")) << S(names.join(", "));
    EXPECT_TRUE(order.join(' ').startsWith("txtStatus ckCPUMon ckDiskMon ckMemoryMon ckSvcMon chipDown ")) << S(order.join(' '));
    EXPECT_TRUE(order.contains("cmdOpenLog") &&
                order.join(' ').endsWith(" cmdStopStart cmdStopWaiting cmdAddURL cmdEditURL cmdCopyPaste cmdDeleteURL cmdSave "
                                         "cmdReports cmdSettings cmdHelp"));
}

TEST_F(GlanceTest, AWindowWhoseScreenHasGoneComesBack) {
    const auto placeAfter = [&](const QPoint& place) {
        window->move(place);
        window->MinimizeToTray();
        window->mnuTraySettings_Click();
        return window->pos();
    };
    window->SetWidth(7500);
    EXPECT_EQ(placeAfter({-300, 50}), QPoint(-300, 50)) << "its title can be reached";
    for (const QPoint& gone : {QPoint(5000, 50), QPoint(50, 5000), QPoint(-5000, 0), QPoint(50, -300)}) {
        placeAfter(gone);
        EXPECT_TRUE(window->screen()->availableGeometry().contains(window->frameGeometry())) << gone.x();
    }
    EXPECT_EQ(window->Width(), 7500);
}

}  // namespace korvane::glance_test
