#include "Application/AppDelegate.h"
#include "Application/DataFolder.h"
#include "Application/ProgramServices.h"
#include "MainWindow/Counterparts/CounterpartsPaneViewController.h"
#include "MainWindow/MainWindow.h"
#include "Model/Counterpart.h"
#include "Model/JournalQueries.h"
#include "Model/Session.h"
#include "Model/Tag.h"
#include "Preferences/InputControls/AutoEditArrayController.h"
#include "ProgramInProcess.h"
#include "RunningProgram.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Toolkit/Theme.h"

#include <QColor>
#include <QDir>
#include <QImage>
#include <QLineEdit>
#include <QProgressDialog>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

constexpr double secondsPerDay = 86400;

/// Opens a journal as the program does, without a window, and closes it again.
template<typename Function>
void withJournal(const QString &directory, const Function &function)
{
    const auto folder = DataFolder::forOptions({.dataDirectory = directory});
    ProgramServices services(*folder);
    function(services.coreData.viewContext());
}

std::shared_ptr<Session> addMeeting(ManagedObjectContext &context,
                                    const std::shared_ptr<Counterpart> &teammate, double daysAgo)
{
    const auto session = context.insert<Session>();
    session->setCounterpart(teammate);
    session->setDate(SystemClock().now().adding(-daysAgo * secondsPerDay));
    return session;
}

/// Meetings with these flags, of one teammate, the first one the longest ago.
void writeFlags(const QString &directory, const QList<int> &flags)
{
    withJournal(directory, [&](ManagedObjectContext &context) {
        const auto teammate = context.insert<Counterpart>();
        teammate->setName(u"Ana"_s);
        for (qsizetype i = 0; i < flags.size(); ++i)
            addMeeting(context, teammate, double(flags.size() - i))->setFlag(qint16(flags.at(i)));
        QVERIFY(context.save().has_value());
    });
}

/// Flag, number of tags, name and emoji of the first one; for each meeting.
QStringList describedMeetings(const QString &directory)
{
    QStringList texts;
    withJournal(directory, [&](ManagedObjectContext &context) {
        const auto teammates = context.fetch<Counterpart>(JournalQueries::counterparts());
        for (const auto &teammate : *teammates) {
            const auto sessions = context.fetch<Session>(
                JournalQueries::sessions(teammate->objectID()));
            for (const auto &session : *sessions) {
                QString text = u"%1:"_s.arg(session->flag());
                for (const auto &tag : session->sortedTags())
                    text += u' ' + tag->name() + u' ' + tag->emoji();
                texts.prepend(text);
            }
        }
    });
    return texts;
}

bool holdsYellow(const QImage &image, const QRect &place)
{
    for (int y = place.top(); y <= place.bottom(); ++y) {
        for (int x = place.left(); x <= place.right(); ++x) {
            const QColor color = image.pixelColor(x, y);
            if (color.red() > 200 && color.green() > 150 && color.blue() < 100)
                return true;
        }
    }
    return false;
}

/// Notes what a function says when the first widget is painted.
class FirstPaint : public QObject
{
public:
    explicit FirstPaint(std::function<qint64()> look) : m_look(std::move(look))
    {
        qApp->installEventFilter(this);
    }

    std::optional<qint64> seen;

    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint && !seen)
            seen = m_look();
        return false;
    }

private:
    std::function<qint64()> m_look;
};

} // namespace

/// What a start does with the journal and the settings it finds.
class tst_Launch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_account = std::make_unique<FreshAccount>(); }
    void cleanup() { m_account.reset(); }

    void flagsAreTagsAfterAStart();
    void theUsersOwnFlagEmojiAreTaken();
    void aLongMigrationShowsHowFarItIs();
    void tagsThatCannotBeSavedAreToldOf();
    void settingsCountBeforeAnythingIsPainted();
    void overdueTeammates_data();
    void overdueTeammates();
    void whatIsAskedForBeforeTheWindowIsDoneWithIt();
    void theSearchPlaceholderIsReadable_data();
    void theSearchPlaceholderIsReadable();
    void theSearchPlaceholderShowsEmojiInColour();

private:
    QString journal() const { return m_account->path(u"journal"_s); }

    std::unique_ptr<FreshAccount> m_account;
};

