#include "MainWindow/WindowState.h"

#include <QFile>
#include <QLabel>
#include <QScreen>
#include <QSplitter>
#include <QTemporaryDir>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

constexpr QSize defaultSize(700, 500);

void showAndWait(QWidget &window)
{
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    // The window manager may still move and size what it was given.
    QTest::qWait(50);
}

bool isWholeOnScreen(const QWidget &window)
{
    return window.screen()->availableGeometry().contains(window.frameGeometry());
}

} // namespace

class tst_WindowState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutRecordTheWindowHasItsDefaultSize()
    {
        QWidget window;
        WindowState(path()).restoreWindow(u"w"_s, window, defaultSize);
        QCOMPARE(window.size(), defaultSize);
    }

    void aDefaultLargerThanTheScreenIsCut()
    {
        QWidget window;
        window.setMinimumSize(9000, 100);
        WindowState(path()).restoreWindow(u"w"_s, window, QSize(9000, 9000));
        showAndWait(window);
        QVERIFY(window.width() <= window.screen()->availableSize().width());
        QVERIFY(window.height() <= window.screen()->availableSize().height());
    }

    void theWindowComesBackWhereItWas()
    {
        QRect stood;
        {
            QWidget window;
            window.setGeometry(200, 150, 640, 480);
            showAndWait(window);
            stood = window.geometry();
            WindowState(path()).saveWindow(u"w"_s, window);
        }
        QWidget window;
        WindowState(path()).restoreWindow(u"w"_s, window, defaultSize);
        showAndWait(window);
        QCOMPARE(window.geometry(), stood);
    }

    void aMaximisedWindowComesBackMaximised()
    {
        {
            QWidget window;
            window.resize(500, 400);
            window.showMaximized();
            QVERIFY(QTest::qWaitForWindowActive(&window));
            QTRY_VERIFY(window.isMaximized());
            WindowState(path()).saveWindow(u"w"_s, window);
        }
        QWidget window;
        WindowState(path()).restoreWindow(u"w"_s, window, defaultSize);
        QVERIFY(window.isMaximized());
    }

    void aWindowOffTheScreenComesBackOntoIt_data()
    {
        QTest::addColumn<QRect>("place");
        QTest::newRow("left of it") << QRect(-5000, 100, 500, 400);
        QTest::newRow("above it") << QRect(100, -3000, 500, 400);
        QTest::newRow("right of it") << QRect(9000, 100, 500, 400);
        QTest::newRow("below it") << QRect(100, 9000, 500, 400);
        QTest::newRow("half out of it") << QRect(1400, 800, 600, 500);
        QTest::newRow("larger than it") << QRect(0, 0, 5000, 4000);
    }

    void aWindowOffTheScreenComesBackOntoIt()
    {
        QFETCH(const QRect, place);
        {
            QWidget window;
            window.setGeometry(place);
            WindowState(path()).saveWindow(u"w"_s, window);
        }
        QWidget window;
        WindowState(path()).restoreWindow(u"w"_s, window, defaultSize);
        showAndWait(window);
        QVERIFY2(isWholeOnScreen(window), qPrintable(QDebug::toString(window.frameGeometry())));
    }

    void theSplitComesBack()
    {
        {
            QSplitter splitter;
            fill(splitter);
            splitter.setSizes({250, 450});
            WindowState(path()).saveSplit(u"w"_s, splitter);
        }
        QSplitter splitter;
        fill(splitter);
        WindowState(path()).restoreSplit(u"w"_s, splitter, {100, 600});
        showAndWait(splitter);
        QVERIFY(qAbs(splitter.sizes().first() - 250) <= 4);
    }

    void anUnreadableRecordIsNoRecord_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("empty file") << QByteArray();
        QTest::newRow("no settings at all") << QByteArray("\x00\x01\xff[[[\n==", 9);
        QTest::newRow("words") << QByteArray("[w]\ngeometry=here\nsplit=a, b\n");
        QTest::newRow("cut short") << QByteArray("[w]\ngeometry=10, 20, 300\nsplit=1\n");
        QTest::newRow("no size") << QByteArray("[w]\ngeometry=10, 20, 0, -4\nsplit=-5, 0\n");
        QTest::newRow("too many parts") << QByteArray("[w]\nsplit=100, 100, 100\n");
    }

    void anUnreadableRecordIsNoRecord()
    {
        QFETCH(const QByteArray, content);
        QFile file(path());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();

        QSplitter splitter;
        fill(splitter);
        const WindowState state(path());
        state.restoreWindow(u"w"_s, splitter, defaultSize);
        state.restoreSplit(u"w"_s, splitter, {200, 500});
        QCOMPARE(splitter.size(), defaultSize);
        showAndWait(splitter);
        QVERIFY(qAbs(splitter.sizes().first() - 200) <= 4);
    }

    void windowsAreKeptApartByName()
    {
        QWidget first;
        first.setGeometry(10, 40, 300, 200);
        WindowState(path()).saveWindow(u"first"_s, first);
        QWidget second;
        WindowState(path()).restoreWindow(u"second"_s, second, defaultSize);
        QCOMPARE(second.size(), defaultSize);
    }

    void init() { m_directory = std::make_unique<QTemporaryDir>(); }

private:
    QString path() const { return m_directory->filePath(u"window-state.ini"_s); }

    static void fill(QSplitter &splitter)
    {
        splitter.setHandleWidth(1);
        splitter.addWidget(new QLabel(u"a"_s));
        splitter.addWidget(new QLabel(u"b"_s));
        splitter.resize(defaultSize);
    }

    std::unique_ptr<QTemporaryDir> m_directory;
};

QTEST_MAIN(tst_WindowState)
#include "tst_WindowState.moc"
