// The settings pages for actions, webhook and prices: what reaches the settings, and what does not.

#include "monitor/virtual_fleet.h"
#include "reactions/fake_child_processes.h"
#include "ui/base/plain_table.h"
#include "ui/settings/action_log_model.h"
#include "ui/settings/actions_page.h"
#include "ui/settings/literal_text.h"
#include "ui/settings/price_table_model.h"
#include "ui/settings/prices_page.h"
#include "ui/settings/release_dialog.h"
#include "ui/settings/webhook_page.h"
#include "ui/usage/price_page.h"

#include <QAbstractItemModelTester>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

namespace fleetwise::testing {
namespace {

class AnsweredPoster final : public HttpPoster {
public:
    void post(const HttpPost& request, std::function<void(Result)> done) override {
        addresses.push_back(request.address);
        answer = std::move(done);
    }
    std::vector<std::string> addresses;
    std::function<void(Result)> answer;
};

class AnsweredDownload final : public FeedDownload {
public:
    void get(const std::string& /*address*/, std::function<void(Result)> done) override {
        answer = std::move(done);
    }
    std::function<void(Result)> answer;
};

class LoginStartNotAsked final : public LoginStart {
public:
    bool isOn() const override { return false; }
    tl::expected<void, std::string> set(bool /*isOn*/) override { return {}; }
};

class SettingsPagesTest : public ::testing::Test, protected VirtualFleet {
protected:
    ~SettingsPagesTest() override { Prices::install(Prices::Book::builtIn()); }

    template <typename Page, typename... Arguments>
    Page& open(const Arguments&... arguments) {
        auto made = std::make_unique<Page>(monitor, services, arguments...);
        Page& opened = *made;
        page = std::move(made);
        page->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(page.get()));
        return opened;
    }
    static bool says(const QWidget& widget, const QString& text) {
        const auto labels = widget.findChildren<QLabel*>();
        return std::ranges::any_of(labels, [&](const QLabel* label) {
            return label->isVisible() && label->text().contains(text);
        });
    }
    bool says(const QString& text) const { return says(*page, text); }
    static QPushButton& button(const QWidget& widget, const QString& text) {
        for (auto* found : widget.findChildren<QPushButton*>()) {
            if (found->text() == text && found->isVisible()) return *found;
        }
        throw std::runtime_error("no button " + text.toStdString());
    }
    QPushButton& button(const QString& text) const { return button(*page, text); }
    QLineEdit& field() const {
        for (auto* found : page->findChildren<QLineEdit*>()) {
            if (found->isVisible()) return *found;
        }
        throw std::runtime_error("no field");
    }
    void type(QLineEdit& into, const QString& text) {
        into.setFocus();
        into.selectAll();
        QTest::keyClick(&into, Qt::Key_Delete);
        QTest::keyClicks(&into, text);
        QTest::keyClick(&into, Qt::Key_Return);
    }
    std::vector<StateAction> actionsStored() const {
        return StateAction::decode(settings.get(Settings::stateActions));
    }
    ReleaseDialog& askForRelease() {
        button("Freigeben …").click();
        for (auto* dialog : page->findChildren<ReleaseDialog*>()) {
            if (dialog->isVisible()) return *dialog;
        }
        throw std::runtime_error("no question");
    }

