#include "Tags/RecentTagsArrayController.h"

#include "Tags/TagListViewModel.h"

#include <QAbstractItemModelTester>
#include <QAccessible>
#include <QListView>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

/// Two recent tags in a list; the meeting has the second one.
class tst_RecentTagsArrayController : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_rows = std::make_unique<RecentTagsArrayController>();
        new QAbstractItemModelTester(m_rows.get(), m_rows.get());
        ArrayController::ObjectList rows;
        for (const QString &title : {u"Planning 🗓"_s, u"Launch 🚀"_s}) {
            const auto row = std::make_shared<TagListViewModel>();
            row->setTitle(title);
            rows.append(row);
        }
        std::static_pointer_cast<TagListViewModel>(rows.last())->setEnabled(false);
        m_rows->setContent(rows);
    }

    void aRowTellsItsShortcut()
    {
        QCOMPARE(told(0, QAccessible::Name), u"Planning 🗓"_s);
        QCOMPARE(told(0, QAccessible::Description), u"Alt+Ctrl+1"_s);
    }

    void aTagOfTheMeetingIsDisabled()
    {
        QCOMPARE(told(1, QAccessible::Name), u"Launch 🚀"_s);
        QCOMPARE(told(1, QAccessible::Description), u"Alt+Ctrl+2, already on this meeting"_s);
        // Qt 6.4 has no state for it, and tells of what can be selected instead.
        QVERIFY(state(0).selectable);
        QVERIFY(!state(1).selectable);
        QVERIFY(!(m_rows->flags(m_rows->index(1, 0)) & Qt::ItemIsEnabled));
    }

private:
    QAccessibleInterface *cell(QListView &view, int row)
    {
        view.setModel(m_rows.get());
        view.show();
        return QAccessible::queryAccessibleInterface(&view)->child(row);
    }
    QString told(int row, QAccessible::Text text)
    {
        QListView view;
        return cell(view, row)->text(text);
    }
    QAccessible::State state(int row)
    {
        QListView view;
        return cell(view, row)->state();
    }

    std::unique_ptr<RecentTagsArrayController> m_rows;
};

QTEST_MAIN(tst_RecentTagsArrayController)
#include "tst_RecentTagsArrayController.moc"
