#include "Toolkit/Emoji/EmojiGrid.h"

#include "Toolkit/Emoji/EmojiCatalogue.h"
#include "Toolkit/Emoji/EmojiGridDelegate.h"
#include "Toolkit/Emoji/EmojiGridModel.h"

#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QHeaderView>
#include <QScrollBar>
#include <QStyleHints>

#include <algorithm>
#include <array>

namespace tembra {

namespace {

bool isSkinToneKey(const QKeyEvent *event)
{
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    return event->key() == Qt::Key_Menu
           || (event->key() == Qt::Key_Down && modifiers == Qt::AltModifier)
           || (event->key() == Qt::Key_F10 && modifiers == Qt::ShiftModifier);
}

} // namespace

EmojiGrid::EmojiGrid(EmojiGridModel &model, QWidget *parent) : QTableView(parent), m_model(model)
{
    setItemDelegate(new EmojiGridDelegate(this));
    horizontalHeader()->hide();
    verticalHeader()->hide();
    for (QHeaderView *header : {horizontalHeader(), verticalHeader()}) {
        header->setMinimumSectionSize(1);
        header->setSectionResizeMode(QHeaderView::Fixed);
    }
    setShowGrid(false);
    setFrameShape(QFrame::NoFrame);
    viewport()->setBackgroundRole(QPalette::Window);
    viewport()->setAttribute(Qt::WA_Hover);
    setMouseTracking(true);
    setSelectionMode(NoSelection);
    setEditTriggers(NoEditTriggers);
    setTabKeyNavigation(false);
    setCornerButtonEnabled(false);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(ScrollPerPixel);
    m_longPress.setSingleShot(true);
    connect(&m_longPress, &QTimer::timeout, this, &EmojiGrid::handleLongPress);
    connect(this, &QAbstractItemView::clicked, this, &EmojiGrid::handleClick);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, &EmojiGrid::scrolled);
    setModel(&m_model);
    connect(&m_model, &QAbstractItemModel::modelReset, this, &EmojiGrid::layOutRows);
    layOutRows();
}

void EmojiGrid::layOutRows()
{
    const int cell = EmojiGridDelegate::cellSize(font());
    const int heading = EmojiGridDelegate::headingHeight(font());
    horizontalHeader()->setDefaultSectionSize(cell);
    verticalHeader()->setDefaultSectionSize(cell);
    clearSpans();
    for (int row = 0; row < m_model.rowCount(); ++row) {
        const bool isHeading = m_model.isHeading(row);
        if (isHeading && m_model.columnCount() > 1)
            setSpan(row, 0, 1, m_model.columnCount());
        const int height = isHeading ? heading : cell;
        if (rowHeight(row) != height)
            setRowHeight(row, height);
    }
    verticalScrollBar()->setSingleStep(cell);
}

void EmojiGrid::setVisibleRows(int rows)
{
    const int cell = EmojiGridDelegate::cellSize(font());
    setFixedSize(m_model.columnCount() * cell + verticalScrollBar()->sizeHint().width(),
                 rows * cell);
}

void EmojiGrid::fitToContent()
{
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    const int cell = EmojiGridDelegate::cellSize(font());
    setFixedSize(m_model.columnCount() * cell, m_model.rowCount() * cell);
}

void EmojiGrid::scrollToRow(int row)
{
    executeDelayedItemsLayout();
    verticalScrollBar()->setValue(verticalScrollBar()->value() + rowViewportPosition(row));
}

void EmojiGrid::requestSkinTones(const QModelIndex &index)
{
    if (index.data(EmojiGridModel::HasSkinTonesRole).toBool())
        Q_EMIT skinTonesRequested(index);
}

void EmojiGrid::handleLongPress()
{
    m_wasLongPress = currentIndex().data(EmojiGridModel::HasSkinTonesRole).toBool();
    requestSkinTones(currentIndex());
}

void EmojiGrid::handleClick(const QModelIndex &index)
{
    const EmojiEntry *entry = m_model.entry(index);
    if (entry && !m_wasLongPress)
        Q_EMIT chosen(entry->text);
}

