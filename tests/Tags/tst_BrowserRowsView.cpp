#include "Tags/BrowserRowsView.h"

#include <QPaintEvent>
#include <QStandardItemModel>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

/// What of a widget was painted since it was asked last.
class PaintedRegion : public QObject
{
public:
    explicit PaintedRegion(QWidget *widget) { widget->installEventFilter(this); }
    QRegion taken() { return std::exchange(m_region, {}); }

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            m_region += static_cast<QPaintEvent *>(event)->region();
        return false;
    }

private:
    QRegion m_region;
};

} // namespace

class tst_BrowserRowsView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// The frame of the keyboard's row spans all columns, also where nothing was selected.
    void theWholeRowIsPaintedWhenTheKeyboardLeavesIt()
    {
        QStandardItemModel model(3, 3);
        BrowserRowsView view;
        view.setModel(&model);
        view.resize(400, 200);
        view.show();
        view.setFocus();
        QVERIFY(QTest::qWaitForWindowActive(&view));
        QTRY_COMPARE(view.currentRow(), 0);
        QVERIFY(!view.selectionModel()->hasSelection());
        QTest::qWait(50); // What is due already does not count.
        PaintedRegion painted(view.viewport());
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {},
                          view.visualRect(model.index(2, 1)).center());
        QCOMPARE(view.currentRow(), 2);
        QRegion region;
        QRect row = view.visualRect(model.index(0, 0));
        row.setRight(view.viewport()->width() - 1);
        row.setLeft(0);
        QTRY_VERIFY(((region += painted.taken()), QRegion(row).subtracted(region).isEmpty()));
    }
};

QTEST_MAIN(tst_BrowserRowsView)
#include "tst_BrowserRowsView.moc"
