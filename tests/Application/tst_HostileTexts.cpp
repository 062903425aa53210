#include "MainWindow/StatusLine.h"
#include "MeetingWindowsTest.h"
#include "support/Canary.h"
#include "support/MouseRest.h"
#include "Toolkit/Alert.h"

#include <QAccessible>

#include <ctime>

using namespace tembra;
using namespace Qt::StringLiterals;

/// Names, tags and notes that look like markup, have line breaks, or have no end, in every window.
class tst_HostileTexts : public MeetingWindowsTest
{
    Q_OBJECT

private Q_SLOTS:
    void noTextOpensAFile();
    void aNameWithLineBreaksIsShownInOneLine();
    void aHugeNameCostsNoMoreThanALongOne_data();
    void aHugeNameCostsNoMoreThanALongOne();

private:
    void nameAll(const QString &text);
    QList<QWidget *> openAll();
    /// What an accessibility tool is told, of a whole window.
    static QString toldTexts(QAccessibleInterface *part);
};

void tst_HostileTexts::nameAll(const QString &text)
{
    m_ana->setName(text);
    addTag(m_meeting, text, u"🏷"_s);
    m_meeting->sortedNotes().first()->setContentString(text.left(100));
    settle();
}

QList<QWidget *> tst_HostileTexts::openAll()
{
    QWidget *main = m_program->window;
    QWidget *meeting = open(m_meeting);
    browser().show();
    browser().tagsArrayController->setSelectionIndex(0);
    for (QWidget *window : {main, meeting, static_cast<QWidget *>(&browser())}) {
        if (!QTest::qWaitForWindowExposed(window))
            qFatal("A window does not come");
    }
    return {main, meeting, &browser()};
}

QString tst_HostileTexts::toldTexts(QAccessibleInterface *part)
{
    if (!part)
        return {};
    QString told;
    for (const auto text : {QAccessible::Name, QAccessible::Description, QAccessible::Value})
        told += part->text(text) + u'\n';
    for (int i = 0; i < part->childCount(); ++i)
        told += toldTexts(part->child(i));
    return told;
}

void tst_HostileTexts::noTextOpensAFile()
{
    Canary canary;
    const QString text = Canary::markup() + u" who has a name that is far too long for a list"_s
                         + u" and for a meeting"_s.repeated(10);
    nameAll(text);
    auto *status = m_program->window->findChild<StatusLine *>();
    QVERIFY(status);
    const QList<QWidget *> windows = openAll();
    status->showMessage(text);
    for (QWidget *window : windows) {
        const QSet<QString> shown = toolTipsOf(window);
        int withMarkup = 0;
        for (const QString &toolTip : shown)
            withMarkup += readText(toolTip).contains(Canary::markup());
        QVERIFY2(withMarkup > 0, qUtf8Printable(window->objectName()));
        window->grab();
        for (QWidget *part : window->findChildren<QWidget *>()) {
            QVERIFY2(!Qt::mightBeRichText(part->whatsThis()), qUtf8Printable(part->objectName()));
            QVERIFY2(!Qt::mightBeRichText(part->statusTip()), qUtf8Printable(part->objectName()));
        }
        QVERIFY2(!canary.wasOpened(), qUtf8Printable(window->objectName()));
    }
    // The completions of what is typed, and an alert.
    TagField *field = filterField();
    focus(field);
    QTest::keyClicks(field, u"<img"_s);
    for (QWidget *window : QApplication::topLevelWidgets()) {
        if (window->isVisible())
            toolTipsOf(window);
    }
    Alert *alert = Alert::beginSheet({.messageText = text,
                                      .informativeText = text,
                                      .buttons = {text.left(30)}},
                                     m_program->window, [](int) {});
    toolTipsOf(alert);
    alert->grab();
    alert->reject();
    QVERIFY(!canary.wasOpened());
}

void tst_HostileTexts::aNameWithLineBreaksIsShownInOneLine()
{
    nameAll(u"Ana\r\nMaria\tSilva\u2028Costa"_s);
    const QList<QWidget *> windows = openAll();
    const QString line = u"Ana Maria Silva Costa"_s;
    QVERIFY(windows.at(1)->windowTitle().startsWith(line));
    QCOMPARE(pane().findChild<QLabel *>(u"counterpartNameLabel"_s)->text(), line);
    QVERIFY(pane().findChild<QLabel *>(u"daysSinceLastMeetingLabel"_s)->text().contains(line));
    for (QWidget *window : windows) {
        const QString told = toldTexts(QAccessible::queryAccessibleInterface(window));
        QVERIFY2(told.contains(line), qUtf8Printable(window->objectName()));
    }
    QCOMPARE(m_ana->name(), u"Ana\r\nMaria\tSilva\u2028Costa"_s);
}

void tst_HostileTexts::aHugeNameCostsNoMoreThanALongOne_data()
{
    QTest::addColumn<QString>("part");
    QTest::newRow("letters") << u"x"_s;
    QTest::newRow("words") << u"many words "_s;
    QTest::newRow("emoji") << u"🎯"_s;
    QTest::newRow("Hebrew") << u"א"_s;
}

void tst_HostileTexts::aHugeNameCostsNoMoreThanALongOne()
{
    QFETCH(QString, part);
    constexpr qsizetype huge = 25'000'000; // 50 MB
    nameAll(part.repeated(huge / part.size()));
    // The time of this process alone: others do not count.
    const std::clock_t before = std::clock();
    const QList<QWidget *> windows = openAll();
    for (QWidget *window : windows)
        window->grab();
    const double seconds = double(std::clock() - before) / CLOCKS_PER_SEC;
    qInfo("%.1f s", seconds);
    for (QWidget *window : windows) {
        const QString told = toldTexts(QAccessible::queryAccessibleInterface(window));
        QVERIFY2(told.size() < 200'000, qUtf8Printable(window->objectName()));
        QVERIFY(window->windowTitle().size() < 2000);
    }
    QVERIFY2(seconds < 5, "Measured at length it took a minute");
}

QTEST_MAIN(tst_HostileTexts)
#include "tst_HostileTexts.moc"