void tst_Launch::flagsAreTagsAfterAStart()
{
    writeFlags(journal(), {2, 0, 4, 2, 7});
    RunningProgram program(*m_account, {u"--data-dir"_s, journal()});
    QVERIFY(program.waitForWindow());
    // The start has saved it, not the end.
    program.sendSignal(SIGKILL);
    QCOMPARE(program.waitForEnd(), -SIGKILL);
    QCOMPARE(describedMeetings(journal()),
             (QStringList{u"0: Flag 2 🚩"_s, u"0:"_s, u"0: Flag 4 ⭐\uFE0F"_s, u"0: Flag 2 🚩"_s,
                          u"0: Flag 7 "_s}));
}

void tst_Launch::theUsersOwnFlagEmojiAreTaken()
{
    writeFlags(journal(), {2, 3});
    QSettings(journal() + u"/settings.ini"_s, QSettings::IniFormat).setValue(u"flagKey2"_s, u"🎏"_s);
    RunningProgram program(*m_account, {u"--data-dir"_s, journal()});
    QVERIFY(program.waitForWindow());
    program.sendSignal(SIGTERM);
    QCOMPARE(program.waitForEnd(), 0);
    QCOMPARE(describedMeetings(journal()), (QStringList{u"0: Flag 2 🎏"_s, u"0: Flag 3 🏴"_s}));
}