void EmojiGrid::keyPressEvent(QKeyEvent *event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isSkinToneKey(event)) {
        requestSkinTones(currentIndex());
    } else if (isReturn) {
        if (const EmojiEntry *entry = m_model.entry(currentIndex()))
            Q_EMIT chosen(entry->text);
    } else if (!moveByKey(event)) {
        // Not the base class: it would search for what is typed among the cells.
        event->ignore();
    }
}

bool EmojiGrid::moveByKey(const QKeyEvent *event)
{
    static constexpr std::array<std::pair<Qt::Key, CursorAction>, 8> moves = {{
        {Qt::Key_Left, MoveLeft},
        {Qt::Key_Right, MoveRight},
        {Qt::Key_Up, MoveUp},
        {Qt::Key_Down, MoveDown},
        {Qt::Key_Home, MoveHome},
        {Qt::Key_End, MoveEnd},
        {Qt::Key_PageUp, MovePageUp},
        {Qt::Key_PageDown, MovePageDown},
    }};
    const auto move = std::ranges::find(moves, event->key(),
                                        [](const auto &any) { return int(any.first); });
    if (move == moves.end() || (event->modifiers() & Qt::AltModifier))
        return false;
    const QModelIndex target = moveCursor(move->second, event->modifiers());
    if (move->second == MoveUp && target == currentIndex())
        Q_EMIT leftUpwards();
    setCurrentIndex(target);
    // The heading above the first row is part of the way up.
    if (target.row() > 0 && m_model.isHeading(target.row() - 1) && move->second != MoveDown)
        scrollTo(m_model.index(target.row() - 1, 0));
    return true;
}

QModelIndex EmojiGrid::moveCursor(CursorAction action, Qt::KeyboardModifiers)
{
    const QModelIndex current = currentIndex();
    const int page = std::max(1, viewport()->height() / EmojiGridDelegate::cellSize(font()) - 1);
    const int forward = isRightToLeft() ? -1 : 1;
    switch (action) {
    case MoveLeft:
        return m_model.along(current, -forward);
    case MoveRight:
        return m_model.along(current, forward);
    case MoveUp:
        return m_model.across(current, -1);
    case MoveDown:
        return m_model.across(current, 1);
    case MovePageUp:
        return m_model.across(current, -page);
    case MovePageDown:
        return m_model.across(current, page);
    case MoveHome:
        return m_model.first();
    case MoveEnd:
        return m_model.last();
    case MoveNext:
        return m_model.along(current, 1);
    case MovePrevious:
        break;
    }
    return m_model.along(current, -1);
}

void EmojiGrid::mousePressEvent(QMouseEvent *event)
{
    m_wasLongPress = false;
    QTableView::mousePressEvent(event);
    if (event->button() == Qt::LeftButton && m_model.entry(indexAt(event->pos())))
        m_longPress.start(QGuiApplication::styleHints()->mousePressAndHoldInterval());
}

void EmojiGrid::mouseMoveEvent(QMouseEvent *event)
{
    QTableView::mouseMoveEvent(event);
    const QModelIndex index = indexAt(event->pos());
    if (index != currentIndex())
        m_longPress.stop();
    Q_EMIT pointedAt(m_model.entry(index) ? index : QModelIndex());
}

void EmojiGrid::mouseReleaseEvent(QMouseEvent *event)
{
    m_longPress.stop();
    QTableView::mouseReleaseEvent(event);
}

void EmojiGrid::contextMenuEvent(QContextMenuEvent *event)
{
    const bool isKeyboard = event->reason() == QContextMenuEvent::Keyboard;
    const QModelIndex index = isKeyboard ? currentIndex() : indexAt(event->pos());
    if (m_model.entry(index))
        setCurrentIndex(index);
    requestSkinTones(index);
}

bool EmojiGrid::viewportEvent(QEvent *event)
{
    if (event->type() == QEvent::Leave)
        Q_EMIT pointedAt({});
    return QTableView::viewportEvent(event);
}

void EmojiGrid::changeEvent(QEvent *event)
{
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        layOutRows();
}

} // namespace tembra
