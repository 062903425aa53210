#include "PackageDialogTest.h"

#include <QAccessible>
#include <QElapsedTimer>

using namespace tembra;
using namespace Qt::StringLiterals;

/// What the panels show, and what their callers get.
class tst_PackageDialog : public QObject, protected PackageDialogTest
{
    Q_OBJECT

private Q_SLOTS:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    void foldersAndPackagesAreListed()
    {
        open();
        QCOMPARE(m_dialog->windowTitle(), u"Choose"_s);
        QTRY_COMPARE(listed(), (QStringList{u"Plain"_s, u"file.box"_s, u"Monday.box"_s,
                                            u"two words.box"_s, longName(), u"קופסה.box"_s}));
        QVERIFY(chosen().isEmpty());
    }

    void everyControlHasAName()
    {
        open();
        for (const QWidget *control : m_dialog->findChildren<QWidget *>()) {
            if (control->focusPolicy() == Qt::NoFocus || !control->isVisible()
                || control->objectName().startsWith(u"qt_"_s))
                continue;
            const QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(
                const_cast<QWidget *>(control));
            QVERIFY2(!accessible->text(QAccessible::Name).isEmpty(),
                     qPrintable(control->objectName()));
        }
        QCOMPARE(m_dialog->objectName(), u"packageDialog"_s);
    }

    void whereItStarts_data()
    {
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("shown"); // Empty for the home folder.
        QTest::newRow("folder") << u"/Plain"_s << u"/Plain"_s;
        QTest::newRow("package") << u"/Plain/Tuesday.box"_s << u"/Plain"_s;
        QTest::newRow("in a package") << u"/Plain/Tuesday.box/inner"_s << u"/Plain"_s;
        QTest::newRow("nowhere") << u"/none/at/all"_s << QString();
    }

    void whereItStarts()
    {
        QFETCH(QString, start);
        QFETCH(QString, shown);
        const QString expected = shown.isEmpty() ? QDir::homePath() : m_folder->path() + shown;
        show(Panel::Open, m_folder->path() + start);
        QCOMPARE(m_dialog->directory().absolutePath(), expected);
        show(Panel::Save, m_folder->path() + start + u"/Sunday.box"_s);
        QCOMPARE(m_dialog->directory().absolutePath(), expected);
        QCOMPARE(nameEdit()->text(), u"Sunday.box"_s);
    }

    void thousandsOfPackagesAreListedSoon()
    {
        for (int i = 0; i < 2000; ++i)
            m_folder->addFolder(u"Many/Box %1.box"_s.arg(i));
        QElapsedTimer time;
        time.start();
        show(Panel::Open, m_folder->path(u"Many"_s), {});
        QTRY_COMPARE_WITH_TIMEOUT(listed().size(), 2000, 20000);
        qInfo("2000 packages were listed after %lld ms", time.elapsed());
        QCOMPARE(listed().at(10), u"Box 10.box"_s);
        view()->setFocus();
        QTest::keyClick(view(), Qt::Key_End);
        QCOMPARE(nameEdit()->text(), u"Box 1999.box"_s);
        QTest::keyClick(view(), Qt::Key_Return);
        QCOMPARE(chosen(), m_folder->path(u"Many/Box 1999.box"_s));
    }

    void callersGetThePath()
    {
        answer([this](PackageDialog *dialog) {
            QTest::keyClicks(dialog->findChild<QLineEdit *>(u"fileNameEdit"_s), u"Monday"_s);
            QTest::mouseClick(acceptButton(dialog), Qt::LeftButton);
        });
        QCOMPARE(PackageDialog::getOpenPackage(nullptr, u"Choose"_s, m_folder->type,
                                               m_folder->path()),
                 std::optional(m_folder->path(u"Monday.box"_s)));
        answer(
            [](PackageDialog *dialog) { QTest::mouseClick(acceptButton(dialog), Qt::LeftButton); });
        QCOMPARE(PackageDialog::getSavePackage(nullptr, u"Save"_s, m_folder->type,
                                               m_folder->path(u"Sunday"_s)),
                 std::optional(m_folder->path(u"Sunday.box"_s)));
    }

    void callersGetNothingWhenItWasCancelled()
    {
        answer([](PackageDialog *dialog) { dialog->reject(); });
        QCOMPARE(PackageDialog::getOpenPackage(nullptr, u"Choose"_s, m_folder->type,
                                               m_folder->path()),
                 std::optional<QString>());
    }

    void callersGetNothingWhenTheWindowGoes()
    {
        auto *window = new QWidget;
        window->show();
        answer([window](PackageDialog *) { delete window; });
        QCOMPARE(PackageDialog::getSavePackage(window, u"Save"_s, m_folder->type,
                                               m_folder->path(u"Sunday"_s)),
                 std::optional<QString>());
    }
};

QTEST_MAIN(tst_PackageDialog)
#include "tst_PackageDialog.moc"
