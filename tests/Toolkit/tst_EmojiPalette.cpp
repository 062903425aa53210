#include "Toolkit/Emoji/EmojiPalette.h"

#include "PaletteTest.h"
#include "Toolkit/Emoji/EmojiCatalogue.h"
#include "Toolkit/Popover.h"

#include <QAccessible>
#include <QPushButton>
#include <QScrollBar>
#include <QToolButton>

#include <ctime>

using namespace tembra;
using namespace Qt::StringLiterals;

class TestEmojiPalette : public PaletteTest
{
    Q_OBJECT

private Q_SLOTS:
    void init() { openPalette(); }
    void cleanup() { closePalette(); }
    void listsEveryEmojiUnderItsHeading()
    {
        QStringList headings, emoji;
        const QAbstractItemModel *model = m_grid->model();
        for (int row = 0; row < model->rowCount(); ++row) {
            for (int column = 0; column < model->columnCount(); ++column) {
                const QModelIndex index = model->index(row, column);
                const QString text = index.data(EmojiGridModel::EmojiRole).toString();
                if (!text.isEmpty())
                    emoji.append(text);
                else if (!index.data().toString().isEmpty())
                    headings.append(index.data().toString());
            }
        }
        QStringList expectedHeadings = {u"Recently used"_s};
        QStringList expected = m_recent->emoji();
        for (const EmojiGroup &group : EmojiCatalogue::inLanguage({u"en"_s}).groups()) {
            expectedHeadings.append(group.title);
            for (const EmojiEntry &entry : group.emoji)
                expected.append(entry.text);
        }
        QCOMPARE(headings, expectedHeadings);
        QCOMPARE(emoji, expected);
    }

    void showsWhatWasUsedLast()
    {
        QCOMPARE(m_grid->model()->index(0, 0).data().toString(), u"Recently used"_s);
        QCOMPARE(currentEmoji(), u"👍🏽"_s);
        QTest::keyClick(m_search, Qt::Key_Return);
        QCOMPARE(m_choices->count(), 1);
        QTest::keyClicks(m_search, u"rocket"_s);
        QTest::keyClick(m_search, Qt::Key_Return);
        QCOMPARE(m_recent->emoji(), QStringList({u"🚀"_s, u"👍🏽"_s, u"❤\uFE0F"_s}));
        RecentEmoji none(m_folder->filePath(u"none.ini"_s));
        const EmojiPalette fresh(none);
        const auto *grid = fresh.findChild<EmojiGrid *>(u"emojiGrid"_s);
        QCOMPARE(grid->model()->index(0, 0).data().toString(), u"Smileys & Emotion"_s);
        QTest::mouseClick(fresh.findChild<QToolButton *>(), Qt::LeftButton);
        QCOMPARE(fresh.findChild<EmojiGroupBar *>()->current(), 1);
    }

    void leavesUnknownRecentOnesOut()
    {
        m_recent->add(u"abc"_s);
        m_recent->add(u"🚀"_s);
        const EmojiPalette palette(*m_recent);
        const auto *model = palette.findChild<EmojiGrid *>(u"emojiGrid"_s)->model();
        QCOMPARE(model->index(1, 0).data().toString(), u"🚀"_s);
        QCOMPARE(model->index(1, 1).data().toString(), u"👍🏽"_s);
    }

    void searchesAsOneTypes()
    {
        QTest::keyClicks(m_search, u"rock"_s);
        QVERIFY(indexOf(u"🚀"_s).isValid());
        const int some = m_grid->model()->rowCount();
        QTest::keyClicks(m_search, u"et"_s);
        QCOMPARE(currentEmoji(), u"🚀"_s);
        QVERIFY(m_grid->model()->rowCount() <= some);
        QVERIFY(!indexOf(u"😀"_s).isValid());
        QCOMPARE(m_groups->current(), -1);
        for (int i = 0; i < 6; ++i)
            QTest::keyClick(m_search, Qt::Key_Backspace);
        QVERIFY(indexOf(u"😀"_s).isValid());
        QCOMPARE(m_groups->current(), 0);
    }