void tst_Launch::aLongMigrationShowsHowFarItIs()
{
    writeFlags(journal(), QList<int>(25'000, 5));
    const auto folder = DataFolder::forOptions({.dataDirectory = journal()});
    ProgramServices services(*folder);
    AppDelegate delegate(services, *folder);
    delegate.setProgressDelay(std::chrono::milliseconds(0)); // However quick the computer is.
    int shown = 0;
    QList<int> values;
    services.coreData.viewContext();
    QTimer watch;
    connect(&watch, &QTimer::timeout, this, [&] {
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            const auto *dialog = qobject_cast<QProgressDialog *>(widget);
            if (!dialog || !dialog->isVisible())
                continue;
            ++shown;
            values.append(dialog->value());
            QCOMPARE(dialog->maximum(), 25'000);
            QVERIFY(dialog->labelText().contains(u"flags"));
        }
    });
    watch.start(10);
    delegate.applicationDidFinishLaunching();
    QVERIFY(shown > 0);
    QVERIFY(std::is_sorted(values.begin(), values.end()));
    for (QWidget *widget : QApplication::topLevelWidgets())
        QVERIFY(!qobject_cast<QProgressDialog *>(widget));
}

void tst_Launch::tagsThatCannotBeSavedAreToldOf()
{
    writeFlags(journal(), {2, 2});
    {
        ProgramInProcess program(journal(), [](FaultVfs &disk) {
            disk.failAt(1, FaultVfs::Fault::DiskFull, FaultVfs::Lasting::ForGood);
        });
        QCOMPARE(program.run([] {}, {AlertReader::press(0)}), ProgramInProcess::goesOn);
        QCOMPARE(program.alerts->messages,
                 QStringList{
                     u"The flags of your meetings are tags now, but this could not be saved."_s});
        QVERIFY2(program.alerts->informativeTexts.first().startsWith(u"The disk is full"),
                 qPrintable(program.alerts->informativeTexts.first()));
        // As for any save that failed, the window goes on saying so, and the next one may succeed.
        QVERIFY(program.services.coreData.isSaveFailing());
        QVERIFY(program.hasChanges());
        program.disk.failNothing();
        program.services.coreData.handleTimer();
        QVERIFY(!program.services.coreData.isSaveFailing());
    }
    QCOMPARE(describedMeetings(journal()), (QStringList{u"0: Flag 2 🚩"_s, u"0: Flag 2 🚩"_s}));
}

void tst_Launch::settingsCountBeforeAnythingIsPainted()
{
    const auto folder = DataFolder::forOptions({.dataDirectory = journal()});
    ProgramServices services(*folder);
    AppDelegate delegate(services, *folder);
    const FirstPaint paint([&] { return services.defaults.counterpartStalenessInterval(); });
    delegate.applicationDidFinishLaunching();
    QVERIFY(QTest::qWaitForWindowExposed(delegate.window()));
    QTRY_VERIFY(paint.seen.has_value());
    QCOMPARE(*paint.seen, 14);
}

void tst_Launch::overdueTeammates_data()
{
    QTest::addColumn<double>("daysAgo");
    QTest::addColumn<int>("interval"); // 0: none was ever chosen.
    QTest::addColumn<bool>("isOverdue");
    QTest::newRow("within the usual time") << 14.5 << 0 << false;
    QTest::newRow("beyond the usual time") << 15.5 << 0 << true;
    QTest::newRow("within the user's time") << 15.5 << 20 << false;
    QTest::newRow("beyond the user's time") << 14.5 << 3 << true;
}

/// What the program shows first of all.
void tst_Launch::overdueTeammates()
{
    QFETCH(double, daysAgo);
    QFETCH(int, interval);
    QFETCH(bool, isOverdue);
    withJournal(journal(), [&](ManagedObjectContext &context) {
        const auto teammate = context.insert<Counterpart>();
        teammate->setName(u"Ana"_s);
        addMeeting(context, teammate, daysAgo);
        QVERIFY(context.save().has_value());
    });
    if (interval != 0)
        QSettings(journal() + u"/settings.ini"_s, QSettings::IniFormat)
            .setValue(u"counterpartStalenessIntervalKey"_s, interval);
    const QString pictures = m_account->path(u"pictures"_s);
    RunningProgram program(*m_account, {u"--data-dir"_s, journal(), u"--screenshots"_s, pictures});
    QCOMPARE(program.waitForEnd(), 0);
    const QImage picture(pictures + u"/main-window-light.png"_s);
    QVERIFY(!picture.isNull());
    // The warning sign is the only thing yellow in the list.
    QCOMPARE(holdsYellow(picture, QRect(0, 60, 300, 400)), isOverdue);
}

/// A migration lets events through, and the window is not there yet.
void tst_Launch::whatIsAskedForBeforeTheWindowIsDoneWithIt()
{
    writeFlags(journal(), {1});
    const auto folder = DataFolder::forOptions({.dataDirectory = journal()});
    ProgramServices services(*folder);
    AppDelegate delegate(services, *folder);
    delegate.openFiles({u"/nowhere.tembrabackup"_s});
    delegate.terminate();
    delegate.applicationDidFinishLaunching();
    AlertReader alerts({}, nullptr);
    QTimer::singleShot(10'000, qApp, [] { QCoreApplication::exit(99); });
    QCOMPARE(QCoreApplication::exec(), 0);
}

void tst_Launch::theSearchPlaceholderIsReadable_data()
{
    QTest::addColumn<QColor>("base");
    QTest::addColumn<QColor>("text");
    QTest::addColumn<QColor>("placeholder"); // As a theme gives it.
    QTest::newRow("dark") << QColor(0x1d1e20) << QColor(0xe6e7e9) << QColor(0, 0, 0, 128);
    QTest::newRow("light") << QColor(Qt::white) << QColor(0x222326) << QColor(0xf0f0f0);
    QTest::newRow("black") << QColor(Qt::black) << QColor(Qt::white) << QColor(Qt::black);
}

void tst_Launch::theSearchPlaceholderIsReadable()
{
    QFETCH(QColor, base);
    QFETCH(QColor, text);
    QFETCH(QColor, placeholder);
    const QPalette usual = QApplication::palette();
    ProgramInProcess program(journal());
    QPalette palette(base, base);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::PlaceholderText, placeholder);
    QApplication::setPalette(palette); // While it runs, as when the desktop turns dark.
    int fields = 0;
    for (const QWidget *field : program.window->findChildren<QWidget *>()) {
        if (field->objectName() != u"searchField" && field->objectName() != u"tagFilterField")
            continue;
        ++fields;
        QTRY_COMPARE(field->palette().color(QPalette::Text), text);
        for (const auto group : {QPalette::Active, QPalette::Inactive}) {
            const double contrast = theme::contrast(
                field->palette().color(group, QPalette::PlaceholderText), base);
            QVERIFY2(contrast >= theme::readableContrast, qPrintable(QString::number(contrast)));
        }
    }
    QCOMPARE(fields, 2);
    QApplication::setPalette(usual);
}

void tst_Launch::theSearchPlaceholderShowsEmojiInColour()
{
    ProgramInProcess program(journal());
    program.addTeammate(u"❤\uFE0F"_s);
    program.services.coreData.viewContext().processPendingChanges();
    program.delegate->counterpartsViewController()->counterpartsArrayController().setSelectionIndex(
        0);
    auto *field = program.find<QLineEdit>(u"searchField"_s);
    QTRY_VERIFY(field->placeholderText().contains(u'❤'));
    // What breaks emoji apart in a plain field is left out.
    QVERIFY(!field->placeholderText().contains(QChar(0xFE0F)));
    const QImage picture = field->grab().toImage();
    int red = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QColor color = picture.pixelColor(x, y);
            red += color.red() > 150 && color.green() < 100 && color.blue() < 100;
        }
    }
    QVERIFY2(red > 20, qPrintable(QString::number(red)));
}

QTEST_MAIN(tst_Launch)
#include "tst_Launch.moc"
