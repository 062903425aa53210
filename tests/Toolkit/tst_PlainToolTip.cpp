#include "Toolkit/PlainToolTip.h"

#include "PackageFolder.h"
#include "support/Canary.h"
#include "support/MouseRest.h"
#include "Toolkit/Emoji/EmojiLabel.h"
#include "Toolkit/Package/PackageDialog.h"
#include "Toolkit/PlainLabel.h"

#include <QComboBox>
#include <QListView>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_PlainToolTip : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QToolTip::hideText(); }

    void theCanaryNoticesMarkup();
    void theTextIsReadAsItIs_data();
    void theTextIsReadAsItIs();
    void aShortTextStaysAsItIs();
    void aLongTextIsWrappedAndAbbreviated();
    void aWidgetsToolTipOpensNoFile();
    void labelsOpenNoFile();
    void packageDialogsOpenNoFile_data();
    void packageDialogsOpenNoFile();
};

void tst_PlainToolTip::theCanaryNoticesMarkup()
{
    Canary canary;
    QVERIFY(!canary.wasOpened());
    QWidget window;
    window.resize(100, 100);
    window.setToolTip(Canary::markup());
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QHelpEvent rest(QEvent::ToolTip, {5, 5}, window.mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(&window, &rest);
    QTRY_VERIFY(canary.wasOpened());
}

void tst_PlainToolTip::theTextIsReadAsItIs_data()
{
    QTest::addColumn<QString>("text");
    for (const QString &text :
         {u"Ana"_s, Canary::markup(), u"Ana\n<b>Silva</b>"_s, u"<b>Ana</b>\nSilva"_s, u"\n<b>Ana"_s,
          u"a <b> c"_s, u"1 < 2 & 3 > 2"_s, u"&lt;b&gt;"_s, u"<!doctype html>x"_s,
          u"<?xml?><b>x</b>"_s, u"  <b>x"_s, u"<B/>"_s})
        QTest::newRow(qUtf8Printable(text)) << text;
}

void tst_PlainToolTip::theTextIsReadAsItIs()
{
    QFETCH(QString, text);
    QCOMPARE(readText(plainToolTip(text)).simplified(), text.simplified());
    QCOMPARE(readText(plainToolTip(text)).trimmed().count(u'\n'), text.trimmed().count(u'\n'));
}

void tst_PlainToolTip::aShortTextStaysAsItIs()
{
    QCOMPARE(plainToolTip(u"Ana\nTeam <3"_s), u"Ana\nTeam <3"_s);
    QVERIFY(plainToolTip({}).isEmpty());
}

void tst_PlainToolTip::aLongTextIsWrappedAndAbbreviated()
{
    const QString wrapped = plainToolTip(u"word "_s.repeated(60));
    QVERIFY(Qt::mightBeRichText(wrapped)); // Qt wraps no other tooltip.
    QCOMPARE(readText(wrapped).simplified(), u"word "_s.repeated(60).trimmed());
    const QString huge = readText(plainToolTip(QString(50'000'000, u'x')));
    QVERIFY(huge.size() < 3000);
    QVERIFY(huge.endsWith(u'…'));
}

void tst_PlainToolTip::aWidgetsToolTipOpensNoFile()
{
    Canary canary;
    QWidget window;
    QWidget part(&window);
    window.resize(100, 100);
    part.resize(100, 100);
    setPlainToolTip(&part, Canary::markup());
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const QSet<QString> shown = toolTipsOf(&window);
    QCOMPARE(shown.size(), 1);
    QCOMPARE(readText(*shown.begin()), Canary::markup());
    QVERIFY(!canary.wasOpened());
}

void tst_PlainToolTip::labelsOpenNoFile()
{
    Canary canary;
    QWidget window;
    window.resize(200, 100);
    PlainLabel plain(Canary::markup(), &window);
    EmojiLabel elided(Canary::markup(), &window);
    elided.setGeometry(0, 50, 60, 30);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const QSet<QString> shown = toolTipsOf(&window);
    QCOMPARE(shown.size(), 1);
    QCOMPARE(readText(*shown.begin()), Canary::markup());
    window.grab();
    QVERIFY(!canary.wasOpened());
}

void tst_PlainToolTip::packageDialogsOpenNoFile_data()
{
    QTest::addColumn<QFileDialog::ViewMode>("mode");
    QTest::newRow("list") << QFileDialog::List;
    QTest::newRow("table") << QFileDialog::Detail;
}

void tst_PlainToolTip::packageDialogsOpenNoFile()
{
    QFETCH(QFileDialog::ViewMode, mode);
    Canary canary;
    PackageFolder folder;
    folder.addFolder(Canary::markup());
    folder.addPackage(Canary::markup() + u'/' + Canary::markup() + u".box"_s);
    PackageDialog dialog(PackageDialog::Panel::Open, folder.type, u"Choose"_s,
                         folder.path(Canary::markup()));
    dialog.setViewMode(mode);
    dialog.setSidebarUrls({QUrl::fromLocalFile(folder.path(Canary::markup()))});
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    auto *view = dialog.findChild<QAbstractItemView *>(mode == QFileDialog::List ? u"listView"_s
                                                                                 : u"treeView"_s);
    QTRY_COMPARE(view->model()->rowCount(view->rootIndex()), 1);
    QTRY_VERIFY(toolTipsOf(&dialog).size() >= 2);
    int withMarkup = 0;
    for (const QString &toolTip : toolTipsOf(&dialog))
        withMarkup += readText(toolTip).contains(Canary::markup());
    QVERIFY2(withMarkup >= 2, "The package and the folder in the side bar");
    auto *lookIn = dialog.findChild<QComboBox *>(u"lookInCombo"_s);
    lookIn->showPopup();
    QTRY_VERIFY(lookIn->view()->isVisible());
    toolTipsOf(lookIn->view()->window());
    lookIn->hidePopup();
    QVERIFY(!canary.wasOpened());
}

QTEST_MAIN(tst_PlainToolTip)
#include "tst_PlainToolTip.moc"
