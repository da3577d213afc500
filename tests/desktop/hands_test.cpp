// What the main window shows around its list can be driven by the keyboard alone and by the mouse alone, with the same result; and
// what reads it aloud finds role, name and value of each control. Keys and clicks go to windows, as those of an operator do.
#include "desktop/desktop_test.h"

namespace korvane::hands_test {

struct HandsTest : DesktopTest {
    void SetUp() override {
        window->resize(1400, 900);
        for (const char* name : {"one", "two", "west", "four"})
            world->rows.Add({.strGroup = name, .strDesc = name, .strCurStatus = *name == 'o' ? "DOWN" : "UP"});
        window->RefreshURLList();
        QApplication::clipboard()->setText("west");
        Settle();
    }
    static QWidget& Top() {
        QWidget* const popup = QApplication::activePopupWidget();
        return popup != nullptr ? *popup : *QApplication::activeWindow();
    }
    void Key(const QString& key) {
        QWindow* const to = Top().windowHandle();
        QContextMenuEvent menu(QContextMenuEvent::Keyboard, {}, {});  // this platform makes none of the key
        key == "Menu" ? (void)QApplication::sendEvent(to, &menu) : QTest::keySequence(to, QKeySequence(key));
        const auto isReleased = [](const QAbstractButton* button) {
            return !button->isDown();
        };  // a key holds it down for a moment
        EXPECT_TRUE(QTest::qWaitFor([&] { return std::ranges::all_of(form->findChildren<QAbstractButton*>(), isReleased); }));
        Settle();
    }
    void Tab(const std::string& name) {
        for (int i = 0; i < 60 && S(form->focusWidget()->objectName()) != name; ++i)
            Key("Tab");
        EXPECT_EQ(S(form->focusWidget()->objectName()), name);
    }
    void Click(QWidget& on, const QPoint& at, Qt::MouseButton button = Qt::LeftButton, Qt::KeyboardModifiers keys = {}) {
        QTest::mouseClick(on.window()->windowHandle(), button, keys, on.mapTo(on.window(), at));
        Settle();
    }
    void ClickRow(int row, Qt::MouseButton button = Qt::LeftButton, Qt::KeyboardModifiers keys = {}) {
        QTreeView& list = *window->ListView1;
        Click(*list.viewport(), list.visualRect(list.model()->index(row, column::Status)).center(), button, keys);
    }
    /// A line of the menu that is open.
    void Choose(const QString& caption) {
        auto& menu = dynamic_cast<QMenu&>(Top());
        for (QAction* each : menu.actions())
            if (each->text().section('\t', 0, 0).remove('&').startsWith(caption))
                return Click(menu, menu.actionGeometry(each).center());
        ADD_FAILURE() << S(caption);
    }
    void Menu(const QString& title, const QString& caption) {
        for (QAction* each : window->menuBar()->actions())
            if (each->text() == title) Click(*window->menuBar(), window->menuBar()->actionGeometry(each).center());
        Choose(caption);
    }

    /// `<Ctrl+F>` is a key, `'west'` is typed, `tab:name` goes there by the Tab key; `row:1`, `shift:1` and `menu:1` click a row,
    /// `right:name` and `name` a control, `Entr&y>Pause` a line of a menu and `>Pause` one of the menu that is open.
    void Act(const std::string& step) {
        const std::string of = step.substr(step.find(':') + 1);
        const auto more = step.find('>');
        if (step[0] == '<') return Key(Q(step.substr(1, step.size() - 2)));
        if (step[0] == '\'') return QTest::keyClicks(form->focusWidget(), Q(Trim(step.substr(1))));
        if (step.starts_with("tab:")) return Tab(of);
        if (step.starts_with("row:")) return ClickRow(std::stoi(of));
        if (step.starts_with("shift:")) return ClickRow(std::stoi(of), Qt::LeftButton, Qt::ShiftModifier);
        if (step.starts_with("menu:")) return ClickRow(std::stoi(of), Qt::RightButton);
        if (more == 0) return Choose(Q(step.substr(1)));
        if (more != std::string::npos) return Menu(Q(step.substr(0, more)), Q(step.substr(more + 1)));
        QWidget& on = Get(of);
        Click(on, on.rect().center(), step == of ? Qt::LeftButton : Qt::RightButton);
    }

