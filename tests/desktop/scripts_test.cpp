// Plays the scenarios of scripts.txt. Each begins with an empty database, the host 10.0.0.1 and the page of web.example.
#include "desktop/desktop_test.h"

namespace korvane::scripts_test {

using Script = std::pair<std::string, std::string>;  // title and steps

std::vector<Script> Scripts() {
    std::vector<Script> scripts;
    for (const std::string& line : Split(ReadAll(KORVANE_SOURCE_DIR "/tests/desktop/scripts.txt"), '\n')) {
        if (line.starts_with("# ")) scripts.emplace_back(line.substr(2), "");
        if (!line.empty() && !line.starts_with("#")) scripts.back().second += (scripts.back().second.empty() ? "" : "; ") + line;
    }
    return scripts;
}

class Scenario : public DesktopTest, public testing::WithParamInterface<Script> {
protected:
    using Text = const std::string&;

    void AddEntry(Text columns) {
        Row row;
        for (const std::string& each : Split(columns, '|'))
            if (const auto at = each.find('='); at != std::string::npos) row[each.substr(0, at)] = Value(each.substr(at + 1));
        world->rows.Change("Servers", world->rows.Add({}), row);
        window->RefreshURLList();
    }
    std::int64_t LastId() { return world->rows.Rows("Servers").back().at("id").Int64(); }
    /// The texts of a column of the list, and in brackets that of the selected row.
    std::string Cells(int column) {
        QStringList cells;
        for (int row = 0; row < window->ListView1->model()->rowCount(); ++row)
            cells += window->ListView1->model()->index(row, column).data().toString();
        return S(cells.join(",") + "[" + window->ListView1->currentIndex().siblingAtColumn(column).data().toString() + "]");
    }
    static void Click(QTableWidget& grid, int row) {
        grid.setFocus();
        QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, grid.visualItemRect(grid.item(row, 1)).center());
    }
    void Type(Text name, Text text) {
        QWidget& box = Get(name);
        box.setFocus();
        if (auto* const choice = qobject_cast<QComboBox*>(&box)) return choice->setCurrentText(Q(text));
        QTest::keySequence(&box, QKeySequence("Ctrl+A"));
        QTest::keyClick(&box, Qt::Key_Delete);
        QTest::keyClicks(&box, Q(text));
    }
    std::string Look(Text name) {
        if (QAction* const action = Action(name))
            return action->isVisible() ? S(action->text()) + (action->isChecked() ? "*" : "") : "hidden";
        const QWidget& control = Get(name);
        if (!control.isVisibleTo(form)) return "hidden";
        if (!control.isEnabled()) return "off";
        if (control.property("checkable").toBool()) return control.property("checked").toBool() ? "on" : "-";
        std::string text;
        for (const char* property : {"plainText", "currentText", "text"})
            text += S(control.property(property).toString());
        return text;
    }

    void Play(Text script, Text between) {
        for (const std::string& step : Split(ReplaceAll(script, between, "\n"), '\n')) {
            SCOPED_TRACE(step);
            Settle();
            const auto at = std::min(step.find_first_of("=?~"), step.size()), colon = step.find(':');
            const bool isWord = colon < at;
            const std::string word = step.substr(0, isWord ? colon : 0);
            const std::string of = isWord ? step.substr(colon + 1, at - colon - 1) : step.substr(0, at);
            const std::string text = ReplaceAll(step.substr(std::min(at + 1, step.size())), "\\n", "\n");
            if (at < step.size() && step[at] != '=') {
                const std::string seen = isWord ? looks_.at(word)(of) : Look(of);
                EXPECT_TRUE(step[at] == '?' ? seen == text : Holds(seen, text)) << seen;
            } else if (isWord) {
                words_.at(word)(of, text);
            } else if (at < step.size()) {
                Type(of, text);
            } else if (step.starts_with("<")) {
                QWidget* const list = QApplication::activePopupWidget();  // it has the keyboard
                QTest::keySequence(list != nullptr ? list : form->focusWidget(),
                                   QKeySequence(Q(step.substr(1, step.size() - 2))));
            } else {
                step.starts_with("frm") ? (void)Open(step) : Do(step);
            }
        }
    }