    void saysThatNothingWasFound()
    {
        auto *nothing = m_palette->findChild<QWidget *>(u"emojiNothingFound"_s);
        QVERIFY(!nothing->isVisible());
        const QSize before = m_palette->size();
        QTest::keyClicks(m_search, u"qqqq"_s);
        QVERIFY(nothing->isVisible());
        QVERIFY(!m_grid->isVisible());
        QVERIFY(
            nothing->findChild<QLabel *>(u"emptyStateSentence"_s)->text().contains(u"“qqqq”"_s));
        QCOMPARE(m_name->text(), QString());
        QTest::keyClick(m_search, Qt::Key_Return);
        QTest::keyClick(m_search, Qt::Key_Down);
        QVERIFY(m_search->hasFocus());
        QCOMPARE(m_choices->count(), 0);
        QCoreApplication::processEvents();
        QCOMPARE(m_palette->size(), before);
        QTest::mouseClick(nothing->findChild<QPushButton *>(), Qt::LeftButton);
        QVERIFY(m_grid->isVisible());
        QCOMPARE(m_search->text(), QString());
    }

    void returnInTheSearchChoosesTheFirst()
    {
        QTest::keyClicks(m_search, u"red heart"_s);
        QTest::keyClick(m_search, Qt::Key_Enter);
        QCOMPARE(m_choices->count(), 1);
        QCOMPARE(m_choices->constFirst().constFirst().toString(), u"❤\uFE0F"_s);
    }

    void arrowsLeadFromTheSearchIntoTheGrid()
    {
        QTest::keyClick(m_search, Qt::Key_Up);
        QVERIFY(m_search->hasFocus());
        QTest::keyClick(m_search, Qt::Key_Right);
        QVERIFY(m_grid->hasFocus());
        QCOMPARE(currentEmoji(), u"❤\uFE0F"_s);
        QTest::keyClick(m_grid, Qt::Key_Down);
        QCOMPARE(currentEmoji(), u"😃"_s);
        QTest::keyClick(m_grid, Qt::Key_Up);
        QTest::keyClick(m_grid, Qt::Key_Up);
        QVERIFY(m_search->hasFocus());
        QTest::keyClick(m_search, Qt::Key_PageDown);
        QVERIFY(m_grid->hasFocus());
    }

    void arrowsAlongTheLineStayInATypedText()
    {
        QTest::keyClicks(m_search, u"ca"_s);
        QTest::keyClick(m_search, Qt::Key_Left);
        QVERIFY(m_search->hasFocus());
        QCOMPARE(m_search->cursorPosition(), 1);
        QTest::keyClick(m_search, Qt::Key_Home);
        QCOMPARE(m_search->cursorPosition(), 0);
        QTest::keyClick(m_search, Qt::Key_Down);
        QVERIFY(m_grid->hasFocus());
    }

    void movesInTheGrid()
    {
        m_grid->setFocus();
        QTest::keyClick(m_grid, Qt::Key_End);
        QCOMPARE(currentEmoji(), u"🏴󠁧󠁢󠁷󠁬󠁳󠁿"_s);
        QVERIFY(m_grid->viewport()->rect().contains(m_grid->visualRect(m_grid->currentIndex())));
        QTest::keyClick(m_grid, Qt::Key_Left);
        QCOMPARE(currentEmoji(), u"🏴󠁧󠁢󠁳󠁣󠁴󠁿"_s);
        QTest::keyClick(m_grid, Qt::Key_Home);
        QCOMPARE(currentEmoji(), u"👍🏽"_s);
        // The heading above is seen again.
        QCOMPARE(m_grid->verticalScrollBar()->value(), 0);
        QTest::keyClick(m_grid, Qt::Key_PageDown);
        const int page = m_grid->currentIndex().row();
        QVERIFY(page > 4);
        QTest::keyClick(m_grid, Qt::Key_PageDown);
        QVERIFY(m_grid->currentIndex().row() > page + 4);
        QTest::keyClick(m_grid, Qt::Key_PageUp);
        QCOMPARE(m_grid->currentIndex().row(), page);
        QTest::keyClick(m_grid, Qt::Key_Return);
        QCOMPARE(m_choices->count(), 1);
        QCOMPARE(m_choices->constFirst().constFirst().toString(), currentEmoji());
    }