    /// All that an operator can see of it.
    std::string Seen() {
        Settle();
        std::string seen = world->processes.opened.empty() ? "" : Split(world->processes.opened.back(), '/').back();
        const QTreeView& list = *window->ListView1;
        for (int row = 0; row < list.model()->rowCount(); ++row)
            for (const int column : {column::ShortName, column::Status, column::NextTry})
                seen += (list.selectionModel()->isRowSelected(row) ? "*" : " ") +
                        S(list.model()->index(row, column).data().toString());
        for (const auto* each : form->findChildren<QAbstractButton*>())
            seen += (each->isVisible() ? " " + S(each->objectName()) : "") + (each->isChecked() ? "+" : "") +
                    (each->isEnabled() ? "" : "-");
        for (const char* name : {"txtFind", "lblShown", "lblStopped", "lblTimes"})
            if (QWidget& each = Get(name); each.isVisible()) seen += "\n" + S(each.property("text").toString());
        for (const char* name : {"txtDetail", "txtFailures", "txtStatus"})
            if (QWidget& each = Get(name); each.isVisible()) seen += "\n" + S(each.property("plainText").toString());
        return seen + "\n" + S(QApplication::clipboard()->text());
    }
};

struct Way {
    const char* keys;
    const char* clicks;
};
constexpr Way kWays[] = {
    {"<Alt+1>", "chipDown"},
    {"tab:chipDown; <Space>; tab:chipUp; <Space>", "chipDown; chipUp"},
    {"tab:cmdShowAll; <Space>", "cmdShowAll"},
    {"tab:chipInactive; <Space>", "chipInactive"},
    {"<Alt+W>; <A>", "Vie&w>Show All"},
    {"<Ctrl+F>; 'west", "Vie&w>Find; right:txtFind; >Paste"},
    {"<Escape>", "cmdShowAll"},
    {"<Home>; <Shift+Down>", "row:0; shift:1"},
    {"<Alt+Y>; <U>", "Entr&y>Pause"},
    {"<Menu>; <M>", "menu:1; >Resume"},
    {"<Home>; <Shift+F5>", "row:0; Entr&y>Check Now"},
    {"<End>; <Alt+0>", "row:3; cmdDetailCheck"},
    {"tab:cmdDays; <Space>", "cmdDays"},
    {"tab:txtDetail; <Ctrl+A>; <Ctrl+C>", "right:txtDetail; >Select All; right:txtDetail; >Copy"},
    {"tab:cmdCloseDetail; <Space>", "cmdCloseDetail"},
    {"<Alt+W>; <D>", "Vie&w>Show Details"},
    {"tab:cmdProblemsFirst; <Space>", "cmdProblemsFirst"},
    {"tab:txtStatus; <Menu>; <W>", "right:txtStatus; >Copy Whole Log"},
    {"tab:cmdOpenLog; <Space>", "cmdOpenLog"},
    {"<F9>", "cmdStopStart"},
    {"tab:cmdStartMonitoring; <Space>", "cmdStartMonitoring"},
};

TEST_F(HandsTest, KeysAloneAndTheMouseAloneDoTheSame) {
    std::vector<std::string> byKeys{Seen()};
    const auto play = [&](const char* steps) {
        for (const std::string& step : Split(ReplaceAll(steps, "; ", "\n"), '\n'))
            Act(step);
        return Seen();
    };
    for (const Way& way : kWays) {
        byKeys.push_back(play(way.keys));
        EXPECT_NE(byKeys.back(), byKeys[byKeys.size() - 2]) << way.keys << " does nothing";
    }
    Start("Done=True");
    SetUp();
    for (std::size_t i = 0; i < std::size(kWays); ++i)
        ASSERT_EQ(play(kWays[i].clicks), byKeys[i + 1]) << kWays[i].clicks;
}

TEST_F(HandsTest, WhatTheMouseReachesTheTabKeyReachesToo) {
    Act("chipDown");
    Act("cmdStopStart");
    std::set<const QWidget*> reached;
    while (reached.insert(form->focusWidget()).second)
        Key("Tab");
    for (const QWidget* each : form->findChildren<QWidget*>()) {
        const bool isButton = qobject_cast<const QAbstractButton*>(each) != nullptr && !each->objectName().startsWith("qt_");
        const bool isReached = reached.contains(each) || !each->isVisible() || !each->isEnabled();
        EXPECT_TRUE(isReached || (!isButton && each->focusPolicy() == Qt::NoFocus)) << S(each->objectName());
    }
}

constexpr struct {
    const char* object;
    QAccessible::Role role;
    const char* name;
    const char* value;
} kControls[] = {
    {"chipDown", QAccessible::CheckBox, "Show servers that are Down", "on 1"},
    {"chipFailing", QAccessible::CheckBox, "Show servers that are Failing", "off 0"},
    {"chipUp", QAccessible::CheckBox, "Show servers that are Up", "off 3"},
    {"chipDownTime", QAccessible::CheckBox, "Show servers that are Down-Time", "off 0"},
    {"chipInactive", QAccessible::CheckBox, "Show servers that are Inactive", "off 0"},
    {"lblShown", QAccessible::StaticText, "showing 1 of 4", ""},
    {"cmdShowAll", QAccessible::Button, "Take the filter off and show all servers", ""},
    {"cmdProblemsFirst", QAccessible::CheckBox, "Show problems first", "off"},
    {"txtFind", QAccessible::EditableText, "Find servers", "one"},
    {"lblStopped", QAccessible::StaticText, "Monitoring is stopped", ""},
    {"lblStoppedSince", QAccessible::StaticText, "since 3:00:00 PM, nothing is being checked.", ""},
    {"cmdStartMonitoring", QAccessible::Button, "Start monitoring", ""},
    {"txtDetail", QAccessible::EditableText, "Details of the selected server", "one"},
    {"cmdDays", QAccessible::CheckBox, "Response times of the last 30 days", "off"},
    {"chartTimes", QAccessible::Chart, "Response times of the last 24 hours", "No response times yet."},
    {"txtFailures", QAccessible::EditableText, "Last failures of the selected server", "None on record."},
    {"cmdDetailReport", QAccessible::Button, "Report of the selected server", ""},
    {"cmdDetailResponse", QAccessible::Button, "Last response of the selected server", ""},
    {"cmdDetailRoute", QAccessible::Button, "Last route to the selected server", ""},
    {"cmdDetailCheck", QAccessible::Button, "Check the selected server now", ""},
    {"cmdCloseDetail", QAccessible::Button, "Hide the details", ""},
    {"cmdOpenLog", QAccessible::Button, "Open today's log", ""},
};

TEST_F(HandsTest, ControlsHaveRoleNameAndValue) {
    for (const char* step : {"<Alt+1>", "<Ctrl+F>", "'one", "<F9>"})
        Act(step);
    Settle();
    for (const auto& [object, role, name, value] : kControls) {
        const auto& spoken = *QAccessible::queryAccessibleInterface(&Get(object));
        const std::string text = S(spoken.text(QAccessible::Value) + spoken.text(QAccessible::Description));
        const std::string state = !spoken.state().checkable ? "" : spoken.state().checked ? "on " : "off ";
        EXPECT_EQ(spoken.role(), role) << object;
        EXPECT_EQ(S(spoken.text(QAccessible::Name)), name);
        EXPECT_EQ((state + text).substr(0, std::string(value).size()), value) << object;
    }
}

}  // namespace korvane::hands_test