    const std::map<std::string, std::function<void(Text of, Text text)>> words_{
        {"entry", [&](auto&, auto& text) { AddEntry(text); }},
        {"many", [&](auto&, auto& text) { world->rows.AddMany(std::vector<Entry>(std::stoul(text))), window->RefreshURLList(); }},
        {"drop", [&](auto&, auto&) { world->rows.Remove("Servers", LastId()); }},
        {"setting", [&](auto& of, auto& text) { world->Set(of, text); }},
        {"start", [&](auto&, auto& text) { Start(text); }},
        {"wait", [&](auto&, auto& text) { world->RunFor(std::chrono::seconds(std::stoi(text))); }},
        {"at", [&](auto& of, auto& text) { world->world.After(1ms * std::stoi(of), [this, text] { Play(text, " & "); }); }},
        {"yes", [&](auto&, auto& text) { window->yes = text.empty(); }},
        {"boxes", [&](auto&, auto&) { window->boxes = true; }},
        {"take", [&](auto& of, auto&) { Take(of); }},
        {"close", [&](auto&, auto&) { form->close(); }},
        {"closeall", [&](auto&, auto&) { CloseAll(), Take("frmMonitor"); }},
        {"gone", [&](auto&, auto&) { EXPECT_TRUE(IsGone()); }},
        {"toggle",
         [&](auto& of, auto&) { QAccessible::queryAccessibleInterface(&Get(of))->actionInterface()->doAction("Toggle"); }},
        {"choose", [&](auto&, auto& text) { emit Get<QFileDialog>("fileDialog").fileSelected(Q(text)); }},
        {"sort", [&](auto& of, auto& text) { window->ListView1->sortByColumn(std::stoi(of), Qt::SortOrder(text == "down")); }},
        {"press",
         [&](auto& of, auto&) {
             const QWidget& control = *form->findChild<QWidget*>(Q(of));
             QTest::mouseClick(form->windowHandle(), Qt::LeftButton, {}, control.mapTo(form, control.rect().center()));
         }},
        {"click", [&](auto&, auto& text) { Click(Get<QTableWidget>("grdSvc"), std::stoi(text)); }},
        {"size", [&](auto&, auto& text) { window->SetWidth(std::stoi(text)), window->SetHeight(std::stoi(text)); }},
        {"width", [&](auto&, auto& text) { window->ListView1->setColumnWidth(column::Group, std::stoi(text)); }},
        {"proxy", [&](auto&, auto& text) { world->proxyServer = text; }},
        {"refuse", [&](auto&, auto& text) { world->serviceManager.refusal = text; }},
        {"manager", [&](auto&, auto&) { world->serviceManager.present = false, world->run.Service().LoadMarks(); }},
        {"browser", [&](auto&, auto& text) { world->processes.hasBrowser = text != "none"; }},
        {"load", [&](auto&, auto& text) { world->systemInfo.Work(std::stoi(text)); }},
        {"service", [&](auto& of, auto& text) { world->services.Set(of, std::stoi(text)); }},
        {"services", [&](auto&, auto& text) { world->services.whyNot = text; }}};

    const std::map<std::string, std::function<std::string(Text of)>> looks_{
        {"row", [&](auto& of) { return world->rows.Server(LastId()).at(of).Text(); }},
        {"count", [&](auto& of) { return std::to_string(world->rows.Count(of)); }},
        {"setting", [&](auto& of) { return world->run.TheDesk().collection.getKvSettingsColVal(of); }},
        {"file", [&](auto& of) { return world->Text(of); }},
        {"has", [&](auto& of) { return world->run.TheDesk().collection.Find(of) == nullptr ? "-" : "on"; }},
        {"value", [&](auto& of) { return S(QAccessible::queryAccessibleInterface(&Get(of))->text(QAccessible::Value)); }},
        {"told", [&](auto& of) { return S(Get(of).accessibleDescription()); }},
        {"redtabs",
         [&](auto&) {
             const auto& tabs = *form->findChild<QTabBar*>();
             std::string red;
             for (int page = 0; page < tabs.count(); ++page)
                 red += tabs.tabTextColor(page).isValid() ? S(tabs.tabText(page)) : "";
             return red;
         }},
        {"said", [&](auto&) { return std::exchange(window->said, "nothing"); }},
        {"title", [&](auto&) { return S(form->windowTitle()); }},
        {"focus", [&](auto&) { return S(form->focusWidget()->objectName()); }},
        {"told", [&](auto& of) { return S(Get(of).accessibleDescription()); }},
        {"mark", [&](auto& of) { return Get(of).styleSheet().isEmpty() ? "" : S(Get(of).accessibleDescription()); }},
        {"list", [&](auto& of) { return Cells(of.empty() ? column::ShortName : std::stoi(of)); }},
        {"watched",
         [&](auto& of) { return Get<QTableWidget>("grdSvc").item(std::stoi(of), 1)->checkState() == Qt::Checked ? "on" : "-"; }},
        {"size",
         [&](auto&) {
             return std::to_string(window->Width()) + "," + std::to_string(window->Height()) +
                    (window->screen()->availableGeometry().contains(window->frameGeometry()) ? "" : " outside");
         }},
        {"width", [&](auto&) { return std::to_string(window->ListView1->columnWidth(column::Group)); }},
        {"seen", [&](auto&) { return window->WindowVisible() ? "on" : "-"; }},
        {"clip", [&](auto&) { return S(QApplication::clipboard()->text()); }},
        {"exits", [&](auto&) { return std::to_string(world->exits); }},
        {"web", [&](auto&) { return world->processes.opened.back(); }},
        {"started", [&](auto&) { return world->processes.started.empty() ? "" : world->processes.started.back().command; }},
        {"asked", [&](auto&) { return world->serviceManager.asked.empty() ? "" : world->serviceManager.asked.back(); }},
        {"played", [&](auto&) { return world->sound.played.back(); }},
        {"mail", [&](auto&) { return world->mail.mails.back().text; }}};
};

TEST_P(Scenario, Is) {
    world->net.Page("http://web.example").Answer("Welcome back", 20ms);
    world->net.Page("http://slow.example").Answer("slow", 3s);
    world->net.Host("10.0.0.1").Echo(3ms);
    world->net.Host("tls.example").Port(587).Speak("220 ready\r\n").Tls(false).Answer([](const std::string& line) {
        return line == "STARTTLS" ? "220 go on\r\n" : "250-tls.example\r\n250 STARTTLS\r\n";
    });
    Play(GetParam().second, "; ");
}

INSTANTIATE_TEST_SUITE_P(Windows, Scenario, testing::ValuesIn(Scripts()),
                         [](const auto& script) { return S(Q(script.param.first).remove(QRegularExpression("[^A-Za-z]"))); });

}  // namespace korvane::scripts_test