    FakeChildProcesses processes;
    StateAction::FileSystem allPrograms = [](const std::string& path) {
        return StateAction::FileState{path != "/missing", true};
    };
    ActionRunner runner{processes, [this] { return loop.now(); }, allPrograms};
    AnsweredPoster poster;
    Webhook webhook{poster, "1", [this] { return loop.now(); }};
    PriceSettings prices{defaults, home.at("prices.json"),
                         [this](const Prices::Book& book) { monitor.setPriceBook(book); }};
    PriceFeed feed{home.at("prices.json"), prices};
    AnsweredDownload download;
    FeedUpdate update{loop, download, feed, "https://example.org/feed", "1"};
    FeedUpdate noUpdate{loop, download, feed, "", "1"};
    LoginStartNotAsked login;
    SettingsServices services{.actions = runner,
                              .sounds = sounds,
                              .webhook = webhook,
                              .prices = prices,
                              .priceFeed = feed,
                              .feedUpdate = update,
                              .loginStart = login,
                              .terminals = {},
                              .facts = {},
                              .settingsBackups = {},
                              .now = [this] { return loop.now(); }};
    std::unique_ptr<QWidget> page;
};

TEST_F(SettingsPagesTest, runsAnActionOnlyOnceItsCommandWasSeenAndReleased) {
    open<ActionsPage>(allPrograms);
    button("Aktion hinzufügen").click();
    EXPECT_TRUE(actionsStored().empty()) << "nothing to run yet";
    type(field(), "/bin/tell 'a b'");
    ASSERT_EQ(actionsStored().size(), 1U);
    EXPECT_TRUE(says("Programm: /bin/tell\nArgument 1: »a b«"));
    EXPECT_TRUE(says("Noch nicht freigegeben"));

    ReleaseDialog& careless = askForRelease();
    for (const char* told : {"/bin/tell", "»a b«", "FLEETWISE_STATE=waiting", "FLEETWISE_SESSION="})
        EXPECT_TRUE(says(careless, told)) << told;
    QTest::keyClick(&careless, Qt::Key_Return);
    EXPECT_FALSE(actionsStored()[0].isArmed()) << "Return alone is no consent";

    button(askForRelease(), "Freigeben").click();
    EXPECT_TRUE(actionsStored()[0].isArmed());
    EXPECT_TRUE(says("Freigegeben: läuft von selbst."));

    type(field(), "/bin/tell other");
    EXPECT_FALSE(actionsStored()[0].isArmed());
    EXPECT_FALSE(actionsStored()[0].confirmed) << "nor once the old command is typed again";

    button(askForRelease(), "Freigeben").click();
    QTest::keyClick(page->findChild<QComboBox*>(), Qt::Key_Down);
    EXPECT_EQ(actionsStored()[0].state, SessionState::failed);
    EXPECT_FALSE(actionsStored()[0].isArmed()) << "the question named the state, too";

    type(field(), "/missing");
    EXPECT_TRUE(says("Dort liegt keine Datei"));
    EXPECT_THROW(button("Freigeben …"), std::runtime_error);
}

TEST_F(SettingsPagesTest, leavesAloneWhatOthersWroteAmongTheActions) {
    const Json foreign = {{"theirs", 1}};
    Json mine = {{"id", "a"}, {"state", "done"}, {"command", "/old"}, {"note", "kept"}};
    settings.set(Settings::stateActions, Json::array({foreign, mine}));
    open<ActionsPage>(allPrograms);
    QPushButton& consent = button(askForRelease(), "Freigeben");
    mine["command"] = "/swapped";
    settings.set(Settings::stateActions, Json::array({foreign, mine}));
    consent.click();
    EXPECT_FALSE(actionsStored()[0].isArmed()) << "nobody has seen this command";
    EXPECT_EQ(field().text(), "/swapped");

    type(field(), "/new");
    mine["command"] = "/new";
    EXPECT_EQ(settings.get(Settings::stateActions), Json::array({foreign, mine}));
    button("Entfernen").click();
    EXPECT_EQ(settings.get(Settings::stateActions), Json::array({foreign}));
    EXPECT_TRUE(says("Noch keine Aktion."));
}

TEST_F(SettingsPagesTest, keepsACommandThatIsBeingTyped) {
    settings.set(Settings::stateActions,
                 Json::array({{{"id", "a"}, {"state", "done"}, {"command", "/old"}}}));
    auto& actions = open<ActionsPage>(allPrograms);
    field().setFocus();
    QTest::keyClicks(&field(), "er");
    actions.refresh();
    EXPECT_EQ(field().text(), "/older");
    EXPECT_EQ(actionsStored()[0].command, "/old");
    page->hide();
    EXPECT_EQ(actionsStored()[0].command, "/older");
}

TEST_F(SettingsPagesTest, listsWhatRanTheNewestFirst) {
    begin({session("a", SessionState::done)});
    ActionLogModel model(monitor, [this] { return loop.now(); });
    const QAbstractItemModelTester tester(&model,
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    const auto cell = [&](int row, ActionLogModel::Column column) {
        return model.index(row, column).data().toString();
    };
    model.update(runner.log());
    EXPECT_EQ(model.rowCount(), 0);
    runner.start({"/one", {"x y"}}, SessionState::done, "a");
    runner.start({"/two", {}}, SessionState::waiting, "gone");
    model.update(runner.log());
    ASSERT_EQ(model.rowCount(), 2);
    EXPECT_EQ(cell(0, ActionLogModel::program), "two");
    EXPECT_EQ(cell(0, ActionLogModel::session), "gone");
    EXPECT_EQ(cell(1, ActionLogModel::program), "one x y");
    EXPECT_EQ(cell(1, ActionLogModel::ending), "Läuft");
    QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
    processes.endFirst(3);
    model.update(runner.log());
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(cell(1, ActionLogModel::ending), "Fehlercode 3");
    processes.failure = "kaputt";
    for (std::size_t more = 1; more < ActionRunner::maximumEntries; ++more)
        runner.start({"/many", {}}, SessionState::done, "a");
    model.update(runner.log());
    ASSERT_EQ(model.rowCount(), static_cast<int>(ActionRunner::maximumEntries));
    EXPECT_EQ(cell(0, ActionLogModel::ending), "kaputt");
    EXPECT_EQ(cell(model.rowCount() - 1, ActionLogModel::program), "two") << "the first is gone";
}

TEST(LiteralText, showsWhatCouldNotBeSeen) {
    EXPECT_EQ(literalText("/bin/a b"), "/bin/a b");
    EXPECT_EQ(literalText("a\u202Eb\nc"), "a⟨U+202E⟩b⟨U+000A⟩c");
    EXPECT_GT(literalText(std::string(100, 'x')).size(), 100) << "can be broken";
}

TEST_F(SettingsPagesTest, takesOnlyAddressesThatMayBeUsed) {
    open<WebhookPage>();
    const struct {
        const char* typed;
        const char* stored;
        const char* said;
    } rows[] = {
        {"example.org", "", "keine vollständige Adresse"},
        {"http://example.org", "", "sonst https"},
        {" https://example.org/a ", "https://example.org/a", "noch nichts gesendet"},
        {"nonsense", "https://example.org/a", "Gesendet wird weiter an https://example.org/a"},
        {"http://localhost/b", "http://localhost/b", "noch nichts gesendet"},
        {"", "", "noch nichts gesendet"},
    };
    for (const auto& row : rows) {
        type(field(), row.typed);
        EXPECT_EQ(settings.get(Settings::webhookURL), row.stored) << row.typed;
        EXPECT_TRUE(says(row.said)) << row.typed;
    }
}

TEST_F(SettingsPagesTest, testsTheAddressAndOutlivesThePage) {
    auto& opened = open<WebhookPage>();
    button("Test senden").click();
    EXPECT_TRUE(says("Keine Adresse eingetragen."));
    field().setFocus();
    QTest::keyClicks(&field(), "https://example.org");
    button("Test senden").click();
    EXPECT_EQ(poster.addresses, std::vector<std::string>{"https://example.org"});
    EXPECT_FALSE(button("Test senden").isEnabled());
    poster.answer(404);
    EXPECT_TRUE(says("Der Test kam nicht an: HTTP 404"));
    EXPECT_TRUE(says("nicht angekommen (HTTP 404)"));
    monitor.change(Settings::webhookURL, "https://example.org/other");
    opened.refresh();
    EXPECT_EQ(field().text(), "https://example.org/other");
    button("Test senden").click();
    page.reset();
    poster.answer(200);
}

class PricesTest : public SettingsPagesTest {
protected:
    PlainTable& table() const { return *page->findChild<PlainTable*>(); }
    /// The price of the family in the given row, 0 is Opus, as it is shown.
    QString price(int row, int column) const {
        return table().model()->index(row, column).data().toString();
    }
    /// Opens the cell's field, types and stores; whether the field closed.
    bool enter(int row, int column, const QString& text) {
        table().setCurrentIndex(table().model()->index(row, column));
        table().edit(table().currentIndex());
        auto* editor = table().findChild<QLineEdit*>();
        type(*editor, text);
        QCoreApplication::processEvents();
        const bool isClosed = !editor->isVisible();
        if (!isClosed) QTest::keyClick(editor, Qt::Key_Escape);
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return isClosed;
    }
};

TEST_F(PricesTest, takesPricesOfTheUsersOverTheList) {
    open<PricesPage>();
    const QAbstractItemModelTester tester(table().model(),
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    EXPECT_EQ(price(0, 1), "5,00");
    EXPECT_TRUE(enter(0, 1, "7,125"));
    EXPECT_EQ(price(0, 1), "• 7,125");
    EXPECT_EQ(table().model()->index(0, 1).data(Qt::ToolTipRole),
              "Dein Preis statt 5,00 der Liste");
    EXPECT_EQ(monitor.priceBook().table.at("opus").input, 7.125);
    EXPECT_TRUE(says("Eigene Preise über der Liste"));

    const struct {
        const char* typed;
        const char* said;
    } refused[] = {{"abc", "Schreibe etwa 12,50."},
                   {"-1", "Schreibe etwa 12,50."},
                   {"1,00001", "Höchstens vier Stellen"},
                   {"10.001", "Höchstens 10.000,00."}};
    for (const auto& row : refused) {
        EXPECT_FALSE(enter(0, 1, row.typed)) << row.typed;
        EXPECT_TRUE(says(row.said)) << row.typed;
        EXPECT_EQ(price(0, 1), "• 7,125");
    }
    EXPECT_TRUE(enter(0, 1, ""));
    EXPECT_EQ(price(0, 1), "5,00");
    EXPECT_FALSE(says("Schreibe etwa"));

    EXPECT_EQ(price(3, 2), "—");
    EXPECT_TRUE(enter(3, 2, "15"));
    EXPECT_TRUE(says("Für Sonnet zählt noch nichts"));
    QTest::keyClick(&table(), Qt::Key_Delete);
    EXPECT_TRUE(prices.custom().empty());
    EXPECT_FALSE(says("Für Sonnet"));
}

TEST_F(PricesTest, takesOneRateForEverythingAndGivesAllUp) {
    open<PricesPage>();
    auto& flat = *page->findChild<QCheckBox*>();
    flat.click();
    EXPECT_FALSE(prices.flat()) << "no rate yet";
    type(field(), "viel");
    EXPECT_TRUE(says("Schreibe etwa 12,50."));
    type(field(), "3");
    EXPECT_EQ(prices.flat(), 3);
    EXPECT_TRUE(says("Pauschal 3,00 $ je Million Tokens"));
    flat.click();
    EXPECT_FALSE(prices.flat());

    flat.click();
    EXPECT_EQ(prices.flat(), 3) << "what the field shows applies again";
    type(field(), "4");
    prices.setOverride(1, "opus.input");
    static_cast<SettingsPage&>(*page).refresh();
    button("Eigene Preise verwerfen …").click();
    button(*page->findChild<QMessageBox*>(), "Verwerfen").click();
    EXPECT_FALSE(prices.flat());
    EXPECT_TRUE(prices.custom().empty());
    EXPECT_FALSE(flat.isChecked());
    EXPECT_FALSE(button("Eigene Preise verwerfen …").isEnabled());
}

TEST_F(PricesTest, tellsHowItStandsWithTheFeed) {
    auto& opened = open<PricesPage>();
    update.start([&] { opened.refresh(); });
    EXPECT_TRUE(says("wird gerade gelesen"));
    const auto answer = [&](FeedDownload::Result result) {
        download.answer(std::move(result));
        finishAll();
    };
    answer(tl::unexpected(std::string("nicht erreichbar")));
    EXPECT_TRUE(says("Der letzte Versuch schlug fehl: nicht erreichbar"));
    loop.advance(Seconds(3'600));
    answer(R"(<rss xmlns:fleetwise="x"><item><enclosure version="2"/></item>)"
           R"(<fleetwise:preise>{"stand":"nie"}</fleetwise:preise></rss>)");
    EXPECT_TRUE(says("Zuletzt gelesen:"));
    EXPECT_TRUE(says("Preise aus dem Feed: Datei unbrauchbar"));
    EXPECT_TRUE(says("Eine neuere Version ist da: 2"));
    EXPECT_FALSE(says("schlug fehl"));

    const SettingsServices without{.actions = runner,
                                   .sounds = sounds,
                                   .webhook = webhook,
                                   .prices = prices,
                                   .priceFeed = feed,
                                   .feedUpdate = noUpdate,
                                   .loginStart = login,
                                   .now = services.now};
    PricesPage other(monitor, without);
    other.show();
    EXPECT_TRUE(says(other, "kennt keinen Update-Feed"));
}

TEST_F(PricesTest, showsTheBookInUseAmongTheUsage) {
    PricePage shown(monitor);
    shown.show();
    shown.refresh(loop.now());
    const auto& view = *shown.findChild<PlainTable*>();
    EXPECT_EQ(view.model()->index(1, 2).data().toString(), "5,00");
    EXPECT_TRUE(says(shown, "Eingebaute Preisliste"));
    EXPECT_TRUE(says(shown, "Ohne Preis: Fable, Sonnet, GPT"));
    QSignalSpy wanted(&shown, &PricePage::settingsWanted);
    button(shown, "Preise ändern …").click();
    EXPECT_EQ(wanted.count(), 1);
    prices.setFlatRate(3);
    shown.refresh(loop.now());
    EXPECT_FALSE(view.isVisible());
    EXPECT_TRUE(says(shown, "Pauschal 3,00 $"));
    monitor.change(Settings::usageShowsMoney, false);
    EXPECT_FALSE(shown.isWanted());
}

}  // namespace
}  // namespace fleetwise::testing