    void movesMirrored()
    {
        m_palette->setLayoutDirection(Qt::RightToLeft);
        m_grid->setFocus();
        QTest::keyClick(m_grid, Qt::Key_Left);
        QCOMPARE(currentEmoji(), u"❤\uFE0F"_s);
        QTest::keyClick(m_grid, Qt::Key_Right);
        QCOMPARE(currentEmoji(), u"👍🏽"_s);
        QVERIFY(m_grid->visualRect(m_grid->model()->index(1, 0)).left()
                > m_grid->visualRect(m_grid->model()->index(1, 1)).left());
    }

    void typingInTheGridSearches()
    {
        m_grid->setFocus();
        QTest::keyClick(m_grid, Qt::Key_Space);
        QVERIFY(m_grid->hasFocus());
        QTest::keyClicks(m_grid, u"r"_s);
        QVERIFY(m_search->hasFocus());
        QTest::keyClicks(m_search, u"ed"_s);
        m_grid->setFocus();
        QTest::keyClick(m_grid, Qt::Key_Space);
        QTest::keyClicks(m_search, u"heart"_s);
        QCOMPARE(m_search->text(), u"red heart"_s);
        m_grid->setFocus();
        QTest::keyClick(m_grid, Qt::Key_Backspace);
        QCOMPARE(m_search->text(), u"red hear"_s);
        // Commands are none of it.
        m_grid->setFocus();
        QTest::keyClick(m_grid, Qt::Key_R, Qt::ControlModifier);
        QCOMPARE(m_search->text(), u"red hear"_s);
        QVERIFY(m_grid->hasFocus());
    }

