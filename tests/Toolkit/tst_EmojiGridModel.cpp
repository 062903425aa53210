#include "Toolkit/Emoji/EmojiGridModel.h"

#include "Toolkit/Emoji/EmojiCatalogue.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class TestEmojiGridModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void laysSectionsOut()
    {
        EmojiGridModel model(4);
        const QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
        model.setSections(sections());
        QCOMPARE(resets.count(), 1);
        QStringList rows;
        for (int row = 0; row < model.rowCount(); ++row) {
            QStringList cells;
            for (int column = 0; column < model.columnCount(); ++column)
                cells.append(model.index(row, column).data().toString());
            rows.append(cells.join(u' ').trimmed());
        }
        QCOMPARE(rows, QStringList({u"A"_s, u"0 1 2 3"_s, u"4"_s, u"B"_s, u"5 6"_s, u"7 8 9 10"_s,
                                    u"11"_s}));
        QCOMPARE(model.firstRow(0), 0);
        QCOMPARE(model.firstRow(1), 3);
        QCOMPARE(model.firstRow(2), 5);
        QCOMPARE(model.firstRow(3), -1);
        QCOMPARE(model.firstOf(1).data().toString(), u"5"_s);
        QCOMPARE(model.firstOf(2).data().toString(), u"7"_s);
        QVERIFY(!model.firstOf(3).isValid());
        QCOMPARE(model.sectionAt(2), 0);
        QCOMPARE(model.sectionAt(3), 1);
        QCOMPARE(model.sectionAt(7), -1);
        QCOMPARE(model.sectionAt(-1), -1);
        QVERIFY(model.isHeading(3));
        QVERIFY(!model.isHeading(4));
    }

    void tellsAboutAnEmoji()
    {
        EmojiGridModel model(4);
        model.setSections(sections());
        const QModelIndex emoji = model.index(1, 1);
        QCOMPARE(emoji.data().toString(), u"1"_s);
        QCOMPARE(emoji.data(EmojiGridModel::EmojiRole).toString(), u"1\uFE0F"_s);
        QCOMPARE(emoji.data(Qt::AccessibleTextRole).toString(), u"number 1"_s);
        QCOMPARE(emoji.data(Qt::ToolTipRole).toString(), u"number 1"_s);
        QCOMPARE(emoji.data(EmojiGridModel::HasSkinTonesRole).toBool(), true);
        QCOMPARE(model.index(1, 2).data(EmojiGridModel::HasSkinTonesRole).toBool(), false);
        model.setOffersSkinTones(false);
        QCOMPARE(emoji.data(EmojiGridModel::HasSkinTonesRole).toBool(), false);
        QCOMPARE(model.index(0, 0).data(Qt::AccessibleTextRole).toString(), u"A"_s);
    }

    void headingsAndEmptyCellsCannotBeChosen()
    {
        EmojiGridModel model(4);
        model.setSections(sections());
        QVERIFY(model.index(1, 3).flags() & Qt::ItemIsEnabled);
        QVERIFY(!(model.index(0, 0).flags() & Qt::ItemIsEnabled));
        QVERIFY(!(model.index(2, 1).flags() & Qt::ItemIsEnabled));
        QCOMPARE(model.entry(model.index(0, 0)), nullptr);
        QCOMPARE(model.entry(model.index(2, 1)), nullptr);
        QCOMPARE(model.entry({}), nullptr);
        QCOMPARE(model.index(2, 1).data(), QVariant());
    }

    void moves_data()
    {
        QTest::addColumn<QPoint>("from");
        QTest::addColumn<bool>("isAlong");
        QTest::addColumn<int>("steps");
        QTest::addColumn<QString>("reached");
        const auto add = [](const char *name, QPoint from, bool isAlong, int steps,
                            const char *to) {
            QTest::newRow(name) << from << isAlong << steps << QString::fromLatin1(to);
        };
        add("to the next", {0, 1}, true, 1, "1");
        add("over the end of a row", {3, 1}, true, 1, "4");
        add("over the end of a section", {0, 2}, true, 1, "5");
        add("back over a heading", {0, 4}, true, -1, "4");
        add("back over the beginning of a row", {0, 2}, true, -1, "3");
        add("several", {0, 1}, true, 6, "6");
        add("several back", {0, 6}, true, -11, "0");
        add("before the first", {0, 1}, true, -1, "0");
        add("behind the last", {0, 6}, true, 3, "11");
        add("down into a shorter row", {2, 1}, false, 1, "4");
        add("down over a heading", {0, 2}, false, 1, "5");
        add("down into a row that is long enough", {1, 4}, false, 1, "8");
        add("up over a heading", {1, 4}, false, -1, "4");
        add("up from the first row", {2, 1}, false, -1, "2");
        add("down from the last row", {0, 6}, false, 1, "11");
        add("a page down", {3, 1}, false, 3, "10");
        add("beyond the end", {3, 1}, false, 20, "11");
        add("beyond the beginning", {0, 6}, false, -20, "0");
        add("from a heading", {0, 3}, false, 0, "0");
        add("from an empty cell", {2, 2}, true, 1, "0");
    }

    void moves()
    {
        QFETCH(QPoint, from);
        QFETCH(bool, isAlong);
        QFETCH(int, steps);
        QFETCH(QString, reached);
        EmojiGridModel model(4);
        model.setSections(sections());
        const QModelIndex start = model.index(from.y(), from.x());
        const QModelIndex target = isAlong ? model.along(start, steps) : model.across(start, steps);
        QCOMPARE(target.data().toString(), reached);
    }

    void anEmptyModelHasNothing()
    {
        EmojiGridModel model(4);
        QVERIFY(!model.first().isValid());
        QVERIFY(!model.last().isValid());
        QVERIFY(!model.along({}, 1).isValid());
        QVERIFY(!model.across({}, -1).isValid());
        model.setSections(sections());
        QCOMPARE(model.first().data().toString(), u"0"_s);
        QCOMPARE(model.last().data().toString(), u"11"_s);
        model.setSections({});
        QCOMPARE(model.rowCount(), 0);
        QVERIFY(!model.first().isValid());
    }

    void aSectionWithoutEmojiHasItsHeadingOnly()
    {
        EmojiGridModel model(4);
        model.setSections({{u"A"_s, {}}, {QString(), {}}, {u"B"_s, entries(0, 1)}});
        QCOMPARE(model.rowCount(), 3);
        QCOMPARE(model.firstRow(1), -1);
        QCOMPARE(model.first(), model.index(2, 0));
    }

    void isWellBehaved()
    {
        EmojiGridModel model(4);
        const QAbstractItemModelTester tester(
            &model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setSections(sections());
        model.setSections({{QString(), entries(0, 9)}});
        model.setSections({});
        model.setSections(sections());
        QCOMPARE(model.rowCount(), 7);
    }

private:
    QList<const EmojiEntry *> entries(int first, int count) const
    {
        QList<const EmojiEntry *> result;
        for (int i = first; i < first + count; ++i)
            result.append(&m_emoji.at(size_t(i)));
        return result;
    }

    /// A 0 1 2 3 / 4; B 5 6; without a title 7 8 9 10 / 11, in rows of four.
    QList<EmojiSection> sections() const
    {
        return {{u"A"_s, entries(0, 5)}, {u"B"_s, entries(5, 2)}, {QString(), entries(7, 5)}};
    }

    std::vector<EmojiEntry> m_emoji = [] {
        std::vector<EmojiEntry> emoji;
        for (int i = 0; i < 12; ++i)
            emoji.push_back({.text = QString::number(i) + QChar(0xFE0F),
                             .name = u"number %1"_s.arg(i),
                             .keywords = {},
                             .skinTones = {}});
        emoji.at(1).skinTones.push_back(emoji.at(0));
        return emoji;
    }();
};

QTEST_MAIN(TestEmojiGridModel)
#include "tst_EmojiGridModel.moc"
