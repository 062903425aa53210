#include "MainWindow/Detail/SummaryViewItem.h"
#include "support/JournalFixture.h"

#include <QImage>
#include <QPainter>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

/// The tile of a meeting: what it says and how it shows its states.
class tst_SessionTiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_journal = std::make_unique<JournalFixture>();
        m_session = m_journal->addSession(m_journal->addCounterpart(u"Ana"_s), utc(2026, 3, 7));
        m_palette = QPalette(Qt::black, Qt::white);
        m_palette.setColor(QPalette::Base, Qt::white);
        m_palette.setColor(QPalette::Highlight, QColor(20, 90, 200));
        m_palette.setColor(QPalette::HighlightedText, Qt::white);
    }

    void cleanup()
    {
        m_session.reset();
        m_journal.reset();
    }

    void itSaysDayRatingsAndTags()
    {
        m_session->setPersonalSentiment(3);
        m_session->setMeetingSentiment(4);
        m_session->setCounterpartSentiment(8);
        m_journal->addTag(m_session, u"Focus"_s, u"🎯"_s);
        m_journal->addTag(m_session, u"Career"_s, u"🚀"_s);
        const SummaryViewItem tile = makeTile();
        QCOMPARE(tile.emojiLabel.text, u"🤩 ⚡️ 🤔"_s);
        QCOMPARE(tile.dateLabel.text, u"03/07"_s);
        QCOMPARE(tile.tagLabel.text, u"🚀🎯"_s);
    }

    void withoutAMeetingItSaysNothing()
    {
        SummaryViewItem tile = makeTile();
        tile.setSession({});
        QVERIFY(tile.emojiLabel.text.isEmpty());
        QVERIFY(tile.dateLabel.text.isEmpty());
        QVERIFY(tile.tagLabel.text.isEmpty());
    }

    void withoutADateOnlyTheDateIsEmpty()
    {
        m_session->setDate({});
        const SummaryViewItem tile = makeTile();
        QVERIFY(tile.dateLabel.text.isEmpty());
        QCOMPARE(tile.emojiLabel.text, u"— — —"_s);
    }

    void aRatingOffItsScaleLeavesItsPlaceEmpty()
    {
        m_session->setPersonalSentiment(9);
        m_session->setMeetingSentiment(7);
        m_session->setCounterpartSentiment(1);
        QCOMPARE(makeTile().emojiLabel.text, u"  🙂"_s);
    }

    void theDateOfASelectedTileIsBoldInTheSelectionsTextColour()
    {
        SummaryViewItem tile = makeTile();
        const QFont regular = tile.dateLabel.font;
        QVERIFY(!regular.bold());
        QCOMPARE(tile.dateLabel.color, m_palette.color(QPalette::Text));
        tile.setSelected(true);
        QVERIFY(tile.dateLabel.font.bold());
        QCOMPARE(tile.dateLabel.font.pointSizeF(), regular.pointSizeF());
        QCOMPARE(tile.dateLabel.color, m_palette.color(QPalette::HighlightedText));
        tile.setSelected(false);
        QCOMPARE(tile.dateLabel.font, regular);
        QCOMPARE(tile.dateLabel.color, m_palette.color(QPalette::Text));
    }

    void everyStateLooksDifferent()
    {
        SummaryViewItem tile = makeTile();
        const QImage plain = drawn(tile);
        tile.view.hovered = true;
        const QImage hovered = drawn(tile);
        tile.view.hovered = false;
        tile.view.focused = true;
        const QImage focused = drawn(tile);
        tile.setSelected(true);
        const QImage selectedAndFocused = drawn(tile);
        tile.view.focused = false;
        const QImage selected = drawn(tile);
        const QList<QImage> looks{plain, hovered, focused, selectedAndFocused, selected};
        for (int first = 0; first < looks.size(); ++first) {
            for (int second = first + 1; second < looks.size(); ++second)
                QVERIFY2(looks[first] != looks[second],
                         qPrintable(u"%1 and %2 look alike"_s.arg(first).arg(second)));
        }
        QCOMPARE(selected.pixelColor(23, 3), m_palette.color(QPalette::Highlight));
        QCOMPARE(plain.pixelColor(23, 3), QColor(Qt::white));
    }

    void emojiAreDrawnInColour_data()
    {
        QTest::addColumn<int>("meeting");
        QTest::newRow("a check mark that text fonts have too") << 3;
        QTest::newRow("an emoji with a variation selector") << 4;
    }

    void emojiAreDrawnInColour()
    {
        QFETCH(int, meeting);
        m_session->setPersonalSentiment(99);
        m_session->setMeetingSentiment(qint16(meeting));
        m_session->setCounterpartSentiment(99);
        const QImage image = drawn(makeTile());
        int colourful = 0;
        for (int y = 30; y < 95; ++y) {
            for (int x = 4; x < 42; ++x)
                colourful += image.pixelColor(x, y).saturation() > 100 ? 1 : 0;
        }
        QVERIFY2(colourful > 20, qPrintable(QString::number(colourful)));
    }

    void aLongDateStaysInsideTheTile()
    {
        SummaryViewItem tile = makeTile();
        tile.dateLabel.text = u"الخميس ٠٧/٠٣/٢٠٢٦"_s;
        tile.emojiLabel.text.clear();
        const QImage image = drawn(tile, 30);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < 30; ++x)
                QCOMPARE(image.pixelColor(x, y), QColor(Qt::white));
            for (int x = 30 + 46; x < image.width(); ++x)
                QCOMPARE(image.pixelColor(x, y), QColor(Qt::white));
        }
    }

private:
    SummaryViewItem makeTile() const
    {
        SummaryViewItem tile(m_journal->dates);
        tile.setAppearance(QFont(u"DejaVu Sans"_s, 10), m_palette);
        tile.setSession(m_session);
        return tile;
    }

    static QImage drawn(const SummaryViewItem &tile, int margin = 0)
    {
        QImage image(46 + 2 * margin, 124, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        tile.draw(&painter, QRectF(margin, 0, 46, 124));
        return image;
    }

    std::unique_ptr<JournalFixture> m_journal;
    std::shared_ptr<Session> m_session;
    QPalette m_palette;
};

QTEST_MAIN(tst_SessionTiles)
#include "tst_SessionTiles.moc"