    void tabOrder()
    {
        const auto groupHasFocus = [this] {
            return m_groups->isAncestorOf(QApplication::focusWidget());
        };
        QTest::keyClick(m_search, Qt::Key_Tab);
        QVERIFY(groupHasFocus());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QVERIFY(m_grid->hasFocus());
        QTest::keyClick(m_grid, Qt::Key_Tab, Qt::ShiftModifier);
        QVERIFY(groupHasFocus());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab, Qt::ShiftModifier);
        QVERIFY(m_search->hasFocus());
    }

    void groupBarLeadsToGroups()
    {
        const auto buttons = m_groups->findChildren<QToolButton *>();
        QCOMPARE(buttons.size(), 10);
        QTest::keyClicks(m_search, u"rocket"_s);
        QTest::mouseClick(buttons.at(4), Qt::LeftButton);
        QCOMPARE(buttons.at(4)->accessibleName(), u"Food & Drink"_s);
        QCOMPARE(m_search->text(), QString());
        QCOMPARE(currentEmoji(), u"🍇"_s);
        QCOMPARE(m_groups->current(), 4);
        const int row = m_grid->rowAt(0);
        QCOMPARE(m_grid->model()->index(row, 0).data().toString(), u"Food & Drink"_s);
        QTest::mouseClick(buttons.at(9), Qt::LeftButton);
        QCOMPARE(currentEmoji(), u"🏁"_s);
        QCOMPARE(m_groups->current(), 9);
        QTest::mouseClick(buttons.at(0), Qt::LeftButton);
        QCOMPARE(currentEmoji(), u"👍🏽"_s);
        QCOMPARE(m_groups->current(), 0);
    }

    void groupBarWorksByKeyboard()
    {
        const auto buttons = m_groups->findChildren<QToolButton *>();
        QTest::keyClick(m_search, Qt::Key_Tab);
        QVERIFY(buttons.at(0)->hasFocus());
        QTest::keyClick(buttons.at(0), Qt::Key_Right);
        QTest::keyClick(buttons.at(1), Qt::Key_Right);
        QVERIFY(buttons.at(2)->hasFocus());
        QCOMPARE(m_groups->current(), 2);
        QCOMPARE(currentEmoji(), u"👋"_s);
        QTest::keyClick(buttons.at(2), Qt::Key_End);
        QVERIFY(buttons.at(9)->hasFocus());
        QTest::keyClick(buttons.at(9), Qt::Key_Right);
        QVERIFY(buttons.at(9)->hasFocus());
        QTest::keyClick(buttons.at(9), Qt::Key_Left);
        QCOMPARE(m_groups->current(), 8);
        // Tab comes back to the group that is shown, and goes on from it into the grid.
        QTest::keyClick(buttons.at(8), Qt::Key_Tab);
        QVERIFY(m_grid->hasFocus());
        QTest::keyClick(m_grid, Qt::Key_Tab, Qt::ShiftModifier);
        QVERIFY(buttons.at(8)->hasFocus());
        QTest::keyClicks(buttons.at(8), u"x"_s);
        QCOMPARE(m_search->text(), u"x"_s);
        QVERIFY(m_search->hasFocus());
    }

    void groupBarFollowsScrolling()
    {
        m_grid->verticalScrollBar()->setValue(m_grid->verticalScrollBar()->maximum());
        QCOMPARE(m_groups->current(), 9);
        m_grid->verticalScrollBar()->setValue(0);
        QCOMPARE(m_groups->current(), 0);
    }

    void choosesByClick()
    {
        QTest::mouseClick(m_grid->viewport(), Qt::LeftButton, {}, placeOf(u"😂"_s));
        QCOMPARE(m_choices->count(), 1);
        QCOMPARE(m_choices->constFirst().constFirst().toString(), u"😂"_s);
        // Let go elsewhere, it is none.
        QTest::mousePress(m_grid->viewport(), Qt::LeftButton, {}, placeOf(u"😂"_s));
        QTest::mouseRelease(m_grid->viewport(), Qt::LeftButton, {}, placeOf(u"😀"_s));
        QCOMPARE(m_choices->count(), 1);
    }

    void aHeadingCannotBeChosen()
    {
        QTest::mouseClick(m_grid->viewport(), Qt::LeftButton, {},
                          m_grid->visualRect(m_grid->model()->index(0, 0)).center());
        QTest::mouseClick(m_grid->viewport(), Qt::LeftButton, {},
                          m_grid->visualRect(m_grid->model()->index(1, 5)).center());
        QCOMPARE(m_choices->count(), 0);
        QCOMPARE(currentEmoji(), u"👍🏽"_s);
    }

    void namesTheCurrentEmoji()
    {
        QCOMPARE(m_name->text(), u"thumbs up: medium skin tone"_s);
        QTest::keyClick(m_search, Qt::Key_Right);
        QCOMPARE(m_name->text(), u"red heart"_s);
        // What is under the pointer goes first.
        QTest::mouseMove(m_grid->viewport(), placeOf(u"😀"_s));
        QTRY_COMPARE(m_name->text(), u"grinning face"_s);
        QEvent leave(QEvent::Leave);
        QApplication::sendEvent(m_grid->viewport(), &leave);
        QCOMPARE(m_name->text(), u"red heart"_s);
        QCOMPARE(m_grid->currentIndex().data(Qt::ToolTipRole).toString(), u"red heart"_s);
    }

    void everyCellHasAnAccessibleName()
    {
        QAccessibleInterface *grid = QAccessible::queryAccessibleInterface(m_grid);
        QVERIFY(grid && grid->tableInterface());
        QCOMPARE(grid->text(QAccessible::Name), u"Emoji"_s);
        const auto *model = m_grid->model();
        int named = 0;
        for (int row = 0; row < model->rowCount(); ++row) {
            for (int column = 0; column < model->columnCount(); ++column) {
                const QModelIndex index = model->index(row, column);
                if (index.data(EmojiGridModel::EmojiRole).toString().isEmpty())
                    continue;
                QAccessibleInterface *cell = grid->tableInterface()->cellAt(row, column);
                QVERIFY(cell);
                QVERIFY(!cell->text(QAccessible::Name).isEmpty());
                QCOMPARE(cell->text(QAccessible::Name), index.data(Qt::ToolTipRole).toString());
                ++named;
            }
        }
        QVERIFY(named > 1800);
        for (const QToolButton *button : m_groups->findChildren<QToolButton *>())
            QVERIFY(!button->accessibleName().isEmpty());
        QCOMPARE(m_search->accessibleName(), u"Search emoji"_s);
    }

    void drawsInColour()
    {
        QTest::keyClicks(m_search, u"red heart"_s);
        const auto redPixels = [this] {
            const QImage image = m_grid->grab(m_grid->visualRect(indexOf(u"❤\uFE0F"_s))).toImage();
            int red = 0;
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x) {
                    const QColor color = image.pixelColor(x, y);
                    red += color.red() > 180 && color.green() < 100 && color.blue() < 100;
                }
            }
            return red;
        };
        QTRY_VERIFY(redPixels() > 100);
    }

    void drawsWhatAPassLeftOut()
    {
        // The last row of many: the flags. Each has another colour than the window in its middle.
        m_grid->verticalScrollBar()->setValue(m_grid->verticalScrollBar()->maximum());
        const QModelIndex wales = indexOf(u"🏴󠁧󠁢󠁷󠁬󠁳󠁿"_s);
        const auto isDrawn = [&] {
            const QImage image = m_grid->grab().toImage();
            const QPoint middle = m_grid->visualRect(wales).center() * image.devicePixelRatio();
            return image.pixelColor(middle) != m_palette->palette().color(QPalette::Window);
        };
        QTRY_VERIFY(isDrawn());
    }

    void opensBesideItsSender()
    {
        QWidget window;
        window.setGeometry(700, 100, 300, 100);
        auto *sender = new QPushButton(u"😀"_s, &window);
        sender->setGeometry(100, 20, 60, 30);
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        const QPointer<Popover> popover = EmojiPalette::orderFrontCharacterPalette(sender,
                                                                                   *m_recent,
                                                                                   [](auto &) {});
        QVERIFY(QTest::qWaitForWindowExposed(popover));
        QCOMPARE(popup(), popover.data());
        const QRect anchor(sender->mapToGlobal(QPoint()), sender->size());
        QCOMPARE(popover->geometry().top(), anchor.bottom() + 1);
        auto *search = popover->findChild<QLineEdit *>(u"emojiSearch"_s);
        QTRY_VERIFY(search->hasFocus());
        QTest::keyClick(search, Qt::Key_Escape);
        QTRY_VERIFY(!popover);
    }

    void insertsOnceAndCloses()
    {
        QStringList inserted;
        bool wasOpen = false;
        const QPointer<Popover> popover = EmojiPalette::orderFrontCharacterPalette(
            m_palette.get(), *m_recent, [&](const QString &emoji) {
                wasOpen = popup() != nullptr;
                inserted.append(emoji);
            });
        auto *search = popover->findChild<QLineEdit *>(u"emojiSearch"_s);
        QTest::keyClicks(search, u"rocket"_s);
        QTest::keyClick(search, Qt::Key_Return);
        QCOMPARE(inserted, QStringList{u"🚀"_s});
        QVERIFY(!wasOpen);
        QTRY_VERIFY(!popover);
        QCOMPARE(m_recent->emoji().constFirst(), u"🚀"_s);
    }

    void escapeClosesAndInsertsNothing()
    {
        for (const QString &name : {u"emojiSearch"_s, u"emojiGrid"_s}) {
            bool inserted = false;
            const QPointer<Popover> popover = EmojiPalette::orderFrontCharacterPalette(
                m_palette.get(), *m_recent, [&](auto &) { inserted = true; });
            auto *part = popover->findChild<QWidget *>(name);
            part->setFocus();
            QTest::keyClick(part, Qt::Key_Escape);
            QTRY_VERIFY(!popover);
            QVERIFY(!inserted);
        }
    }

    void closesWithItsSender()
    {
        auto sender = std::make_unique<QPushButton>();
        sender->show();
        QVERIFY(QTest::qWaitForWindowExposed(sender.get()));
        const QPointer<Popover> popover = EmojiPalette::orderFrontCharacterPalette(sender.get(),
                                                                                   *m_recent,
                                                                                   [](auto &) {});
        sender.reset();
        QVERIFY(!popover);
        QCOMPARE(popup(), nullptr);
    }

    void opensFast()
    {
        // The first of a process reads the catalogue and the font; this is a later one. Counted is the
        // work it is, which does not depend on what else the machine does.
        const std::clock_t start = std::clock();
        Popover *popover = EmojiPalette::orderFrontCharacterPalette(m_palette.get(), *m_recent,
                                                                    [](auto &) {});
        QVERIFY(QTest::qWaitForWindowExposed(popover));
        const auto milliseconds = (std::clock() - start) * 1000 / CLOCKS_PER_SEC;
        qInfo("opened with %ld ms of work", long(milliseconds));
        QVERIFY(milliseconds < 250);
        QTest::keyClick(popup(), Qt::Key_Escape);
    }
};

QTEST_MAIN(TestEmojiPalette)
#include "tst_EmojiPalette.moc"
